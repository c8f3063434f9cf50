// Watches one run of the program's code: counts the calls that it makes to the C
// library and the system, fails those that it is told to fail, and keeps account of
// what the code holds and prints.

#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "faults/world.h"
#include "support/intercepted_calls.h"

enum class Call
{
    Malloc,
    Realloc,
    Open,
    Fstat,
    Fadvise,
    Lseek,
    Pread,
    Write,
    Close,
    Opendir,
    Readdir,
    Closedir,
    Fstatfs,
    Statfs,
    Stat,
    Lstat,
    Mkdir,
    Realpath,
    Format,
    Print,
    Time,
    Usage,
    Gmtime,
    Strftime,
    Madvise,
    Mallopt,
    Isatty,
    Tcgetpgrp,
    Poll,
    Ioctl,
    Clock,
    Draw, // write, on the terminal
};
inline constexpr std::size_t CALL_COUNT = 32;

// What a failing call says.
enum class Answer
{
    Refuse,     // its ordinary failure, with nothing done; but close and closedir do close,
                // and what formats writes half of the text, but no NUL
    Short,      // pread, write: half of the bytes
    Nothing,    // pread, write: 0, as at the end of a file that has shrunk
    WouldBlock, // open: the failure after which reading is tried once more
    Exists,     // mkdir: there is such an entry (there is none)
};

// What the run is about when a call is made, told from the arguments of the calls.
enum class Phase
{
    Start,    // looks at the input directory and for an older page
    Walk,     // lists the files
    Entries,  // has listed them
    Reading,  // reads one file after another
    Ahead,    // meanwhile opens another one ahead
    Folders,  // makes the folders above the page
    Page,     // assembles the page
    PageFile, // writes it
    Json,     // assembles the JSON
    JsonFile, // writes it
    Closing,  // says what was written
};

struct Fault
{
    Call call;
    Answer answer;
    std::uint64_t number; // of the call among those of its kind, from 1
    bool from_then_on;    // and all later ones of its kind
};

struct CallRecord
{
    Call call;
    Phase phase;
    Answer answer;         // Refuse in the record of a call that did not fail
    std::string subject;   // path that the call is about; empty where there is none
    std::uint64_t number;  // Readdir: entries of this folder so far; else 0
    std::string_view name; // what the linker calls the call
};

// Names in the order in which each folder listed them, by the path that it was opened as.
using Listings = std::map<std::string, std::vector<std::string>>;

// What the clock reads while a run is watched.
inline constexpr std::time_t WATCHED_TIME = 1767225599;

class WatchedRun
{
public:
    // Of the program in this world. Files opened for writing are the page if they have its
    // path, and the JSON else. Without JSON, the page is the last. On a terminal, seconds go
    // by between any two looks at the clock. A run that records keeps each call; the others
    // keep those that they fail.
    WatchedRun(const World& world, std::vector<Fault> faults, bool records);

    // Watches program, and gives what it returns. Once.
    int watch(const std::function<int()>& program);

    std::uint64_t count(Call call) const;
    const std::vector<CallRecord>& failed() const
    {
        return failed_;
    }
    const std::vector<CallRecord>& trace() const
    {
        return trace_;
    }
    const Listings& listings() const
    {
        return listings_;
    }

    // What the code meant to print. Nothing of it is printed.
    const std::string& output() const
    {
        return output_;
    }
    const std::string& errors() const
    {
        return errors_;
    }

    // What the code has not given back, what it gave back without having it, and a line
    // that stands on the terminal beside what is printed; empty when all is in order.
    std::string slips() const;

private:
    struct Listing
    {
        std::string path;
        std::uint64_t listed;
    };

    template <typename Result, typename... Arguments, typename Handler>
    void intercept(InterceptedCall<Result(Arguments...)>& call, Handler handler);
    template <typename Result, typename... Arguments>
    void intercept_refusing(InterceptedCall<Result(Arguments...)>& intercepted, Call call,
                            std::type_identity_t<Result> result, int error);
    void intercept_memory();
    void intercept_files();
    void intercept_transfers();
    void intercept_folders();
    void intercept_paths();
    void intercept_texts();
    void intercept_time();
    void intercept_terminal();

    // The answer with which this call is to fail, if it is to.
    std::optional<Answer> ask(Call call, std::string_view subject, std::uint64_t number = 0);
    bool refuses(Call call, int error, std::string_view subject = {}, std::uint64_t number = 0);

    void begin_assembling();
    void begin_examining(const std::string& path);
    void begin_reading(int file);
    void begin_writing(const std::string& path);
    void closed(int file);
    void leave_folder();
    void hold(void* block);
    void release(void* block);

    const World& world_;
    std::vector<Fault> faults_;
    bool records_;
    Phase phase_ = Phase::Start;
    std::array<std::uint64_t, CALL_COUNT> counts_ = {};
    std::vector<CallRecord> failed_;
    std::vector<CallRecord> trace_;
    Listings listings_;
    std::string output_;
    std::string errors_;
    bool line_stands_ = false; // on the terminal, not erased yet, nor tried to be
    std::string file_;         // the one that is read or written
    std::unordered_set<void*> blocks_;
    std::map<int, std::string> files_;
    std::map<DIR*, Listing> folders_;
    std::string slips_;
    std::vector<std::shared_ptr<void>> interceptions_;
};

const char* name_of(Call call);
const char* name_of(Answer answer);
const char* name_of(Phase phase);
