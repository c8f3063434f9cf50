// A small, strict HTML tokenizer for the summary page, which also sees to what holds of
// every page: elements are well nested, and each element, and each attribute on it, is
// one that the page's templates use.

#pragma once

#include <array>
#include <cstddef>
#include <string_view>

enum class TokenKind
{
    Open,
    Close,
    Text, // also what stands inside a style or script element
    End,
};

// Views of the page, nothing decoded.
struct Token
{
    TokenKind kind;
    std::string_view name;       // of an element
    std::string_view attributes; // of an Open token, as they stand
    std::string_view text;       // of a Text token; never empty
    bool closes_itself;          // an Open token that ends in "/>"
};

// Takes tokens off the front of a page and fails on anything that must not stand there.
class PageTokens
{
public:
    explicit PageTokens(std::string_view page);

    Token next();

private:
    Token tag();
    void nest(const Token& token);

    std::string_view rest_;
    std::string_view raw_; // name of the style or script element that is open
    std::array<std::string_view, 32> open_;
    std::size_t depth_ = 0;
};

// As ==, but libFuzzer does not learn from it: memcmp, below ==, would tell it.
inline bool same_text(std::string_view first, std::string_view second)
{
    if (first.size() != second.size()) {
        return false;
    }
    for (std::size_t at = 0; at < first.size(); ++at) {
        if (first[at] != second[at]) {
            return false;
        }
    }
    return true;
}

// Writes text with its references replaced to decoded, which has room for text's bytes,
// and returns the length; fails on a bare "&" and on any reference but those of the
// page's texts and templates.
std::size_t decode_page_text(std::string_view text, char* decoded);
