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

// Declares the C library's own function and defines the one that the linker puts in its
// place.
#define INTERCEPT(result, name, parameters, ...)                                                   \
    extern "C" result __real_##name parameters;                                                    \
    extern "C" result __wrap_##name parameters;                                                    \
    InterceptedCall<result parameters> name##_call = {__real_##name, nullptr, 0};                  \
    result __wrap_##name parameters                                                                \
    {                                                                                              \
        name_of_call = #name;                                                                      \
        return name##_call.make(__VA_ARGS__);                                                      \
    }

INTERCEPT(void*, malloc, (std::size_t size), size)
INTERCEPT(void*, realloc, (void* block, std::size_t size), block, size)
INTERCEPT(void, free, (void* block), block)
INTERCEPT(int, madvise, (void* block, std::size_t size, int advice), block, size, advice)
INTERCEPT(int, mallopt, (int parameter, int value), parameter, value)
INTERCEPT(off_t, lseek, (int file, off_t offset, int whence), file, offset, whence)
INTERCEPT(ssize_t, pread, (int file, void* bytes, std::size_t count, off_t offset), file, bytes,
          count, offset)
INTERCEPT(ssize_t, write, (int file, const void* bytes, std::size_t count), file, bytes, count)
INTERCEPT(int, close, (int file), file)
INTERCEPT(DIR*, opendir, (const char* path), path)
INTERCEPT(dirent*, readdir, (DIR * listing), listing)
INTERCEPT(int, closedir, (DIR * listing), listing)
INTERCEPT(int, stat, (const char* path, struct stat* status), path, status)
INTERCEPT(int, mkdir, (const char* path, mode_t mode), path, mode)
INTERCEPT(char*, realpath, (const char* path, char* resolved), path, resolved)
INTERCEPT(std::time_t, time, (std::time_t * now), now)
INTERCEPT(std::tm*, gmtime_r, (const std::time_t* time, std::tm* parts), time, parts)
INTERCEPT(std::size_t, strftime,
          (char* text, std::size_t size, const char* format, const std::tm* parts), text, size,
          format, parts)

// The rest are variadic or go by several names: which one the compiler takes depends on
// what it optimises and checks.
extern "C" {
int __real_open(const char* path, int flags, ...);
__attribute__((format(printf, 3, 0))) int __real_vsnprintf(char* text, std::size_t size,
                                                           const char* format, va_list values);
std::size_t __real_fwrite(const void* bytes, std::size_t size, std::size_t count, FILE* stream);

int __wrap_open(const char* path, int flags, ...);
char* __wrap___realpath_chk(const char* path, char* resolved, std::size_t size);
__attribute__((format(printf, 3, 0))) int __wrap_vsnprintf(char* text, std::size_t size,
                                                           const char* format, va_list values);
__attribute__((format(printf, 5, 0))) int __wrap___vsnprintf_chk(char* text, std::size_t size,
                                                                 int flag, std::size_t room,
                                                                 const char* format,
                                                                 va_list values);
__attribute__((format(printf, 3, 4))) int __wrap_snprintf(char* text, std::size_t size,
                                                          const char* format, ...);
__attribute__((format(printf, 5, 6))) int __wrap___snprintf_chk(char* text, std::size_t size,
                                                                int flag, std::size_t room,
                                                                const char* format, ...);
__attribute__((format(printf, 1, 2))) int __wrap_printf(const char* format, ...);
__attribute__((format(printf, 2, 3))) int __wrap___printf_chk(int flag, const char* format, ...);
__attribute__((format(printf, 2, 3))) int __wrap_fprintf(FILE* stream, const char* format, ...);
__attribute__((format(printf, 3, 4))) int __wrap___fprintf_chk(FILE* stream, int flag,
                                                               const char* format, ...);
std::size_t __wrap_fwrite(const void* bytes, std::size_t size, std::size_t count, FILE* stream);
int __wrap_fputs(const char* text, FILE* stream);
}

namespace {

int open_file(const char* path, int flags, mode_t mode)
{
    return __real_open(path, flags, mode);
}

std::size_t print_text(FILE* stream, std::string_view text)
{
    return __real_fwrite(text.data(), 1, text.size(), stream);
}

int make_formatted(const char* name, char* text, std::size_t size, const char* format,
                   va_list values)
{
    name_of_call = name;
    return format_call.make(text, size, format, values);
}

bool make_printed(const char* name, FILE* stream, std::string_view text)
{
    name_of_call = name;
    return print_call.make(stream, text) == text.size();
}

__attribute__((format(printf, 3, 0))) int print_formatted(const char* name, FILE* stream,
                                                          const char* format, va_list values)
{
    va_list measured;
    va_copy(measured, values);
    std::string text(static_cast<std::size_t>(__real_vsnprintf(nullptr, 0, format, measured)),
                     '\0');
    va_end(measured);
    __real_vsnprintf(text.data(), text.size() + 1, format, values);
    return make_printed(name, stream, text) ? static_cast<int>(text.size()) : -1;
}

} // namespace

InterceptedCall<int(const char*, int, mode_t)> open_call = {open_file, nullptr, 0};
InterceptedCall<int(char*, std::size_t, const char*, va_list)> format_call = {__real_vsnprintf,
                                                                              nullptr, 0};
InterceptedCall<std::size_t(std::FILE*, std::string_view)> print_call = {print_text, nullptr, 0};

int __wrap_open(const char* path, int flags, ...)
{
    va_list values;
    va_start(values, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(values, mode_t) : 0;
    va_end(values);
    name_of_call = "open";
    return open_call.make(path, flags, mode);
}

char* __wrap___realpath_chk(const char* path, char* resolved, std::size_t)
{
    name_of_call = "__realpath_chk";
    return realpath_call.make(path, resolved);
}

int __wrap_vsnprintf(char* text, std::size_t size, const char* format, va_list values)
{
    return make_formatted("vsnprintf", text, size, format, values);
}

int __wrap___vsnprintf_chk(char* text, std::size_t size, int, std::size_t, const char* format,
                           va_list values)
{
    return make_formatted("__vsnprintf_chk", text, size, format, values);
}

int __wrap_snprintf(char* text, std::size_t size, const char* format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = make_formatted("snprintf", text, size, format, values);
    va_end(values);
    return length;
}

int __wrap___snprintf_chk(char* text, std::size_t size, int, std::size_t, const char* format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = make_formatted("__snprintf_chk", text, size, format, values);
    va_end(values);
    return length;
}

int __wrap_printf(const char* format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = print_formatted("printf", stdout, format, values);
    va_end(values);
    return length;
}

int __wrap___printf_chk(int, const char* format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = print_formatted("__printf_chk", stdout, format, values);
    va_end(values);
    return length;
}

int __wrap_fprintf(FILE* stream, const char* format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = print_formatted("fprintf", stream, format, values);
    va_end(values);
    return length;
}

int __wrap___fprintf_chk(FILE* stream, int, const char* format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = print_formatted("__fprintf_chk", stream, format, values);
    va_end(values);
    return length;
}

std::size_t __wrap_fwrite(const void* bytes, std::size_t size, std::size_t count, FILE* stream)
{
    const std::string_view text(static_cast<const char*>(bytes), size * count);
    return make_printed("fwrite", stream, text) ? count : 0;
}

int __wrap_fputs(const char* text, FILE* stream)
{
    return make_printed("fputs", stream, text) ? 0 : EOF;
}
