// Reads a page from its front and fails where it is not what is expected. A line feed
// between two tags is passed over.

#pragma once

#include <string_view>

#include "support/page_tokens.h"

class PageReader
{
public:
    explicit PageReader(std::string_view page);

    // Goes on to the first element with that start tag and enters it.
    void skip_to(std::string_view name, std::string_view attributes = {});

    // A start tag with exactly these attributes, such as ` class="k"`.
    void open(std::string_view name, std::string_view attributes = {});
    void close(std::string_view name);

    // All that stands up to the next tag, decoded. An empty text is no text at all.
    void text(std::string_view expected);

    // The same for a path, with a <wbr> behind each of its separators.
    void path(std::string_view expected);

    // An element that holds nothing but a text.
    void element(std::string_view name, std::string_view attributes, std::string_view expected);

    // The same with a text that is not looked at.
    void element_of_any_text(std::string_view name);

    // Nothing is left.
    void end();

    // A start tag whose one attribute, href, has this decoded value.
    void open_link(std::string_view expected);

private:
    void advance();
    void skip_line_feed();

    PageTokens tokens_;
    Token token_;
};
