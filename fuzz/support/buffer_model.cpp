#include "support/buffer_model.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "support/require.h"

namespace {

constexpr std::size_t MODEL_SIZE = 20000;

// The buffer that is judged and what it ought to hold.
struct Pair
{
    TextBuffer buffer;
    std::array<char, MODEL_SIZE> text;
    std::size_t length;
    bool allocated;
};

bool fits(const Pair& pair, std::size_t count)
{
    return count <= pair.text.size() - pair.length;
}

void expect(Pair& pair, std::string_view appended)
{
    appended.copy(pair.text.data() + pair.length, appended.size());
    pair.length += appended.size();
    pair.allocated = true;
}

void append_text(Pair& pair, Input& input)
{
    const auto bytes = input.take_up_to(input.byte());
    const ExactText text({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (fits(pair, bytes.size())) {
        require(text_buffer_append(pair.buffer, text.view()), "a text is appended");
        expect(pair, text.view());
    }
}

void append_run(Pair& pair, Input& input)
{
    static std::array<char, 16 * 255> run;
    const std::size_t count = std::size_t{16} * input.byte();
    std::memset(run.data(), input.byte(), count);
    if (fits(pair, count)) {
        require(text_buffer_append(pair.buffer, {run.data(), count}), "a run is appended");
        expect(pair, {run.data(), count});
    }
}

void append_char(Pair& pair, Input& input)
{
    const std::uint8_t byte = input.byte();
    const char stored = static_cast<char>(byte);
    // Only the low byte counts.
    const int passed = static_cast<int>(input.byte()) * 256 + byte;
    if (fits(pair, 1)) {
        require(text_buffer_append_char(pair.buffer, passed), "a byte is appended");
        expect(pair, {&stored, 1});
    }
}

std::uint64_t take_number(Input& input)
{
    std::uint64_t number = 0;
    for (const std::uint8_t byte : input.take_up_to(input.byte() % 9)) {
        number = number * 256 + byte;
    }
    return number;
}

// The decimal digits of number, in the last bytes of digits.
std::string_view digits_of(std::uint64_t number, std::array<char, 20>& digits)
{
    std::size_t first = digits.size();
    do {
        digits[--first] = static_cast<char>('0' + static_cast<char>(number % 10));
        number /= 10;
    } while (number > 0);
    return {digits.data() + first, digits.size() - first};
}

void append_number(Pair& pair, Input& input)
{
    std::array<char, 20> digits;
    const std::uint64_t number = take_number(input);
    const std::string_view text = digits_of(number, digits);
    if (fits(pair, text.size())) {
        require(text_buffer_append_number(pair.buffer, number), "a number is appended");
        expect(pair, text);
    }
}

void append_formatted(Pair& pair, Input& input)
{
    std::array<char, 256> word;
    const auto bytes = input.take_up_to(input.byte());
    std::copy(bytes.begin(), bytes.end(), word.begin());
    word[bytes.size()] = '\0';
    const std::string_view shown = word.data(); // up to the first NUL

    std::array<char, 20> digits;
    const std::uint64_t number = take_number(input);
    if (fits(pair, shown.size() + 32)) {
        require(text_buffer_appendf(pair.buffer, "%s %zu%%", word.data(), std::size_t{number}),
                "a formatted text is appended");
        expect(pair, shown);
        expect(pair, " ");
        expect(pair, digits_of(number, digits));
        expect(pair, "%");
    }
}

void append_nothing(Pair& pair)
{
    require(text_buffer_append(pair.buffer, {}), "nothing is appended");
    require(text_buffer_appendf(pair.buffer, "%s", ""), "nothing is formatted");
    expect(pair, "");
}

void release(Pair& pair)
{
    text_buffer_free(pair.buffer);
    pair.length = 0;
    pair.allocated = false;
}

void take_step(Pair& pair, Input& input)
{
    switch (input.byte() % 7) {
    case 0:
        return append_text(pair, input);
    case 1:
        return append_run(pair, input);
    case 2:
        return append_char(pair, input);
    case 3:
        return append_number(pair, input);
    case 4:
        return append_formatted(pair, input);
    case 5:
        return append_nothing(pair);
    default:
        return release(pair);
    }
}

} // namespace

void judge_buffer(const TextBuffer& buffer)
{
    if (buffer.data == nullptr) {
        require(buffer.length == 0 && buffer.capacity == 0, "an empty buffer has no bytes");
        return;
    }
    std::uint64_t capacity = 256;
    while (capacity < buffer.length + 1) {
        capacity += capacity;
    }
    require(buffer.capacity == capacity, "a buffer doubles from 256 and no further than it needs");
    require(buffer.data[buffer.length] == '\0', "a NUL ends a buffer's text");
}

void judge_buffer_steps(Input& input)
{
    static Pair pair;
    text_buffer_init(pair.buffer);
    pair.length = 0;
    pair.allocated = false;
    while (!input.is_empty()) {
        take_step(pair, input);
        judge_buffer(pair.buffer);
        require((pair.buffer.data != nullptr) == pair.allocated, "an append allocates");
        require(pair.buffer.length == pair.length, "a buffer's length");
    }
    require(pair.length == 0 || std::memcmp(pair.buffer.data, pair.text.data(), pair.length) == 0,
            "a buffer's text");
    text_buffer_free(pair.buffer);
    judge_buffer(pair.buffer);
}
