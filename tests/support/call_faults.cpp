#include "support/call_faults.h"

#include <algorithm>
#include <climits>

#include <fcntl.h>

namespace {

// No descriptor of the system's is that high.
constexpr int MEMORY_DESCRIPTOR = INT_MAX;

void* no_memory()
{
    errno = ENOMEM;
    return nullptr;
}

} // namespace

AllocationFault::AllocationFault(std::uint64_t number, Length length)
    : strikes_(number, length), malloc_(malloc_call,
                                        [this](const auto& next, std::size_t size) {
                                            return strikes_.next() ? no_memory() : next(size);
                                        }),
      realloc_(realloc_call, [this](const auto& next, void* block, std::size_t size) {
          return strikes_.next() ? no_memory() : next(block, size);
      })
{
}

std::uint64_t AllocationFault::failures() const
{
    return strikes_.struck();
}

std::uint64_t allocation_count()
{
    return malloc_call.made + realloc_call.made;
}

ShortTransfers::ShortTransfers(std::size_t limit)
    : pread_(pread_call,
             [limit](const auto& next, int file, void* bytes, std::size_t count, off_t offset) {
                 return next(file, bytes, std::min(count, limit), offset);
             }),
      write_(write_call, [limit](const auto& next, int file, const void* bytes, std::size_t count) {
          return next(file, bytes, std::min(count, limit));
      })
{
}

ListedTypes::ListedTypes(std::function<Type(Type)> type_told)
    : readdir_(readdir_call, [type_told = std::move(type_told)](const auto& next, DIR* listing) {
          dirent* entry = next(listing);
          if (entry != nullptr) {
              entry->d_type = type_told(entry->d_type);
          }
          return entry;
      })
{
}

AfterListing::AfterListing(std::string name, std::function<void()> change)
    : readdir_(readdir_call, [this, name = std::move(name),
                              change = std::move(change)](const auto& next, DIR* listing) {
          dirent* entry = next(listing);
          if (!happened_ && name == (entry != nullptr ? entry->d_name : "")) {
              happened_ = true;
              change();
          }
          return entry;
      })
{
}

MemoryFile::MemoryFile()
    : open_(open_call,
            [this](const auto& next, const char* path, int flags, mode_t mode) {
                if ((flags & O_ACCMODE) != O_WRONLY || is_open_) {
                    return next(path, flags, mode);
                }
                path_ = path;
                bytes_.clear();
                is_open_ = true;
                return MEMORY_DESCRIPTOR;
            }),
      write_(write_call,
             [this](const auto& next, int file, const void* bytes, std::size_t count) {
                 if (file != MEMORY_DESCRIPTOR) {
                     return next(file, bytes, count);
                 }
                 bytes_.append(static_cast<const char*>(bytes), count);
                 return static_cast<ssize_t>(count);
             }),
      close_(close_call, [this](const auto& next, int file) {
          if (file != MEMORY_DESCRIPTOR) {
              return next(file);
          }
          is_open_ = false;
          return 0;
      })
{
}
