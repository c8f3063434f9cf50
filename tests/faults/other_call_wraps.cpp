// The calls to do with memory, texts and time that the test program is linked with in
// place of the real ones.

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "faults/call_wraps.h"

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
__attribute__((format(printf, 3, 0))) int __real_vsnprintf(char* text, std::size_t size,
                                                           const char* format, va_list values);
std::size_t __real_fwrite(const void* bytes, std::size_t size, std::size_t count, FILE* stream);
int __real_fputs(const char* text, FILE* stream);
std::time_t __real_time(std::time_t* now);
std::tm* __real_gmtime_r(const std::time_t* time, std::tm* parts);
std::size_t __real_strftime(char* text, std::size_t size, const char* format, const std::tm* parts);
int __real_madvise(void* block, std::size_t size, int advice);
int __real_mallopt(int parameter, int value);
void* __wrap_malloc(std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
void __wrap_free(void* block);
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
std::time_t __wrap_time(std::time_t* now);
std::tm* __wrap_gmtime_r(const std::time_t* time, std::tm* parts);
std::size_t __wrap_strftime(char* text, std::size_t size, const char* format, const std::tm* parts);
int __wrap_madvise(void* block, std::size_t size, int advice);
int __wrap_mallopt(int parameter, int value);
}

namespace {

// A formatting that fails half way leaves no NUL behind what it wrote.
__attribute__((format(printf, 3, 0))) int fail_half_way(char* text, std::size_t size,
                                                        const char* format, va_list values)
{
    if (text != nullptr && size > 0) {
        const int length = __real_vsnprintf(text, size, format, values);
        const std::size_t half = std::min(static_cast<std::size_t>(length), size - 1) / 2;
        std::memset(text + half, '?', size - half);
    }
    return -1;
}

__attribute__((format(printf, 4, 0))) int format_text(WatchedRun* run, char* text, std::size_t size,
                                                      const char* format, va_list values)
{
    if (run != nullptr) {
        run->before_assembling();
    }
    return refuses(run, Call::Vsnprintf, ENOMEM) ? fail_half_way(text, size, format, values)
                                                 : __real_vsnprintf(text, size, format, values);
}

__attribute__((format(printf, 4, 0))) int format_path(WatchedRun* run, char* text, std::size_t size,
                                                      const char* format, va_list values)
{
    const std::uint64_t number = run != nullptr ? run->count_before(Call::Snprintf) : 0;
    return refuses(run, Call::Snprintf, ENOMEM, {}, number)
               ? fail_half_way(text, size, format, values)
               : __real_vsnprintf(text, size, format, values);
}

bool refuses_to_print(WatchedRun* run)
{
    return run != nullptr && refuses(run, Call::Print, ENOSPC, {}, run->count_before(Call::Print));
}

__attribute__((format(printf, 3, 0))) int print(WatchedRun* run, FILE* stream, const char* format,
                                                va_list values)
{
    return refuses_to_print(run) ? -1 : std::vfprintf(stream, format, values);
}

} // namespace

