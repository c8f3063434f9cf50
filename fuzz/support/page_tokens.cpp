#include "support/page_tokens.h"

#include <algorithm>
#include <array>
#include <span>

#include "support/require.h"

namespace {

using namespace std::string_view_literals;

constexpr std::string_view DOCTYPE = "<!doctype html>";

struct Element
{
    std::string_view name;
    std::string_view attributes; // those that may stand on it, each between two blanks
};

constexpr std::array<Element, 29> ELEMENTS = {{
    {"td", " style "},
    {"tr", ""},
    {"wbr", ""},
    {"a", " href "},
    {"span", " class style "},
    {"div", " class "},
    {"th", " style "},
    {"small", ""},
    {"br", ""},
    {"p", " class "},
    {"table", " class data-page-size "},
    {"thead", ""},
    {"tbody", ""},
    {"section", " class id "},
    {"h3", ""},
    {"button", " type class id aria-label data-dt-prev data-dt-next "},
    {"html", " lang "},
    {"head", ""},
    {"meta", " charset name content "},
    {"title", ""},
    {"style", ""},
    {"script", ""},
    {"body", ""},
    {"b", ""},
    {"footer", ""},
    {"svg", " class viewBox fill xmlns stroke stroke-width stroke-linecap stroke-linejoin "},
    {"circle", " cx cy r stroke stroke-width "},
    {"path", " d stroke stroke-width stroke-linecap stroke-linejoin fill "},
    {"line", " x1 y1 x2 y2 stroke stroke-width stroke-linecap "},
}};

struct Reference
{
    std::string_view name;
    std::string_view bytes;
};

constexpr std::array<Reference, 7> REFERENCES = {{{"&amp;", "&"},
                                                  {"&lt;", "<"},
                                                  {"&gt;", ">"},
                                                  {"&quot;", "\""},
                                                  {"&#39;", "'"},
                                                  {"&mdash;", "\xe2\x80\x94"},
                                                  {"&middot;", "\xc2\xb7"}}};

bool is_name_byte(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '-';
}

std::string_view take_name(std::string_view& text)
{
    std::size_t length = 0;
    while (length < text.size() && is_name_byte(text[length])) {
        ++length;
    }
    require(length > 0, "a name stands where one is due");
    const std::string_view name = text.substr(0, length);
    text.remove_prefix(length);
    return name;
}

bool take(std::string_view& text, std::string_view expected)
{
    if (!same_text(text.substr(0, expected.size()), expected)) {
        return false;
    }
    text.remove_prefix(expected.size());
    return true;
}

std::string_view take_until(std::string_view& text, std::string_view end)
{
    const std::size_t length = text.find(end);
    require(length != text.npos, "what is begun is ended");
    const std::string_view taken = text.substr(0, length);
    text.remove_prefix(length);
    return taken;
}

// names stand between blanks, one before the first and one behind the last.
bool is_one_of(std::string_view name, std::string_view names)
{
    while (names.size() > 1) {
        names.remove_prefix(1);
        const std::size_t length = names.find(' ');
        if (same_text(names.substr(0, length), name)) {
            return true;
        }
        names.remove_prefix(length);
    }
    return false;
}

const Element& element_named(std::string_view name)
{
    const auto* found = std::find_if(ELEMENTS.begin(), ELEMENTS.end(), [&](const Element& element) {
        return same_text(element.name, name);
    });
    require(found != ELEMENTS.end(), "an element is one of the page's");
    return *found;
}

void judge_attributes(const Token& token)
{
    const Element& element = element_named(token.name);
    std::string_view rest = token.attributes;
    while (!rest.empty()) {
        require(take(rest, " "), "a blank stands before an attribute");
        require(is_one_of(take_name(rest), element.attributes),
                "an attribute is one of the page's");
        if (take(rest, "=\"")) {
            const std::string_view value = take_until(rest, "\"");
            require(value.find('<') == value.npos, "no markup in an attribute's value");
            static_cast<void>(take(rest, "\""));
        }
    }
}

bool is_void(std::string_view name)
{
    return same_text(name, "wbr") || same_text(name, "br") || same_text(name, "meta");
}

} // namespace

PageTokens::PageTokens(std::string_view page) : rest_(page)
{
    require(take(rest_, DOCTYPE), "a page begins with its doctype");
}

void PageTokens::nest(const Token& token)
{
    if (token.kind == TokenKind::Close) {
        require(depth_ > 0 && same_text(open_[depth_ - 1], token.name), "elements are well nested");
        --depth_;
    } else if (!is_void(token.name) && !token.closes_itself) {
        require(depth_ < open_.size(), "elements lie in each other no deeper");
        open_[depth_++] = token.name;
    }
}

Token PageTokens::tag()
{
    if (take(rest_, "</")) {
        const Token token = {TokenKind::Close, take_name(rest_), {}, {}, false};
        require(take(rest_, ">"), "an end tag ends behind its name");
        return token;
    }
    require(take(rest_, "<"), "a tag begins");
    Token token = {TokenKind::Open, take_name(rest_), take_until(rest_, ">"), {}, false};
    rest_.remove_prefix(1);
    if (token.attributes.ends_with('/')) {
        token.attributes.remove_suffix(1);
        token.closes_itself = true;
    }
    judge_attributes(token);
    if (same_text(token.name, "style") || same_text(token.name, "script")) {
        raw_ = token.name;
    }
    return token;
}

Token PageTokens::next()
{
    if (rest_.empty()) {
        require(depth_ == 0, "every element is closed");
        return {TokenKind::End, {}, {}, {}, false};
    }
    if (!raw_.empty()) {
        const std::string_view text = take_until(rest_, raw_ == "style" ? "</style" : "</script");
        raw_ = {};
        return {TokenKind::Text, {}, {}, text, false};
    }
    if (rest_[0] == '<') {
        const Token token = tag();
        nest(token);
        return token;
    }
    const std::string_view text = rest_.substr(0, rest_.find('<'));
    rest_.remove_prefix(text.size());
    require(text.find_first_of(">\"'"sv) == text.npos, "no markup in a text");
    return {TokenKind::Text, {}, {}, text, false};
}

std::size_t decode_page_text(std::string_view text, char* decoded)
{
    std::size_t length = 0;
    while (!text.empty()) {
        std::string_view bytes = text.substr(0, text.find('&'));
        text.remove_prefix(bytes.size());
        if (bytes.empty()) {
            const auto* found =
                std::find_if(REFERENCES.begin(), REFERENCES.end(), [&](const Reference& reference) {
                    return take(text, reference.name);
                });
            require(found != REFERENCES.end(), "each & begins a reference that the page uses");
            bytes = found->bytes;
        }
        bytes.copy(decoded + length, bytes.size());
        length += bytes.size();
    }
    return length;
}
