// Taking an input apart.
//
// Long runs and whole words are out of reach of a fuzzer that changes a few bytes at a
// time, so most texts are written in a short form and expanded:
//   0xff n c  n times the byte c         0xfd n m  the last n bytes m times more
//   0xfe n c  16 n times the byte c      0xfc c    the byte c itself
//   0x80 + i  the target's word number i
// Any other byte stands for itself, and so does the first of a form that is cut off by
// the input's end.

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

using Words = std::span<const std::string_view>;

// The bytes of an input, taken from its front.
class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

    bool is_empty() const
    {
        return rest_.empty();
    }

    // The next byte; 0 when there is none.
    std::uint8_t byte()
    {
        return take_up_to(1).empty() ? std::uint8_t{0} : *(rest_.data() - 1);
    }

    // The next count bytes, or all that are left.
    std::span<const std::uint8_t> take_up_to(std::size_t count)
    {
        const auto taken = rest_.first(count < rest_.size() ? count : rest_.size());
        rest_ = rest_.subspan(taken.size());
        return taken;
    }

    std::span<const std::uint8_t> take_rest()
    {
        return take_up_to(rest_.size());
    }

private:
    std::span<const std::uint8_t> rest_;
};

// Writes the text that short_form stands for to text, cut to what fits there; its
// length is returned.
std::size_t expand(std::span<const std::uint8_t> short_form, Words words, std::span<char> text);
