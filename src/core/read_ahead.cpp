#include "core/read_ahead.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <time.h>
#include <unistd.h>

#include "core/append_all.h"
#include "core/files.h"
#include "core/paths.h"

namespace {

constexpr int NONE = -1;
constexpr std::int64_t SECOND = 1'000'000'000; // in nanoseconds

// File systems whose files come from a server, or from a program that made them up.
constexpr std::uint32_t SHARES[] = {FUSE_SUPER_MAGIC, NFS_SUPER_MAGIC,  SMB_SUPER_MAGIC,
                                    SMB2_SUPER_MAGIC, CIFS_SUPER_MAGIC, CEPH_SUPER_MAGIC,
                                    V9FS_MAGIC,       AFS_FS_MAGIC};

bool is_share(const char* folder)
{
    struct statfs status = {};
    return statfs(folder, &status) == 0 &&
           std::ranges::find(SHARES, static_cast<std::uint32_t>(status.f_type)) !=
               std::ranges::end(SHARES);
}

// Blocks that the process has had brought in so far or, on a share, the time.
std::int64_t waited_so_far(const ReadAhead& ahead)
{
    rusage usage = {};
    timespec now = {};
    if (ahead.is_timed) {
        return clock_gettime(CLOCK_MONOTONIC, &now) == 0 ? now.tv_sec * SECOND + now.tv_nsec : 0;
    }
    return getrusage(RUSAGE_SELF, &usage) == 0 ? usage.ru_inblock : 0;
}

// Finds out from time to time whether the files read since the last look were waited for.
void look(ReadAhead& ahead)
{
    if (ahead.next != ahead.next_look) {
        return;
    }
    const std::int64_t files = ahead.next > 1 ? std::int64_t{READ_AHEAD_LOOK_EVERY} : 1;
    const std::int64_t waited = waited_so_far(ahead);
    // A share that is quick since files are opened ahead would be slow again without it.
    ahead.waits =
        (ahead.is_timed && ahead.waits) ||
        waited - ahead.waited > files * (ahead.is_timed ? READ_AHEAD_SLOW : READ_AHEAD_FEW);
    ahead.waited = waited;
    ahead.next_look += READ_AHEAD_LOOK_EVERY;
}

FileAhead& file_ahead(ReadAhead& ahead, std::uint64_t index)
{
    return ahead.files[index % READ_AHEAD_FILES];
}

bool is_unchanged(const FileAhead& opened, const struct stat& status)
{
    return status.st_dev == opened.device && status.st_ino == opened.number &&
           status.st_ctim.tv_sec == opened.changed.tv_sec &&
           status.st_ctim.tv_nsec == opened.changed.tv_nsec;
}

// Takes the next file's descriptor out of those ahead.
// -1: it was not opened, or path does not lead to the same file any more.
int take(ReadAhead& ahead, const char* path)
{
    FileAhead& opened = file_ahead(ahead, ahead.next);
    const int file = opened.file;
    if (file == NONE) {
        return NONE;
    }
    opened.file = NONE;
    ahead.bytes -= opened.bytes;
    struct stat status = {};
    if (stat(path, &status) == 0 && is_unchanged(opened, status)) {
        return file;
    }
    close(file);
    return NONE;
}

// Whether there was something to close.
bool close_all(ReadAhead& ahead)
{
    bool closed = false;
    for (FileAhead& opened : ahead.files) {
        if (opened.file != NONE) {
            close(opened.file);
            opened.file = NONE;
            closed = true;
        }
    }
    ahead.bytes = 0;
    return closed;
}

// Opens the next file itself, in its turn. -1: it cannot be opened.
int open_in_turn(ReadAhead& ahead, const char* path)
{
    const int file = open_to_read(path);
    const bool is_for_want_of_descriptors = file < 0 && (errno == EMFILE || errno == ENFILE);
    return is_for_want_of_descriptors && close_all(ahead) ? open_to_read(path) : file;
}

// -1: it is no plain file, or cannot be opened at once. What is none is not opened: that
// alone can wake up a writer, or wind a tape back.
int open_plain_file(const char* path, struct stat& status)
{
    if (stat(path, &status) != 0 || !S_ISREG(status.st_mode)) {
        return NONE;
    }
    const int file = try_open_to_read(path);
    // Something else may have taken its place meanwhile.
    if (file >= 0 && (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))) {
        close(file);
        return NONE;
    }
    return file;
}

void open_ahead(ReadAhead& ahead, std::uint64_t index)
{
    char bytes[LONG_PATH_BUFFER_SIZE];
    BoundedText path = {bytes, sizeof bytes, 0};
    struct stat status = {};
    if (!append_all(path, ahead.folder, "/", ahead.paths[index])) {
        return;
    }
    const int file = open_plain_file(path.data, status);
    if (file < 0) {
        return;
    }
    const std::uint64_t wanted =
        std::min(static_cast<std::uint64_t>(status.st_size), READ_AHEAD_BYTES - ahead.bytes);
    if (wanted > 0) { // else it would mean all that there is by now
        posix_fadvise(file, 0, static_cast<off_t>(wanted), POSIX_FADV_WILLNEED);
    }
    file_ahead(ahead, index) = {file, status.st_dev, status.st_ino, status.st_ctim, wanted};
    ahead.bytes += wanted;
}

// Tries each file that comes next once, as far as there is room.
void fill(ReadAhead& ahead)
{
    ahead.tried = std::max(ahead.tried, ahead.next);
    while (ahead.waits && ahead.tried < ahead.count &&
           ahead.tried < ahead.next + READ_AHEAD_FILES && ahead.bytes < READ_AHEAD_BYTES) {
        open_ahead(ahead, ahead.tried);
        ++ahead.tried;
    }
}

} // namespace

void read_ahead_init(ReadAhead& ahead, const char* folder, const char* const* paths,
                     std::uint64_t count)
{
    ahead.folder = folder;
    ahead.paths = paths;
    ahead.count = count;
    ahead.next = 0;
    ahead.tried = 0;
    for (FileAhead& opened : ahead.files) {
        opened.file = NONE;
    }
    ahead.bytes = 0;
    ahead.next_look = 1;
    ahead.is_timed = is_share(folder);
    ahead.waited = waited_so_far(ahead);
    ahead.waits = false;
}

bool read_ahead_file(ReadAhead& ahead, const char* path, char*& contents)
{
    look(ahead);
    int file = take(ahead, path);
    if (file < 0) {
        file = open_in_turn(ahead, path);
    }
    ++ahead.next;
    if (file < 0) {
        return false;
    }
    fill(ahead); // before this one is read, so that nobody idles meanwhile
    const bool complete = read_open_file(file, contents);
    close(file);
    return complete;
}

void read_ahead_free(ReadAhead& ahead)
{
    close_all(ahead);
}
