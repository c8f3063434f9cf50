#include "support/read_back.h"

#include <memory>
#include <stdexcept>

#include <gumbo.h>
#include <nlohmann/json.hpp>

namespace {

// Bytes are read as the characters of a private area that begins here.
constexpr unsigned PRIVATE_AREA = 0xe000;

void append_as_character(std::string& text, unsigned char byte)
{
    const unsigned character = PRIVATE_AREA + byte;
    text += static_cast<char>(0xe0U | character >> 12U);
    text += static_cast<char>(0x80U | (character >> 6U & 0x3fU));
    text += static_cast<char>(0x80U | (character & 0x3fU));
}

// A parser changes carriage returns and refuses other control characters.
std::string page_characters(std::string_view markup)
{
    std::string text;
    for (const char byte : markup) {
        if (byte == '\n' || byte == '\t' || (byte >= 0x20 && byte < 0x7f)) {
            text += byte;
        } else {
            append_as_character(text, static_cast<unsigned char>(byte));
        }
    }
    return text;
}

// text with the private area's characters as the bytes that they stand for.
std::string as_bytes(std::string_view text)
{
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool is_private =
            text.substr(at).starts_with('\xee') && static_cast<unsigned char>(text[at + 1]) < 0x84;
        if (is_private) {
            const unsigned high = static_cast<unsigned char>(text[at + 1]) & 0x3fU;
            const unsigned low = static_cast<unsigned char>(text[at + 2]) & 0x3fU;
            bytes += static_cast<char>(high << 6U | low);
            at += 2;
        } else {
            bytes += text[at];
        }
    }
    return bytes;
}

std::string attribute(const GumboElement& element, const char* name)
{
    const GumboAttribute* found = gumbo_get_attribute(&element.attributes, name);
    return found == nullptr ? "" : as_bytes(found->value);
}

// What a reader sees of a node; a line break is "\n".
void append_text(const GumboNode& node, std::string& text)
{
    if (node.type == GUMBO_NODE_TEXT || node.type == GUMBO_NODE_WHITESPACE) {
        text += as_bytes(node.v.text.text);
    } else if (node.type == GUMBO_NODE_ELEMENT) {
        text += node.v.element.tag == GUMBO_TAG_BR ? "\n" : "";
        const GumboVector& children = node.v.element.children;
        for (unsigned i = 0; i < children.length; ++i) {
            append_text(*static_cast<const GumboNode*>(children.data[i]), text);
        }
    }
}

std::string text_of(const GumboNode& node)
{
    std::string text;
    append_text(node, text);
    return text;
}

// Walks over a tree in the order of the document and notes its tables.
class TableReader
{
public:
    void walk(const GumboNode& node)
    {
        if (node.type != GUMBO_NODE_ELEMENT) {
            return;
        }
        enter(node);
        const GumboVector& children = node.v.element.children;
        for (unsigned i = 0; i < children.length; ++i) {
            walk(*static_cast<const GumboNode*>(children.data[i]));
        }
    }

    std::vector<PageTable> tables;

private:
    void enter(const GumboNode& node)
    {
        const GumboElement& element = node.v.element;
        if (element.tag == GUMBO_TAG_P || element.tag == GUMBO_TAG_H3) {
            title_ = text_of(node);
        } else if (element.tag == GUMBO_TAG_TABLE) {
            tables.push_back({title_, attribute(element, "data-page-size"), false, {}});
        } else if (element.tag == GUMBO_TAG_BUTTON && !tables.empty()) {
            tables.back().has_pager = true;
        } else if (element.tag == GUMBO_TAG_TR) {
            row_ = {};
        } else if (element.tag == GUMBO_TAG_TD) {
            row_.cells.push_back(text_of(node));
            if (row_.cells.size() == 1) {
                tables.back().rows.emplace_back();
            }
            tables.back().rows.back() = row_;
        } else if (element.tag == GUMBO_TAG_A && !tables.empty() && !tables.back().rows.empty()) {
            row_.link = attribute(element, "href");
            tables.back().rows.back() = row_;
        }
    }

    std::string title_ = {};
    PageRow row_ = {};
};

} // namespace

std::vector<PageTable> read_tables(std::string_view markup)
{
    const std::string text = page_characters(markup);
    GumboOptions options = kGumboDefaultOptions;
    options.fragment_context = GUMBO_TAG_BODY;
    const auto release = [&options](GumboOutput* output) {
        gumbo_destroy_output(&options, output);
    };
    const std::unique_ptr<GumboOutput, decltype(release)> output(
        gumbo_parse_with_options(&options, text.data(), text.size()), release);
    if (output->errors.length > 0) {
        throw std::runtime_error("the markup has mistakes");
    }
    TableReader reader;
    reader.walk(*output->root);
    return reader.tables;
}

nlohmann::ordered_json read_json(std::string_view document)
{
    return nlohmann::ordered_json::parse(as_characters(document));
}

std::string as_characters(std::string_view text)
{
    std::string characters;
    for (const char byte : text) {
        if (static_cast<unsigned char>(byte) < 0x80) {
            characters += byte;
        } else {
            append_as_character(characters, static_cast<unsigned char>(byte));
        }
    }
    return characters;
}
