#include "report/guarded_text.h"

#include <cstdlib>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

GuardedText::GuardedText(std::size_t capacity)
    : size_(0), guard_size_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))), pages_(nullptr)
{
    size_ = (capacity / guard_size_ + 1) * guard_size_;
    void* pages = mmap(nullptr, size_ + guard_size_, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) {
        std::abort();
    }
    pages_ = static_cast<char*>(pages);
    if (mprotect(pages_ + size_, guard_size_, PROT_NONE) != 0) {
        std::abort();
    }
}

GuardedText::~GuardedText()
{
    munmap(pages_, size_ + guard_size_);
}

char* GuardedText::nul() const
{
    return pages_ + size_ - 1;
}

const char* GuardedText::place(std::string_view text) const
{
    char* start = nul() - text.size();
    std::memcpy(start, text.data(), text.size());
    return start;
}
