// Makes a chosen file call of the code under test come back wrong.
//
// The test programs are linked with --wrap for pread, write and lseek, so the calls
// that our own objects make go through here; the libraries' own calls do not.

#pragma once

#include <cstdint>

#include <sys/types.h>

enum class FileCall
{
    Read,
    Write,
    Seek
};

// While it lives, the call of this kind with this number (1 is the next one) does
// nothing and returns result, -1 with errno EIO. One at a time.
class FileFault
{
public:
    FileFault(FileCall call, std::uint64_t number, std::int64_t result);
    ~FileFault();
    FileFault(const FileFault&) = delete;
    FileFault& operator=(const FileFault&) = delete;

    // Whether the call was made.
    bool happened() const;
};

// While it lives, each read (or write) takes at most this many bytes, as the kernel
// does with very long ones.
class ShortTransfers
{
public:
    explicit ShortTransfers(std::size_t limit);
    ~ShortTransfers();
    ShortTransfers(const ShortTransfers&) = delete;
    ShortTransfers& operator=(const ShortTransfers&) = delete;
};
