#include "support/memory_files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include "support/require.h"

extern "C" {
int __real_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, ...);
ssize_t __real_write(int file, const void* bytes, size_t length);
ssize_t __wrap_write(int file, const void* bytes, size_t length);
int __real_close(int file);
int __wrap_close(int file);
char* __real_realpath(const char* path, char* resolved);
char* __wrap_realpath(const char* path, char* resolved);
char* __wrap___realpath_chk(const char* path, char* resolved, size_t size);
time_t __real_time(time_t* result);
time_t __wrap_time(time_t* result);
}

namespace {

constexpr int DESCRIPTOR = 1000;
constexpr std::size_t PATH_SIZE = 16384;

struct Text
{
    std::array<char, PATH_SIZE> bytes;
    std::size_t length;
};

struct State
{
    bool active;
    bool open;
    int writes;
    int resolved_count;
    MemoryFiles files;
    Text opened;
    std::array<Text, 2> resolved;
    std::array<char, std::size_t{4} * 1024 * 1024> written;
    std::size_t written_length;
};

State state;

void store(Text& text, const char* path)
{
    text.length = std::strlen(path);
    require(text.length <= text.bytes.size(), "no path is that long");
    std::memcpy(text.bytes.data(), path, text.length);
}

std::string_view view(const Text& text)
{
    return {text.bytes.data(), text.length};
}

} // namespace

int __wrap_open(const char* path, int flags, ...)
{
    va_list values;
    va_start(values, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(values, mode_t) : 0;
    va_end(values);
    if (!state.active) {
        return __real_open(path, flags, mode);
    }
    require((flags & O_ACCMODE) == O_WRONLY && (flags & O_CREAT) != 0 && (flags & O_TRUNC) != 0 &&
                mode == 0666,
            "a file is created or truncated, to be written");
    require(state.opened.length == 0, "one file is opened");
    store(state.opened, path);
    if (state.files.fault == WritingFault::NoOpening) {
        errno = EACCES;
        return -1;
    }
    state.open = true;
    return DESCRIPTOR;
}

ssize_t __wrap_write(int file, const void* bytes, size_t length)
{
    if (!state.active) {
        return __real_write(file, bytes, length);
    }
    require(file == DESCRIPTOR && state.open, "the file that was opened is written");
    ++state.writes;
    if (state.files.fault == WritingFault::Full && state.writes > 1) {
        errno = ENOSPC;
        return -1;
    }
    const std::size_t taken =
        state.files.fault == WritingFault::None ? length : std::max<std::size_t>(length / 2, 1);
    require(taken <= state.written.size() - state.written_length, "no document is that long");
    std::memcpy(state.written.data() + state.written_length, bytes, taken);
    state.written_length += taken;
    return static_cast<ssize_t>(taken);
}

int __wrap_close(int file)
{
    if (!state.active) {
        return __real_close(file);
    }
    require(file == DESCRIPTOR && state.open, "the file that was opened is closed");
    state.open = false;
    return 0;
}

char* __wrap_realpath(const char* path, char* resolved)
{
    if (!state.active) {
        return __real_realpath(path, resolved);
    }
    require(state.resolved_count < 2, "two paths are resolved");
    const int which = state.resolved_count++;
    store(state.resolved[static_cast<std::size_t>(which)], path);
    const char* answer = state.files.canonical[which];
    if (answer == nullptr) {
        errno = ENOENT;
        return nullptr;
    }
    require(resolved != nullptr, "a path is resolved into the caller's buffer");
    std::memcpy(resolved, answer, std::strlen(answer) + 1);
    return resolved;
}

char* __wrap___realpath_chk(const char* path, char* resolved, size_t)
{
    return __wrap_realpath(path, resolved);
}

time_t __wrap_time(time_t* result)
{
    if (!state.active) {
        return __real_time(result);
    }
    if (result != nullptr) {
        *result = state.files.now;
    }
    return state.files.now;
}

void memory_files_start(const MemoryFiles& files)
{
    state.files = files;
    state.open = false;
    state.writes = 0;
    state.resolved_count = 0;
    state.opened.length = 0;
    state.resolved[0].length = 0;
    state.resolved[1].length = 0;
    state.written_length = 0;
    state.active = true;
}

void memory_files_stop()
{
    state.active = false;
    require(!state.open, "an opened file is closed");
}

std::string_view opened_path()
{
    return view(state.opened);
}

std::string_view written_bytes()
{
    return {state.written.data(), state.written_length};
}

std::string_view resolved_path(int which)
{
    return view(state.resolved[static_cast<std::size_t>(which)]);
}
