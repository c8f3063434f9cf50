#include "core/files.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

static_assert(sizeof(off_t) == 8, "the size of a large file would not be known");

constexpr int READ_FLAGS = O_RDONLY | O_NOCTTY | O_CLOEXEC;

constexpr mode_t FOLDER_MODE = 0755;
constexpr mode_t FILE_MODE = 0666; // what fopen gives a new file, less the umask

// The directory bit is tested alone, not the whole file type, so block devices (0x6000)
// and sockets (0xC000), whose types contain it, count as directories, too. No folder
// could be made in their place; using them as one is what fails.
constexpr mode_t DIRECTORY_BIT = 0x4000;

// One call gives everything in the ordinary case; the loop is for files beyond
// what the kernel hands over at once (2 GiB). It asks even for nothing, which tells
// an empty file from a directory of size zero, and reads by position, which spares
// a seek back to the start.
bool read_fully(int file, char* bytes, std::size_t length)
{
    std::size_t done = 0;
    do {
        const ssize_t count = pread(file, bytes + done, length - done, static_cast<off_t>(done));
        if (count < 0 || (count == 0 && done < length)) {
            return false;
        }
        done += static_cast<std::size_t>(count);
    } while (done < length);
    return true;
}

bool write_fully(int file, const char* bytes, std::size_t length)
{
    while (length > 0) {
        const ssize_t count = write(file, bytes, length);
        if (count <= 0) {
            return false;
        }
        bytes += count;
        length -= static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

int try_open_to_read(const char* path)
{
    // O_NONBLOCK: opening a FIFO must not wait for a writer. O_NOCTTY: a terminal must
    // not become ours.
    return open(path, READ_FLAGS | O_NONBLOCK);
}

int open_to_read(const char* path)
{
    const int file = try_open_to_read(path);
    if (file >= 0 || errno != EWOULDBLOCK) {
        return file;
    }
    // Only a file on which another program holds a lease (a file server does) heeds
    // the flag. The system gives that program a limited time to let go.
    return open(path, READ_FLAGS);
}

bool read_open_file(int file, char*& contents)
{
    // A directory that has taken a file's place reports a size, too: on some file
    // systems the largest that there is, to which nothing can be added.
    const off_t size = lseek(file, 0, SEEK_END);
    if (size < 0 || size >= PTRDIFF_MAX) {
        return false;
    }
    const std::size_t length = static_cast<std::size_t>(size);
    char* block = static_cast<char*>(std::malloc(length + 1));
    if (block == nullptr) {
        return false;
    }
    if (!read_fully(file, block, length)) {
        std::free(block);
        return false;
    }
    block[length] = '\0';
    contents = block;
    return true;
}

bool read_whole_file(const char* path, char*& contents)
{
    const int file = open_to_read(path);
    if (file < 0) {
        return false;
    }
    const bool complete = read_open_file(file, contents);
    close(file);
    return complete;
}

bool write_whole_file(const char* path, const char* bytes, std::uint64_t length)
{
    const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, FILE_MODE);
    if (file < 0) {
        return false;
    }
    // What lies in memory is never longer than a size_t can tell.
    const bool complete = write_fully(file, bytes, static_cast<std::size_t>(length));
    close(file);
    return complete;
}

bool is_directory(const char* path)
{
    struct stat status = {};
    return stat(path, &status) == 0 && (status.st_mode & DIRECTORY_BIT) != 0;
}

bool make_folder(const char* path)
{
    return is_directory(path) || mkdir(path, FOLDER_MODE) == 0 || errno == EEXIST;
}
