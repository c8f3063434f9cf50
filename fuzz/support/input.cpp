#include "support/input.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint8_t FIRST_WORD = 0x80;
constexpr std::uint8_t ITSELF = 0xfc;
constexpr std::uint8_t AGAIN = 0xfd;
constexpr std::uint8_t RUN = 0xff;

struct Expansion
{
    std::span<char> text;
    std::size_t length;
};

std::size_t room(const Expansion& expansion)
{
    return expansion.text.size() - expansion.length;
}

void add_run(Expansion& expansion, std::size_t count, std::uint8_t byte)
{
    const std::size_t added = std::min(count, room(expansion));
    std::memset(expansion.text.data() + expansion.length, byte, added);
    expansion.length += added;
}

void add_again(Expansion& expansion, std::size_t tail, std::size_t times)
{
    tail = std::min(tail, expansion.length);
    for (; times > 0 && tail <= room(expansion); --times) {
        char* end = expansion.text.data() + expansion.length;
        std::memcpy(end, end - tail, tail);
        expansion.length += tail;
    }
}

void add_word(Expansion& expansion, std::string_view word)
{
    const std::size_t added = std::min(word.size(), room(expansion));
    std::memcpy(expansion.text.data() + expansion.length, word.data(), added);
    expansion.length += added;
}

// Bytes that the form beginning with first takes.
std::size_t form_size(std::uint8_t first)
{
    if (first == ITSELF) {
        return 2;
    }
    return first > ITSELF ? 3 : 1;
}

} // namespace

std::size_t expand(std::span<const std::uint8_t> short_form, Words words, std::span<char> text)
{
    Expansion expansion = {text, 0};
    std::size_t at = 0;
    while (at < short_form.size() && room(expansion) > 0) {
        const std::uint8_t* form = short_form.data() + at;
        std::size_t size = form_size(*form);
        if (size > short_form.size() - at) {
            size = 1;
        }
        at += size;
        if (size == 3 && *form == AGAIN) {
            add_again(expansion, form[1], form[2]);
        } else if (size == 3) {
            add_run(expansion, std::size_t{*form == RUN ? 1U : 16U} * form[1], form[2]);
        } else if (size == 2) {
            add_run(expansion, 1, form[1]);
        } else if (*form >= FIRST_WORD && *form < FIRST_WORD + words.size()) {
            add_word(expansion, words[std::size_t{*form} - FIRST_WORD]);
        } else {
            add_run(expansion, 1, *form);
        }
    }
    return expansion.length;
}
