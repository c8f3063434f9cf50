#include "report/html_entities.h"

namespace {

// The entity whose reference text begins with, or null.
const HtmlEntity* find_entity(std::string_view text)
{
    for (const HtmlEntity& entity : html_entities) {
        if (text.starts_with(entity.reference)) {
            return &entity;
        }
    }
    return nullptr;
}

} // namespace

void html_copy_decoded(char* destination, const char* start, const char* end, std::uint64_t limit)
{
    std::uint64_t written = 0;
    const char* position = start;
    while (position < end && written < limit) {
        const HtmlEntity* entity = *position == '&' ? find_entity({position, end}) : nullptr;
        destination[written++] = entity != nullptr ? entity->character : *position;
        position += entity != nullptr ? entity->reference.size() : 1;
    }
    destination[written] = '\0';
}
