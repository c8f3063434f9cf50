#include "support/allocation_faults.h"

#include <cerrno>
#include <cstdlib>

namespace {

std::uint64_t calls = 0;
std::uint64_t first_failing = 0; // number of the call, counted like calls; 0: none
bool fails_on = false;
std::uint64_t failed = 0;

bool next_call_fails()
{
    ++calls;
    if (first_failing == 0 || calls < first_failing || (calls > first_failing && !fails_on)) {
        return false;
    }
    ++failed;
    errno = ENOMEM;
    return true;
}

} // namespace

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void* __wrap_malloc(std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);

void* __wrap_malloc(std::size_t size)
{
    return next_call_fails() ? nullptr : __real_malloc(size);
}

void* __wrap_realloc(void* block, std::size_t size)
{
    return next_call_fails() ? nullptr : __real_realloc(block, size);
}
}

AllocationFault::AllocationFault(std::uint64_t number, Length length)
{
    first_failing = calls + number;
    fails_on = length == Length::FromThenOn;
    failed = 0;
}

AllocationFault::~AllocationFault()
{
    first_failing = 0;
}

std::uint64_t AllocationFault::failures() const
{
    return failed;
}

std::uint64_t allocation_count()
{
    return calls;
}
