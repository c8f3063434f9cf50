#include "report/html_escape.h"

#include "core/replaced_text.h"
#include "report/html_entities.h"

namespace {

constexpr ByteReplacements make_text_replacements()
{
    ByteReplacements replacements = {};
    for (const HtmlEntity& entity : html_entities) {
        set_replacement(replacements, entity.character, entity.reference.data());
    }
    return replacements;
}

constexpr ByteReplacements make_path_replacements()
{
    ByteReplacements replacements = make_text_replacements();
    set_replacement(replacements, '/', "/<wbr>");
    set_replacement(replacements, '\\', "\\<wbr>");
    return replacements;
}

constexpr ByteReplacements TEXT_REPLACEMENTS = make_text_replacements();
constexpr ByteReplacements PATH_REPLACEMENTS = make_path_replacements();

} // namespace

bool html_append_escaped(TextBuffer& buffer, std::string_view text)
{
    return append_replaced_text(buffer, text, TEXT_REPLACEMENTS);
}

bool html_append_escaped_path(TextBuffer& buffer, std::string_view text)
{
    return append_replaced_text(buffer, text, PATH_REPLACEMENTS);
}
