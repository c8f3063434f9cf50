// Very many small files, made as fast as the system makes them.

#pragma once

#include <cstdlib>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

// A new file at this path; its folder must be there. A failure ends the test program:
// no test of a hundred thousand files can go on without one of them.
inline void write_small_file(const std::string& path, std::string_view bytes)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    const bool complete =
        file >= 0 && write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    if (!complete || close(file) != 0) {
        std::abort();
    }
}

// Another name for a file that is there: the same to a reader, and made ten times as
// fast. A file system may limit the names of one file; a thousand are always allowed.
inline void name_again(const std::string& existing, const std::string& path)
{
    if (link(existing.c_str(), path.c_str()) != 0) {
        std::abort();
    }
}
