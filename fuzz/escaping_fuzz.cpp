// The escapers, the entity decoder and the text buffer below them.
//
// An input: options, a limit, two places at which the text is cut, and the text in short
// form; or, by the options, the steps of a buffer's life.

#include <algorithm>
#include <array>
#include <cstring>

#include "core/text_buffer.h"
#include "report/html_entities.h"
#include "report/html_escape.h"
#include "summary/json_summary.h"
#include "support/buffer_model.h"
#include "support/input.h"
#include "support/naive_decoders.h"
#include "support/require.h"
#include "support/target.h"

namespace {

constexpr std::uint8_t BUFFER_STEPS = 1; // the input is steps, not a text
constexpr std::uint8_t LIMIT_BY_LENGTH = 2;

constexpr std::size_t TEXT_SIZE = 4096;

constexpr std::array<std::string_view, 12> WORDS = {"&amp;", "&lt;",  "&gt;", "&quot;",
                                                    "&#39;", "&#",    "&quo", "<>\"'&",
                                                    "<wbr>", "\\u00", "\\/",  ";"};

using Escaper = bool (*)(TextBuffer& buffer, std::string_view text);

// An owned buffer that already holds some bytes, so that it grows at other places.
class EscapedText
{
public:
    EscapedText(Escaper escape, std::string_view before, std::string_view text, std::size_t cut)
        : start_(before.size())
    {
        text_buffer_init(buffer_);
        judge_buffer(buffer_);
        require(before.empty() || text_buffer_append(buffer_, before), "a text before is appended");
        require(escape(buffer_, text.substr(0, cut)), "the first part is escaped");
        judge_buffer(buffer_);
        require(escape(buffer_, text.substr(cut)), "the second part is escaped");
        judge_buffer(buffer_);
        require(buffer_.data != nullptr || (before.empty() && text.empty()),
                "only an empty text allocates nothing");
        require(view(0).starts_with(before), "the text before stays");
    }

    ~EscapedText()
    {
        text_buffer_free(buffer_);
        require(buffer_.data == nullptr, "a freed buffer is empty");
        judge_buffer(buffer_);
    }

    EscapedText(const EscapedText&) = delete;
    EscapedText& operator=(const EscapedText&) = delete;

    std::string_view view() const
    {
        return view(start_);
    }

private:
    std::string_view view(std::size_t start) const
    {
        return {buffer_.data + start, buffer_.length - start};
    }

    TextBuffer buffer_;
    std::size_t start_;
};

void judge_decoding(std::string_view text, std::size_t limit)
{
    static std::array<char, 2 * TEXT_SIZE> expected;
    const std::size_t length = std::min(naive_decode_html(text, expected.data()), limit);

    const ExactText source(text);
    const std::unique_ptr<char[]> decoded(new char[limit + 1]);
    const char* start = source.view().data();
    html_copy_decoded(decoded.get(), start, start + text.size(), limit);
    require(std::memcmp(decoded.get(), expected.data(), length) == 0, "the decoded text");
    require(decoded[length] == '\0', "the decoded text's NUL");
}

void judge_html(std::string_view text, std::string_view before, std::size_t cut)
{
    static std::array<char, 6 * TEXT_SIZE> decoded;
    const EscapedText escaped(html_append_escaped, before, text, cut);
    require(is_escaped_html(escaped.view()), "escaped text holds references in place of markup");
    const std::size_t length = naive_decode_html(escaped.view(), decoded.data());
    require(std::string_view(decoded.data(), length) == text, "escaped text decodes to itself");

    const char* start = escaped.view().data();
    html_copy_decoded(decoded.data(), start, start + escaped.view().size(), decoded.size() - 1);
    require(std::string_view(decoded.data(), text.size()) == text,
            "our decoder undoes our escaper");
    require(decoded[text.size()] == '\0', "our decoder ends where the text ends");

    const EscapedText path(html_append_escaped_path, before, text, cut);
    require(is_same_but_for_breaks(path.view(), escaped.view()),
            "a path is the escaped text with a break behind each separator");
}

void judge_json(std::string_view text, std::string_view before, std::size_t cut)
{
    static std::array<char, 6 * TEXT_SIZE> decoded;
    const EscapedText escaped(json_append_escaped, before, text, cut);
    std::size_t length = 0;
    require(naive_decode_json(escaped.view(), decoded.data(), length),
            "escaped text is the inside of a JSON string, with no other escapes than are due");
    require(std::string_view(decoded.data(), length) == text, "a JSON string reads as its text");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static std::array<char, TEXT_SIZE> bytes;
    Input input(data, size);
    const std::uint8_t options = input.byte();
    if ((options & BUFFER_STEPS) != 0) {
        judge_buffer_steps(input);
        return 0;
    }
    const std::size_t limit = input.byte();
    const std::size_t first_cut = input.byte();
    const std::size_t second_cut = input.byte();
    const std::string_view text(bytes.data(), expand(input.take_rest(), WORDS, bytes));

    const bool by_length = (options & LIMIT_BY_LENGTH) != 0;
    judge_decoding(text, by_length ? (text.size() + 128) - std::min<std::size_t>(limit, text.size())
                                   : limit);
    const std::string_view before = text.substr(0, std::min(first_cut, text.size()));
    const std::size_t cut = std::min(second_cut, text.size());
    judge_html(text, before, cut);
    judge_json(text, before, cut);
    return 0;
}
