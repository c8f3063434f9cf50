// Memory for a text that ends, with its NUL, right before a page that nobody may
// touch: whoever reads beyond the NUL is killed, in every build.

#pragma once

#include <cstddef>
#include <string_view>

class GuardedText
{
public:
    // Texts have at most capacity bytes, the NUL not counted.
    explicit GuardedText(std::size_t capacity);
    ~GuardedText();
    GuardedText(const GuardedText&) = delete;
    GuardedText& operator=(const GuardedText&) = delete;

    // The NUL, the last byte that may be read. Texts are written before it.
    char* nul() const;

    // Copies text, which holds no NUL that counts, to before the NUL.
    const char* place(std::string_view text) const;

private:
    std::size_t size_; // of the pages that may be touched
    std::size_t guard_size_;
    char* pages_;
};
