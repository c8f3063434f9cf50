// The C library's functions that the program calls, each open to a test: it may make a
// call fail, come back with something else, or change the world around it.
//
// What links the target `interception` is linked with --wrap for all of these functions
// (see CMakeLists.txt), so the calls that our own objects make come through here; the
// libraries' own calls do not. While nobody intercepts a call, it is the real one.
//
// There is one mechanism, Interception; what tests often want of it is in call_faults.h.

#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/vfs.h>

template <typename Signature>
struct InterceptedCall;

template <typename Result, typename... Arguments>
struct InterceptedCall<Result(Arguments...)>
{
    using Function = std::function<Result(Arguments...)>;

    Result (*real)(Arguments...);
    const Function* answer; // what answers calls in place of real; null: nothing
    std::uint64_t made;     // calls since the test program started

    Result make(Arguments... arguments)
    {
        ++made;
        return answer != nullptr ? (*answer)(arguments...) : real(arguments...);
    }
};

// Memory.
extern InterceptedCall<void*(std::size_t)> malloc_call;
extern InterceptedCall<void*(void*, std::size_t)> realloc_call;
extern InterceptedCall<void(void*)> free_call;
extern InterceptedCall<int(void*, std::size_t, int)> madvise_call;
extern InterceptedCall<int(int, int)> mallopt_call;

// Files.
extern InterceptedCall<int(const char*, int, mode_t)> open_call; // mode 0 without O_CREAT
extern InterceptedCall<int(int, struct stat*)> fstat_call;
extern InterceptedCall<int(int, off_t, off_t, int)> posix_fadvise_call; // the error's number
extern InterceptedCall<off_t(int, off_t, int)> lseek_call;
extern InterceptedCall<ssize_t(int, void*, std::size_t, off_t)> pread_call;
extern InterceptedCall<ssize_t(int, const void*, std::size_t)> write_call;
extern InterceptedCall<int(int)> close_call;

// Folders and paths.
extern InterceptedCall<DIR*(const char*)> opendir_call;
extern InterceptedCall<dirent*(DIR*)> readdir_call;
extern InterceptedCall<int(DIR*)> closedir_call;
extern InterceptedCall<int(int, struct statfs*)> fstatfs_call;
extern InterceptedCall<int(const char*, struct statfs*)> statfs_call;
extern InterceptedCall<int(const char*, struct stat*)> stat_call;
extern InterceptedCall<int(const char*, struct stat*)> lstat_call;
extern InterceptedCall<int(const char*, mode_t)> mkdir_call;
extern InterceptedCall<char*(const char*, char*)> realpath_call;

// Texts and time. All ways to format a text in memory are one call, and so are all ways
// to print one, which is given formatted; the result counts the bytes that were printed.
extern InterceptedCall<int(char*, std::size_t, const char*, va_list)> format_call;
extern InterceptedCall<std::size_t(std::FILE*, std::string_view)> print_call;
extern InterceptedCall<std::time_t(std::time_t*)> time_call;
extern InterceptedCall<int(int, rusage*)> getrusage_call;
extern InterceptedCall<std::tm*(const std::time_t*, std::tm*)> gmtime_r_call;
extern InterceptedCall<std::size_t(char*, std::size_t, const char*, const std::tm*)> strftime_call;

// Terminals, and the clock that only goes forward.
extern InterceptedCall<int(int)> isatty_call;
extern InterceptedCall<pid_t(int)> tcgetpgrp_call;
extern InterceptedCall<int(pollfd*, nfds_t, int)> poll_call;
extern InterceptedCall<int(int, unsigned long, void*)> ioctl_call;
extern InterceptedCall<int(clockid_t, timespec*)> clock_gettime_call;

// The name by which the linker knows the call that is being made: "__snprintf_chk", say.
const char* called_name();

// While it lives, handler(next, arguments...) answers the call. Next is what would have
// answered it otherwise, an earlier interception or the C library, and takes the same
// arguments. Interceptions of one call end in the reverse order of their beginning.
template <typename Result, typename... Arguments>
class Interception
{
public:
    using Call = InterceptedCall<Result(Arguments...)>;
    using Next = typename Call::Function;

    template <typename Handler>
    Interception(Call& call, Handler handler) : call_(call), before_(call.answer)
    {
        Next next = before_ != nullptr ? *before_ : Next(call.real);
        answer_ = [next = std::move(next), handler = std::move(handler)](Arguments... arguments) {
            return handler(next, arguments...);
        };
        call_.answer = &answer_;
    }

    ~Interception()
    {
        call_.answer = before_;
    }

    Interception(const Interception&) = delete;
    Interception& operator=(const Interception&) = delete;

private:
    Call& call_;
    const Next* before_;
    Next answer_;
};