extern "C" {
void* __wrap_malloc(std::size_t size)
{
    static std::uint64_t& hits = hits_of("malloc");
    WatchedRun* run = watched(hits);
    if (run == nullptr) {
        return __real_malloc(size);
    }
    if (refuses(run, Call::Malloc, ENOMEM, run->file())) {
        return nullptr;
    }
    void* block = __real_malloc(size);
    if (block != nullptr) {
        std::memset(block, 0xA5, size); // what is read before it is written shows
    }
    run->allocated(block);
    return block;
}

void* __wrap_realloc(void* block, std::size_t size)
{
    static std::uint64_t& hits = hits_of("realloc");
    WatchedRun* run = watched(hits);
    if (run == nullptr) {
        return __real_realloc(block, size);
    }
    run->before_assembling();
    if (refuses(run, Call::Realloc, ENOMEM)) {
        return nullptr;
    }
    run->released(block);
    void* moved = __real_realloc(block, size);
    run->allocated(moved);
    return moved;
}

void __wrap_free(void* block)
{
    static std::uint64_t& hits = hits_of("free");
    if (WatchedRun* run = watched(hits)) {
        run->released(block);
    }
    __real_free(block);
}

int __wrap_vsnprintf(char* text, std::size_t size, const char* format, va_list values)
{
    static std::uint64_t& hits = hits_of("vsnprintf");
    return format_text(watched(hits), text, size, format, values);
}

int __wrap___vsnprintf_chk(char* text, std::size_t size, int flag, std::size_t room,
                           const char* format, va_list values)
{
    static std::uint64_t& hits = hits_of("__vsnprintf_chk");
    static_cast<void>(flag);
    static_cast<void>(room);
    return format_text(watched(hits), text, size, format, values);
}

int __wrap_snprintf(char* text, std::size_t size, const char* format, ...)
{
    static std::uint64_t& hits = hits_of("snprintf");
    va_list values;
    va_start(values, format);
    const int length = format_path(watched(hits), text, size, format, values);
    va_end(values);
    return length;
}

int __wrap___snprintf_chk(char* text, std::size_t size, int flag, std::size_t room,
                          const char* format, ...)
{
    static std::uint64_t& hits = hits_of("__snprintf_chk");
    static_cast<void>(flag);
    static_cast<void>(room);
    va_list values;
    va_start(values, format);
    const int length = format_path(watched(hits), text, size, format, values);
    va_end(values);
    return length;
}

int __wrap_printf(const char* format, ...)
{
    static std::uint64_t& hits = hits_of("printf");
    va_list values;
    va_start(values, format);
    const int length = print(watched(hits), stdout, format, values);
    va_end(values);
    return length;
}

int __wrap___printf_chk(int flag, const char* format, ...)
{
    static std::uint64_t& hits = hits_of("__printf_chk");
    static_cast<void>(flag);
    va_list values;
    va_start(values, format);
    const int length = print(watched(hits), stdout, format, values);
    va_end(values);
    return length;
}

int __wrap_fprintf(FILE* stream, const char* format, ...)
{
    static std::uint64_t& hits = hits_of("fprintf");
    va_list values;
    va_start(values, format);
    const int length = print(watched(hits), stream, format, values);
    va_end(values);
    return length;
}

int __wrap___fprintf_chk(FILE* stream, int flag, const char* format, ...)
{
    static std::uint64_t& hits = hits_of("__fprintf_chk");
    static_cast<void>(flag);
    va_list values;
    va_start(values, format);
    const int length = print(watched(hits), stream, format, values);
    va_end(values);
    return length;
}

std::size_t __wrap_fwrite(const void* bytes, std::size_t size, std::size_t count, FILE* stream)
{
    static std::uint64_t& hits = hits_of("fwrite");
    return refuses_to_print(watched(hits)) ? 0 : __real_fwrite(bytes, size, count, stream);
}

int __wrap_fputs(const char* text, FILE* stream)
{
    static std::uint64_t& hits = hits_of("fputs");
    return refuses_to_print(watched(hits)) ? EOF : __real_fputs(text, stream);
}

std::time_t __wrap_time(std::time_t* now)
{
    static std::uint64_t& hits = hits_of("time");
    WatchedRun* run = watched(hits);
    if (run == nullptr) {
        return __real_time(now);
    }
    return refuses(run, Call::Time, EFAULT) ? -1 : std::time_t{WATCHED_TIME};
}

std::tm* __wrap_gmtime_r(const std::time_t* time, std::tm* parts)
{
    static std::uint64_t& hits = hits_of("gmtime_r");
    return refuses(watched(hits), Call::Gmtime, EOVERFLOW) ? nullptr : __real_gmtime_r(time, parts);
}

std::size_t __wrap_strftime(char* text, std::size_t size, const char* format, const std::tm* parts)
{
    static std::uint64_t& hits = hits_of("strftime");
    return refuses(watched(hits), Call::Strftime, ERANGE)
               ? 0
               : __real_strftime(text, size, format, parts);
}

int __wrap_madvise(void* block, std::size_t size, int advice)
{
    static std::uint64_t& hits = hits_of("madvise");
    return refuses(watched(hits), Call::Madvise, EINVAL) ? -1 : __real_madvise(block, size, advice);
}

int __wrap_mallopt(int parameter, int value)
{
    static std::uint64_t& hits = hits_of("mallopt");
    return refuses(watched(hits), Call::Mallopt, EINVAL) ? 0 : __real_mallopt(parameter, value);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
