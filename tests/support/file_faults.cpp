#include "support/file_faults.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include <unistd.h>

#include "support/call_hooks.h"

namespace {

constexpr std::size_t NO_LIMIT = static_cast<std::size_t>(-1);

bool armed = false;
FileCall faulty_call = FileCall::Read;
std::uint64_t calls_left = 0;
std::int64_t faulty_result = 0;
bool fault_happened = false;
std::size_t transfer_limit = NO_LIMIT;

bool is_faulty(FileCall call)
{
    if (!armed || call != faulty_call || calls_left == 0 || --calls_left > 0) {
        return false;
    }
    fault_happened = true;
    errno = EIO;
    return true;
}

} // namespace

extern "C" {
ssize_t __real_pread(int file, void* bytes, std::size_t count, off_t offset);
ssize_t __real_write(int file, const void* bytes, std::size_t count);
off_t __real_lseek(int file, off_t offset, int whence);
ssize_t __wrap_pread(int file, void* bytes, std::size_t count, off_t offset);
ssize_t __wrap_write(int file, const void* bytes, std::size_t count);
off_t __wrap_lseek(int file, off_t offset, int whence);

ssize_t __wrap_pread(int file, void* bytes, std::size_t count, off_t offset)
{
    before_file_call(FileCall::Read);
    return is_faulty(FileCall::Read)
               ? static_cast<ssize_t>(faulty_result)
               : __real_pread(file, bytes, std::min(count, transfer_limit), offset);
}

ssize_t __wrap_write(int file, const void* bytes, std::size_t count)
{
    before_file_call(FileCall::Write);
    return is_faulty(FileCall::Write) ? static_cast<ssize_t>(faulty_result)
                                      : __real_write(file, bytes, std::min(count, transfer_limit));
}

off_t __wrap_lseek(int file, off_t offset, int whence)
{
    before_file_call(FileCall::Seek);
    return is_faulty(FileCall::Seek) ? static_cast<off_t>(faulty_result)
                                     : __real_lseek(file, offset, whence);
}
}

FileFault::FileFault(FileCall call, std::uint64_t number, std::int64_t result)
{
    armed = true;
    faulty_call = call;
    calls_left = number;
    faulty_result = result;
    fault_happened = false;
}

FileFault::~FileFault()
{
    armed = false;
}

bool FileFault::happened() const
{
    return fault_happened;
}

ShortTransfers::ShortTransfers(std::size_t limit)
{
    transfer_limit = limit;
}

ShortTransfers::~ShortTransfers()
{
    transfer_limit = NO_LIMIT;
}
