#include "support/page_reader.h"

#include <array>

#include "support/require.h"

namespace {

bool decodes_to(std::string_view text, std::string_view expected)
{
    static std::array<char, std::size_t{64} * 1024> decoded;
    require(text.size() <= decoded.size(), "a text of the page is no longer than that");
    return same_text({decoded.data(), decode_page_text(text, decoded.data())}, expected);
}

} // namespace

PageReader::PageReader(std::string_view page) : tokens_(page), token_(tokens_.next()) {}

void PageReader::advance()
{
    token_ = tokens_.next();
}

void PageReader::skip_line_feed()
{
    if (token_.kind == TokenKind::Text && same_text(token_.text, "\n")) {
        advance();
    }
}

void PageReader::skip_to(std::string_view name, std::string_view attributes)
{
    while (token_.kind != TokenKind::Open || !same_text(token_.name, name) ||
           !same_text(token_.attributes, attributes)) {
        require(token_.kind != TokenKind::End, "an element that every page has");
        advance();
    }
    advance();
}

void PageReader::open(std::string_view name, std::string_view attributes)
{
    skip_line_feed();
    require(token_.kind == TokenKind::Open && same_text(token_.name, name),
            "the start tag that is due");
    require(same_text(token_.attributes, attributes), "the start tag's attributes");
    advance();
}

void PageReader::close(std::string_view name)
{
    skip_line_feed();
    require(token_.kind == TokenKind::Close && same_text(token_.name, name),
            "the end tag that is due");
    advance();
}

void PageReader::text(std::string_view expected)
{
    if (expected.empty()) {
        require(token_.kind != TokenKind::Text, "no text where it is empty");
        return;
    }
    require(token_.kind == TokenKind::Text, "a text where one is due");
    require(decodes_to(token_.text, expected), "a text reads back as it was scanned");
    advance();
}

void PageReader::path(std::string_view expected)
{
    while (!expected.empty()) {
        const std::size_t separator = expected.find_first_of("/\\");
        if (separator == expected.npos) {
            text(expected);
            return;
        }
        text(expected.substr(0, separator + 1));
        require(token_.kind == TokenKind::Open && same_text(token_.name, "wbr"), "a path's break");
        advance();
        expected.remove_prefix(separator + 1);
    }
    require(token_.kind != TokenKind::Text, "nothing behind a path");
}

void PageReader::element(std::string_view name, std::string_view attributes,
                         std::string_view expected)
{
    open(name, attributes);
    text(expected);
    require(token_.kind == TokenKind::Close, "nothing else in the element");
    close(name);
}

void PageReader::open_link(std::string_view expected)
{
    constexpr std::string_view LEAD = " href=\"";
    require(token_.kind == TokenKind::Open && same_text(token_.name, "a"), "a link");
    std::string_view value = token_.attributes;
    require(value.starts_with(LEAD) && value.ends_with('"') && value.size() > LEAD.size(),
            "a link's target");
    value.remove_prefix(LEAD.size());
    value.remove_suffix(1);
    require(value.find('"') == value.npos, "one attribute on a link");
    require(decodes_to(value, expected), "a link's target is where the report lies");
    advance();
}

void PageReader::element_of_any_text(std::string_view name)
{
    open(name);
    require(token_.kind == TokenKind::Text, "a text of the page's own");
    advance();
    close(name);
}

void PageReader::end()
{
    skip_line_feed();
    require(token_.kind == TokenKind::End, "nothing behind the page");
}
