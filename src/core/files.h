// Whole-file reading and writing, and the two folder operations that the output
// path needs. Nothing here prints or keeps an error: the bool is the whole
// answer. Paths are NUL-terminated, as the system calls take them.

#pragma once

#include <cstdint>

// Reads the whole file into a new heap block of its size plus one byte, the last
// of them NUL, and stores the block in contents; the caller owns it and releases
// it with std::free. Bytes are not interpreted: a NUL inside the file stays in
// the block. There is no upper limit on the size, and an empty file gives a block
// of one NUL.
//
// A FIFO without a writer is refused, not waited for. A file that another program
// holds a lease on is waited for as long as the system lets that program keep it.
//
// False: the path cannot be opened, has no size (a FIFO, a folder), does not fit
// in memory, or gave fewer bytes than its size; contents is left untouched.
[[nodiscard]] bool read_whole_file(const char* path, char*& contents);

// The two halves of read_whole_file. Opening gives a descriptor that the caller owns, -1
// where the path cannot be opened; errno says why. Reading leaves the file open.
[[nodiscard]] int open_to_read(const char* path);
[[nodiscard]] bool read_open_file(int file, char*& contents);

// Opens as open_to_read does, but never waits: a file on which there is a lease is not
// opened.
[[nodiscard]] int try_open_to_read(const char* path);

// Creates or truncates the file and writes all length bytes, going on where the system took
// a part of them. The result of closing is ignored.
// False: the file cannot be opened, or fewer bytes were taken; an empty or cut
// file may be left behind.
[[nodiscard]] bool write_whole_file(const char* path, const char* bytes, std::uint64_t length);

// Whether path names a directory, symbolic links followed. A block device and a
// socket count as well: the directory bit alone is tested, which their types hold.
// False also when the path cannot be examined.
[[nodiscard]] bool is_directory(const char* path);

// Makes sure that an entry of that name exists, creating one folder (mode 0755
// less the umask) if there is none. An existing entry that is not a folder, such
// as a regular file, also gives true: using it as a folder is what fails then.
// False: the folder cannot be created, for instance because its parent is
// missing; nothing was changed.
[[nodiscard]] bool make_folder(const char* path);
