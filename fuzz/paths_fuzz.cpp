// make_relative_path and append_json_path against their naive versions.
//
// An input: options, two bytes of a capacity, and the two paths in short form with a NUL
// between them.

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <vector>

#include "cli/output_paths.h"
#include "core/paths.h"
#include "support/input.h"
#include "support/naive_paths.h"
#include "support/require.h"
#include "support/target.h"

namespace {

constexpr std::uint8_t CAPACITY_FITS = 1;  // as many bytes as the link takes
constexpr std::uint8_t CAPACITY_SHORT = 2; // one less
constexpr std::uint8_t CAPACITY_GIVEN = 3; // the input's

constexpr std::array<std::string_view, 8> WORDS = {".html", ".HTML", ".htm",   ".HTM",
                                                   "a/",    "../",   "/data/", "\\"};

std::uint64_t capacity_of(std::uint8_t options, std::uint64_t given, std::uint64_t needed)
{
    switch (options & 3) {
    case CAPACITY_FITS:
        return needed;
    case CAPACITY_SHORT:
        return needed - 1;
    case CAPACITY_GIVEN:
        return given;
    default:
        return LONG_PATH_BUFFER_SIZE;
    }
}

void judge_link(std::string_view from, std::string_view to, std::uint8_t options,
                std::uint64_t given)
{
    const std::string expected = naive_relative_link(from, to);
    const std::size_t length = expected.size();
    const std::uint64_t capacity = capacity_of(options, given, length + 1);

    // Of its exact size, so that a byte written behind it is seen.
    const std::unique_ptr<char[]> link(new char[capacity]);
    const bool made = make_relative_path(from, to, link.get(), capacity);
    require(made == (length < capacity), "a link is made exactly when it fits with its NUL");
    require(!made || std::memcmp(link.get(), expected.data(), length) == 0, "the link's text");
    require(!made || link[length] == '\0', "the link's NUL");
}

void judge_json_path(std::string_view page_path)
{
    const std::string expected = naive_json_path(page_path);
    const std::size_t length = expected.size();

    const std::unique_ptr<char[]> path(new char[page_path.size() + 6]);
    BoundedText text = {path.get(), page_path.size() + 6, 0};
    require(append_json_path(text, page_path), "room for the JSON path");
    require(std::memcmp(path.get(), expected.data(), length) == 0, "the JSON path's text");
    require(path[length] == '\0', "the JSON path's NUL");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static std::array<char, 2 * PATH_BUFFER_SIZE> text;
    Input input(data, size);
    const std::uint8_t options = input.byte();
    const std::uint64_t high = input.byte();
    const std::uint64_t given = (high & 3) * 256 + input.byte();
    const std::string_view both(text.data(), expand(input.take_rest(), WORDS, text));

    const std::size_t nul = std::min(both.find('\0'), both.size());
    const std::string_view first = both.substr(0, nul);
    const std::string_view second = both.substr(std::min(nul + 1, both.size()));
    // In blocks of their exact sizes, so that AddressSanitizer sees their ends.
    const std::vector<char> from(first.begin(), first.end());
    const std::vector<char> to(second.begin(), second.end());
    judge_link({from.data(), from.size()}, {to.data(), to.size()}, options, given);
    if (to.size() < PATH_BUFFER_SIZE) {
        judge_json_path({to.data(), to.size()});
    }
    return 0;
}
