#include "faults/checked_run.h"

const std::vector<FaultKind>& fault_kinds()
{
    static const std::vector<FaultKind> KINDS = {
        {Call::Malloc, Answer::Refuse, {287, 287, 287, 29, 29, 0}},
        {Call::Realloc, Answer::Refuse, {15, 15, 15, 8, 3, 0}},
        {Call::Open, Answer::Refuse, {144, 144, 144, 15, 14, 0}},
        {Call::Open, Answer::WouldBlock, {144, 144, 144, 15, 14, 0}},
        {Call::Lseek, Answer::Refuse, {142, 142, 142, 13, 13, 0}},
        {Call::Pread, Answer::Refuse, {142, 142, 142, 13, 13, 0}},
        {Call::Pread, Answer::Short, {142, 142, 142, 13, 13, 0}},
        {Call::Pread, Answer::Nothing, {142, 142, 142, 13, 13, 0}},
        {Call::Write, Answer::Refuse, {2, 2, 2, 2, 1, 0}},
        {Call::Write, Answer::Short, {2, 2, 2, 2, 1, 0}},
        {Call::Write, Answer::Nothing, {2, 2, 2, 2, 1, 0}},
        {Call::Close, Answer::Refuse, {144, 144, 144, 15, 14, 0}},
        {Call::Opendir, Answer::Refuse, {11, 12, 11, 3, 3, 0}},
        {Call::Readdir, Answer::Refuse, {184, 191, 184, 20, 20, 0}},
        {Call::Closedir, Answer::Refuse, {11, 12, 11, 3, 3, 0}},
        {Call::Stat, Answer::Refuse, {9, 12, 14, 3, 3, 0}},
        {Call::Mkdir, Answer::Refuse, {0, 0, 3, 0, 0, 0}},
        {Call::Mkdir, Answer::Exists, {0, 0, 3, 0, 0, 0}},
        {Call::Realpath, Answer::Refuse, {3, 6, 3, 3, 3, 0}},
        {Call::Vsnprintf, Answer::Refuse, {20, 20, 20, 16, 14, 0}},
        {Call::Snprintf, Answer::Refuse, {142, 142, 142, 13, 13, 0}},
        {Call::Print, Answer::Refuse, {4, 4, 4, 3, 2, 0}},
        {Call::Time, Answer::Refuse, {1, 1, 1, 1, 1, 0}},
        {Call::Gmtime, Answer::Refuse, {1, 1, 1, 1, 1, 0}},
        {Call::Strftime, Answer::Refuse, {1, 1, 1, 1, 1, 0}},
        {Call::Madvise, Answer::Refuse, {0, 0, 0, 0, 0, 1}},
        {Call::Mallopt, Answer::Refuse, {2, 2, 2, 2, 2, 0}},
    };
    return KINDS;
}
