// The escapers and the entity decoder.
//
// An input: options, a limit, two places at which the text is cut, and the text in short
// form.

#include <algorithm>
#include <array>
#include <vector>

#include <nlohmann/json.hpp>

#include "core/text_buffer.h"
#include "report/html_entities.h"
#include "report/html_escape.h"
#include "report/naive_scraper.h"
#include "summary/json_summary.h"
#include "support/input.h"
#include "support/read_back.h"
#include "support/require.h"
#include "support/target.h"

namespace {

constexpr std::uint8_t LIMIT_BY_LENGTH = 2;

constexpr std::size_t TEXT_SIZE = 4096;

constexpr std::array<std::string_view, 12> WORDS = {"&amp;", "&lt;",  "&gt;", "&quot;",
                                                    "&#39;", "&#",    "&quo", "<>\"'&",
                                                    "<wbr>", "\\u00", "\\/",  ";"};

using Escaper = bool (*)(TextBuffer& buffer, std::string_view text);

// What the escaper makes of the text in two parts, behind other bytes in its buffer, so
// that the buffer grows at any place.
std::string escaped_by(Escaper escape, std::string_view before, std::string_view text,
                       std::size_t cut)
{
    TextBuffer buffer;
    text_buffer_init(buffer);
    require(text_buffer_append(buffer, before), "the text before is appended");
    require(escape(buffer, text.substr(0, cut)), "the first part is escaped");
    require(escape(buffer, text.substr(cut)), "the second part is escaped");
    require(buffer.data[buffer.length] == '\0', "a NUL ends the text");
    const std::string all(buffer.data, buffer.length);
    text_buffer_free(buffer);
    require(all.starts_with(before), "the text before stays");
    return all.substr(before.size());
}

std::string decoded_by_program(std::string_view text, std::size_t limit)
{
    // Blocks of their exact sizes, so that AddressSanitizer sees their ends.
    const std::vector<char> source(text.begin(), text.end());
    std::vector<char> decoded(limit + 1);
    html_copy_decoded(decoded.data(), source.data(), source.data() + source.size(), limit);
    // A NUL of the text looks like the end, so the length is told by the naive decoder.
    const std::size_t length = std::min(naive_decoded(std::string(text)).size(), limit);
    require(decoded[length] == '\0', "the decoded text's NUL");
    return {decoded.data(), length};
}

std::string with_breaks(std::string_view text)
{
    std::string broken;
    for (const char byte : text) {
        broken += byte;
        broken += byte == '/' || byte == '\\' ? "<wbr>" : "";
    }
    return broken;
}

void judge_html(std::string_view text, std::string_view before, std::size_t cut)
{
    const std::string escaped = escaped_by(html_append_escaped, before, text, cut);
    require(escaped.find_first_of("<>\"'") == escaped.npos, "escaped text holds no markup");
    require(naive_decoded(escaped) == text, "escaped text decodes to itself");
    require(naive_decoded(naive_decoded(escaped_by(html_append_escaped, "", escaped, 0))) == text,
            "text that is escaped already is escaped again");
    require(decoded_by_program(escaped, text.size()) == text, "our decoder undoes our escaper");

    const std::string path = escaped_by(html_append_escaped_path, before, text, cut);
    require(path == with_breaks(escaped), "a path has a break behind each separator");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static std::array<char, TEXT_SIZE> bytes;
    Input input(data, size);
    const std::uint8_t options = input.byte();
    const std::size_t given_limit = input.byte();
    const std::size_t first_cut = input.byte();
    const std::size_t second_cut = input.byte();
    const std::string_view text(bytes.data(), expand(input.take_rest(), WORDS, bytes));

    const std::size_t limit = (options & LIMIT_BY_LENGTH) == 0
                                  ? given_limit
                                  : text.size() + 128 - std::min(given_limit, text.size());
    require(decoded_by_program(text, limit) == naive_decoded(std::string(text)).substr(0, limit),
            "the decoded text");
    const std::string_view before = text.substr(0, std::min(first_cut, text.size()));
    const std::size_t cut = std::min(second_cut, text.size());
    judge_html(text, before, cut);
    const std::string json = "\"" + escaped_by(json_append_escaped, before, text, cut) + "\"";
    require(read_json(json) == as_characters(text), "a JSON string reads as its text");
    return 0;
}
