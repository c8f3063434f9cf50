// A small, strict HTML tokenizer for the summary page, and what holds of every page.

#pragma once

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

class PageTokens
{
public:
    explicit PageTokens(std::string_view page) : rest_(page) {}

    // Takes the next token off the front; fails on anything that is none.
    Token next();

private:
    Token tag();

    std::string_view rest_;
    std::string_view raw_; // name of the style or script element that is open
};

// Writes text with its references replaced to decoded, which has room for text's bytes,
// and returns the length; fails on a bare "&" and on any reference but those of the
// page's texts and templates.
std::size_t decode_page_text(std::string_view text, char* decoded);

// Fails unless elements are well nested and each element, and each attribute on it, is
// one that the page's templates use.
void judge_page_markup(std::string_view page);
