// The calls to do with files and folders that the test program is linked with in place of
// the real ones.

#include <cerrno>
#include <cstdarg>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include "faults/call_wraps.h"

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names
extern "C" {
int __real_open(const char* path, int flags, ...);
off_t __real_lseek(int file, off_t offset, int whence);
ssize_t __real_pread(int file, void* bytes, std::size_t count, off_t offset);
ssize_t __real_write(int file, const void* bytes, std::size_t count);
int __real_close(int file);
DIR* __real_opendir(const char* path);
dirent* __real_readdir(DIR* listing);
int __real_closedir(DIR* listing);
int __real_stat(const char* path, struct stat* status);
int __real_mkdir(const char* path, mode_t mode);
char* __real_realpath(const char* path, char* resolved);
int __wrap_open(const char* path, int flags, ...);
off_t __wrap_lseek(int file, off_t offset, int whence);
ssize_t __wrap_pread(int file, void* bytes, std::size_t count, off_t offset);
ssize_t __wrap_write(int file, const void* bytes, std::size_t count);
int __wrap_close(int file);
DIR* __wrap_opendir(const char* path);
dirent* __wrap_readdir(DIR* listing);
int __wrap_closedir(DIR* listing);
int __wrap_stat(const char* path, struct stat* status);
int __wrap_mkdir(const char* path, mode_t mode);
char* __wrap_realpath(const char* path, char* resolved);
char* __wrap___realpath_chk(const char* path, char* resolved, std::size_t size);
}

namespace {

// Reads or writes by transfer, which takes the bytes that it may handle.
template <typename Transfer>
ssize_t transfer_some(std::optional<Answer> answer, std::size_t count, Transfer transfer)
{
    if (!answer) {
        return transfer(count);
    }
    if (*answer == Answer::Short) {
        return transfer((count + 1) / 2);
    }
    errno = EIO;
    return *answer == Answer::Nothing ? 0 : -1;
}

char* resolve(WatchedRun* run, const char* path, char* resolved)
{
    if (run != nullptr && run->phase() != Phase::Start && run->phase() != Phase::Walk) {
        run->before_assembling();
    }
    return refuses(run, Call::Realpath, EACCES, path) ? nullptr : __real_realpath(path, resolved);
}

} // namespace

extern "C" {
int __wrap_open(const char* path, int flags, ...)
{
    static std::uint64_t& hits = hits_of("open");
    va_list values;
    va_start(values, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(values, mode_t) : 0;
    va_end(values);
    WatchedRun* run = watched(hits);
    if (run == nullptr) {
        return __real_open(path, flags, mode);
    }
    run->before_opening(path, (flags & O_ACCMODE) != O_RDONLY);
    if (const std::optional<Answer> answer = run->ask(Call::Open, path)) {
        errno = *answer == Answer::WouldBlock ? EWOULDBLOCK : EMFILE;
        return -1;
    }
    const int file = __real_open(path, flags, mode);
    run->opened(file);
    return file;
}

off_t __wrap_lseek(int file, off_t offset, int whence)
{
    static std::uint64_t& hits = hits_of("lseek");
    WatchedRun* run = watched(hits);
    return run != nullptr && refuses(run, Call::Lseek, EIO, run->file())
               ? -1
               : __real_lseek(file, offset, whence);
}

ssize_t __wrap_pread(int file, void* bytes, std::size_t count, off_t offset)
{
    static std::uint64_t& hits = hits_of("pread");
    WatchedRun* run = watched(hits);
    const std::optional<Answer> answer =
        run != nullptr ? run->ask(Call::Pread, run->file()) : std::nullopt;
    return transfer_some(answer, count,
                         [&](std::size_t some) { return __real_pread(file, bytes, some, offset); });
}

ssize_t __wrap_write(int file, const void* bytes, std::size_t count)
{
    static std::uint64_t& hits = hits_of("write");
    WatchedRun* run = watched(hits);
    if (run == nullptr) {
        return __real_write(file, bytes, count);
    }
    const std::optional<Answer> answer = run->ask(Call::Write, run->file(), run->accepted_bytes());
    return transfer_some(answer, count, [&](std::size_t some) {
        const ssize_t written = __real_write(file, bytes, some);
        run->accepted(written > 0 ? static_cast<std::uint64_t>(written) : 0);
        return written;
    });
}

int __wrap_close(int file)
{
    static std::uint64_t& hits = hits_of("close");
    WatchedRun* run = watched(hits);
    const bool refused = run != nullptr && refuses(run, Call::Close, EIO, run->file());
    if (run != nullptr) {
        run->closed(file);
    }
    const int result = __real_close(file);
    return refused ? -1 : result;
}

DIR* __wrap_opendir(const char* path)
{
    static std::uint64_t& hits = hits_of("opendir");
    WatchedRun* run = watched(hits);
    if (run == nullptr) {
        return __real_opendir(path);
    }
    run->before_opening_folder();
    DIR* listing = refuses(run, Call::Opendir, EMFILE, path) ? nullptr : __real_opendir(path);
    run->opened_folder(listing, path);
    return listing;
}

dirent* __wrap_readdir(DIR* listing)
{
    static std::uint64_t& hits = hits_of("readdir");
    WatchedRun* run = watched(hits);
    if (run == nullptr) {
        return __real_readdir(listing);
    }
    if (refuses(run, Call::Readdir, EIO, run->folder(listing), run->listed(listing))) {
        return nullptr;
    }
    dirent* entry = __real_readdir(listing);
    if (entry != nullptr) {
        run->listed_entry(listing, entry->d_name);
    }
    return entry;
}

int __wrap_closedir(DIR* listing)
{
    static std::uint64_t& hits = hits_of("closedir");
    WatchedRun* run = watched(hits);
    const bool refused = run != nullptr && refuses(run, Call::Closedir, EIO, run->folder(listing));
    if (run != nullptr) {
        run->closed_folder(listing);
    }
    const int result = __real_closedir(listing);
    return refused ? -1 : result;
}

int __wrap_stat(const char* path, struct stat* status)
{
    static std::uint64_t& hits = hits_of("stat");
    WatchedRun* run = watched(hits);
    if (run != nullptr) {
        run->before_folder_question();
    }
    return refuses(run, Call::Stat, EACCES, path) ? -1 : __real_stat(path, status);
}

int __wrap_mkdir(const char* path, mode_t mode)
{
    static std::uint64_t& hits = hits_of("mkdir");
    WatchedRun* run = watched(hits);
    if (run == nullptr) {
        return __real_mkdir(path, mode);
    }
    run->before_folder_question();
    if (const std::optional<Answer> answer = run->ask(Call::Mkdir, path)) {
        errno = *answer == Answer::Exists ? EEXIST : EACCES;
        return -1;
    }
    return __real_mkdir(path, mode);
}

char* __wrap_realpath(const char* path, char* resolved)
{
    static std::uint64_t& hits = hits_of("realpath");
    return resolve(watched(hits), path, resolved);
}

char* __wrap___realpath_chk(const char* path, char* resolved, std::size_t size)
{
    static std::uint64_t& hits = hits_of("__realpath_chk");
    static_cast<void>(size);
    return resolve(watched(hits), path, resolved);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
