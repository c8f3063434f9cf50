// Reading many files one after another without waiting for each by itself.
//
// A disk or a server that is asked for one file after another is idle while its answers
// travel, and the caller is idle for the rest of the time. Where a run turns out to wait,
// the files that come next are opened ahead, and the system is told that they will be
// needed, so that it brings them in side by side. One thread does all of it.
//
// Whether the run waits is looked at every so many files, not at each, and no file is
// opened ahead before it does: a run whose files are in memory makes a call more for some
// dozens of files, and nothing else. It waits when what it read had to be brought in: the
// system counts that for each process, but not what comes from a server or a program
// (NFS, SMB, FUSE). There it waits when its files take long. Elsewhere time cannot tell: a
// quick disk takes less of it than a busy processor, or a debugger, adds.
//
// All of it is a hint, and changes nothing but time:
//   - Only plain files are opened ahead, as read_whole_file would open them later.
//   - A file that was opened ahead is read through that descriptor only if its path still
//     leads to it and nothing about it has changed since (its own change time says so:
//     contents, permissions, name), as far as the system tells: a share may say for a
//     while what it said before. Otherwise it is closed and opened anew.
//   - Whatever fails ahead is forgotten, and the file is read as if it had not been tried.
//   - When descriptors run out, those ahead are closed before a file counts as unreadable.
//   - So many files and bytes are on their way at most, however large a file is.

#pragma once

#include <cstdint>

#include <sys/types.h>
#include <time.h>

// More at a time do not make a disk quicker.
inline constexpr std::uint64_t READ_AHEAD_FILES = 32;
inline constexpr std::uint64_t READ_AHEAD_BYTES = std::uint64_t{16} << 20U;

// Files between two looks at whether the run waits. The first comes after one file.
inline constexpr std::uint64_t READ_AHEAD_LOOK_EVERY = 64;

// Nanoseconds a file; a share that takes longer is waited for.
inline constexpr std::int64_t READ_AHEAD_SLOW = 500'000;

// Blocks of 512 bytes a file; a disk that is asked for more is waited for. The system takes
// a file or two out of memory at any time, and they are not worth opening all others ahead.
inline constexpr std::int64_t READ_AHEAD_FEW = 1;

// A file that was opened ahead, and what it was then.
struct FileAhead
{
    int file; // owned; -1: none
    dev_t device;
    ino_t number;
    timespec changed;
    std::uint64_t bytes; // on their way
};

struct ReadAhead
{
    const char* folder;       // not owned
    const char* const* paths; // not owned; of the files to read, in order, below folder
    std::uint64_t count;
    std::uint64_t next;                // the file that is read next
    std::uint64_t tried;               // all before it have been read or tried ahead
    FileAhead files[READ_AHEAD_FILES]; // file i is at i % READ_AHEAD_FILES
    std::uint64_t bytes;               // on their way
    std::uint64_t next_look;           // with this file
    bool is_timed;                     // by the clock, not by what was brought in
    std::int64_t waited;               // by that measure, until the last look
    bool waits;                        // as the last look found
};

// Begins with the first of count files, which are the paths below folder. Both must
// outlive the reading. Opens nothing.
void read_ahead_init(ReadAhead& ahead, const char* folder, const char* const* paths,
                     std::uint64_t count);

// Reads the next file, whose whole path is path, with the result of read_whole_file.
[[nodiscard]] bool read_ahead_file(ReadAhead& ahead, const char* path, char*& contents);

// Closes what was opened ahead and not read.
void read_ahead_free(ReadAhead& ahead);
