// What the writers ask of the system, answered from memory while it is switched on:
// one file at a time, two canonical paths, and the time. Needs open, write, close,
// realpath, __realpath_chk and time to be wrapped.

#pragma once

#include <cstdint>
#include <string_view>

enum class WritingFault : std::uint8_t
{
    None,
    Piecemeal, // each write takes a part; nothing is lost
    NoOpening,
    Full, // the first write takes a part, the next one fails
};

struct MemoryFiles
{
    WritingFault fault;
    // The answers to the first and second path that is resolved; null: it cannot be.
    const char* canonical[2];
    std::int64_t now;
};

// From here on the calls are answered, and no file is open or written.
void memory_files_start(const MemoryFiles& files);

// From here on the calls reach the system again. Fails when a file is still open.
void memory_files_stop();

// What was asked and written since the start. Null or empty when it was not.
std::string_view opened_path();
std::string_view written_bytes();
std::string_view resolved_path(int which);
