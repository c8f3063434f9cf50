#include "support/intercepted_calls.h"

#include <string>

#include <fcntl.h>

namespace {

const char* name_of_call = "";

} // namespace

const char* called_name()
{
    return name_of_call;
}

// Calls whose numbers have 64 bits where addresses have 32 go by other names there.
#if defined _FILE_OFFSET_BITS && __SIZEOF_POINTER__ == 4
#define WIDE(name, wide_name) #wide_name
#else
#define WIDE(name, wide_name) #name
#endif

// Declares the C library's own function and defines the one that the linker puts in its
// place.
#define INTERCEPT(result, name, parameters, ...)                                                   \
    INTERCEPT_AS(#name, result, name, parameters, __VA_ARGS__)
#define INTERCEPT_AS(linked, result, name, parameters, ...)                                        \
    extern "C" result __real_##name parameters __asm__("__real_" linked);                          \
    extern "C" result __wrap_##name parameters __asm__("__wrap_" linked);                          \
    InterceptedCall<result parameters> name##_call = {__real_##name, nullptr, 0};                  \
    result __wrap_##name parameters                                                                \
    {                                                                                              \
        name_of_call = linked;                                                                     \
        return name##_call.make(__VA_ARGS__);                                                      \
    }

INTERCEPT(void*, malloc, (std::size_t size), size)
INTERCEPT(void*, realloc, (void* block, std::size_t size), block, size)
INTERCEPT(void, free, (void* block), block)
INTERCEPT(int, madvise, (void* block, std::size_t size, int advice), block, size, advice)
INTERCEPT(int, mallopt, (int parameter, int value), parameter, value)
INTERCEPT_AS(WIDE(fstat, __fstat64_time64), int, fstat, (int file, struct stat* status), file,
             status)
INTERCEPT_AS(WIDE(posix_fadvise, posix_fadvise64), int, posix_fadvise,
             (int file, off_t offset, off_t length, int advice), file, offset, length, advice)
INTERCEPT_AS(WIDE(lseek, lseek64), off_t, lseek, (int file, off_t offset, int whence), file, offset,
             whence)
INTERCEPT_AS(WIDE(pread, pread64), ssize_t, pread,
             (int file, void* bytes, std::size_t count, off_t offset), file, bytes, count, offset)
INTERCEPT(ssize_t, write, (int file, const void* bytes, std::size_t count), file, bytes, count)
INTERCEPT(int, close, (int file), file)
INTERCEPT(DIR*, opendir, (const char* path), path)
INTERCEPT_AS(WIDE(readdir, readdir64), dirent*, readdir, (DIR * listing), listing)
INTERCEPT(int, closedir, (DIR * listing), listing)
INTERCEPT_AS(WIDE(fstatfs, fstatfs64), int, fstatfs, (int file, struct statfs* status), file,
             status)
INTERCEPT_AS(WIDE(statfs, statfs64), int, statfs, (const char* path, struct statfs* status), path,
             status)
INTERCEPT_AS(WIDE(stat, __stat64_time64), int, stat, (const char* path, struct stat* status), path,
             status)
INTERCEPT_AS(WIDE(lstat, __lstat64_time64), int, lstat, (const char* path, struct stat* status),
             path, status)
INTERCEPT(int, mkdir, (const char* path, mode_t mode), path, mode)
INTERCEPT(char*, realpath, (const char* path, char* resolved), path, resolved)
INTERCEPT_AS(WIDE(time, __time64), std::time_t, time, (std::time_t* const now), now)
INTERCEPT_AS(WIDE(getrusage, __getrusage64), int, getrusage, (int who, rusage* usage), who, usage)
INTERCEPT_AS(WIDE(gmtime_r, __gmtime64_r), std::tm*, gmtime_r,
             (const std::time_t* time, std::tm* parts), time, parts)
INTERCEPT(std::size_t, strftime,
          (char* text, std::size_t size, const char* format, const std::tm* parts), text, size,
          format, parts)
INTERCEPT_AS(WIDE(clock_gettime, __clock_gettime64), int, clock_gettime,
             (clockid_t clock, timespec* now), clock, now)
INTERCEPT(int, isatty, (int file), file)
INTERCEPT(pid_t, tcgetpgrp, (int file), file)
INTERCEPT(int, poll, (pollfd * files, nfds_t count, int timeout), files, count, timeout)

// The rest are variadic or go by several names: which one the compiler takes depends on
// what it optimises and checks.
extern "C" int __real_open(const char* path, int flags, ...) __asm__("__real_" WIDE(open, open64));
extern "C" int __real_ioctl(int file, unsigned long request,
                            ...) __asm__("__real_" WIDE(ioctl, __ioctl_time64));
extern "C" int __real_vsnprintf(char* text, std::size_t size, const char* format, va_list values);
extern "C" std::size_t __real_fwrite(const void* bytes, std::size_t size, std::size_t count,
                                     FILE* stream);

namespace {

int open_file(const char* path, int flags, mode_t mode)
{
    return __real_open(path, flags, mode);
}

int control_device(int file, unsigned long request, void* argument)
{
    return __real_ioctl(file, request, argument);
}

std::size_t print_text(FILE* stream, std::string_view text)
{
    return __real_fwrite(text.data(), 1, text.size(), stream);
}

} // namespace

InterceptedCall<int(const char*, int, mode_t)> open_call = {open_file, nullptr, 0};
InterceptedCall<int(int, unsigned long, void*)> ioctl_call = {control_device, nullptr, 0};
InterceptedCall<int(char*, std::size_t, const char*, va_list)> format_call = {__real_vsnprintf,
                                                                              nullptr, 0};
InterceptedCall<std::size_t(std::FILE*, std::string_view)> print_call = {print_text, nullptr, 0};

namespace {

bool print(FILE* stream, std::string_view text)
{
    return print_call.make(stream, text) == text.size();
}

int print_formatted(FILE* stream, const char* format, va_list values)
{
    va_list measured;
    va_copy(measured, values);
    const int length = __real_vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    std::string text(static_cast<std::size_t>(length), '\0');
    __real_vsnprintf(text.data(), text.size() + 1, format, values);
    return print(stream, text) ? length : -1;
}

} // namespace

// Defines a function that stands for another name of one of these.
#define STAND_IN(result, name, parameters, ...)                                                    \
    extern "C" result __wrap_##name parameters;                                                    \
    result __wrap_##name parameters                                                                \
    {                                                                                              \
        name_of_call = #name;                                                                      \
        return __VA_ARGS__;                                                                        \
    }

// The same for a variadic function, whose last named parameter is last.
#define STAND_IN_VARIADIC(name, parameters, last, ...)                                             \
    STAND_IN_VARIADIC_AS(#name, name, parameters, last, __VA_ARGS__)
#define STAND_IN_VARIADIC_AS(linked, name, parameters, last, ...)                                  \
    extern "C" int __wrap_##name parameters __asm__("__wrap_" linked);                             \
    int __wrap_##name parameters                                                                   \
    {                                                                                              \
        name_of_call = linked;                                                                     \
        va_list values;                                                                            \
        va_start(values, last);                                                                    \
        const int result = __VA_ARGS__;                                                            \
        va_end(values);                                                                            \
        return result;                                                                             \
    }

STAND_IN(char*, __realpath_chk, (const char* path, char* resolved, std::size_t),
         realpath_call.make(path, resolved))
STAND_IN(int, vsnprintf, (char* text, std::size_t size, const char* format, va_list values),
         format_call.make(text, size, format, values))
STAND_IN(int, __vsnprintf_chk,
         (char* text, std::size_t size, int, std::size_t, const char* format, va_list values),
         format_call.make(text, size, format, values))
STAND_IN(std::size_t, fwrite,
         (const void* bytes, std::size_t size, std::size_t count, FILE* stream),
         print(stream, {static_cast<const char*>(bytes), size* count}) ? count : 0)
STAND_IN(int, fputs, (const char* text, FILE* stream), print(stream, text) ? 0 : EOF)

STAND_IN_VARIADIC_AS(WIDE(open, open64), open, (const char* path, int flags, ...), flags,
                     open_call.make(path, flags,
                                    (flags & O_CREAT) != 0 ? va_arg(values, mode_t) : 0))
STAND_IN_VARIADIC_AS(WIDE(ioctl, __ioctl_time64), ioctl, (int file, unsigned long request, ...),
                     request, ioctl_call.make(file, request, va_arg(values, void*)))
STAND_IN_VARIADIC(snprintf, (char* text, std::size_t size, const char* format, ...), format,
                  format_call.make(text, size, format, values))
STAND_IN_VARIADIC(__snprintf_chk,
                  (char* text, std::size_t size, int, std::size_t, const char* format, ...), format,
                  format_call.make(text, size, format, values))
STAND_IN_VARIADIC(printf, (const char* format, ...), format,
                  print_formatted(stdout, format, values))
STAND_IN_VARIADIC(__printf_chk, (int, const char* format, ...), format,
                  print_formatted(stdout, format, values))
STAND_IN_VARIADIC(fprintf, (FILE * stream, const char* format, ...), format,
                  print_formatted(stream, format, values))
STAND_IN_VARIADIC(__fprintf_chk, (FILE * stream, int, const char* format, ...), format,
                  print_formatted(stream, format, values))
