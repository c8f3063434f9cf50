#include "support/naive_paths.h"

#include <array>
#include <cstring>

namespace {

constexpr std::size_t SLOTS = 64;
constexpr std::size_t SLOT_SIZE = 255;

struct Slots
{
    std::array<std::array<char, SLOT_SIZE>, SLOTS> bytes;
    std::array<std::size_t, SLOTS> lengths;
    std::size_t used;
};

// One byte after another: a separator closes the component before it, any other byte
// opens one or goes on with it.
void fill(Slots& slots, std::string_view path)
{
    slots.used = 0;
    bool inside = false;
    for (const char byte : path) {
        if (byte == '/' || byte == '\\') {
            inside = false;
            continue;
        }
        if (!inside) {
            if (slots.used == SLOTS) {
                return;
            }
            slots.lengths[slots.used++] = 0;
            inside = true;
        }
        std::size_t& length = slots.lengths[slots.used - 1];
        if (length < SLOT_SIZE) {
            slots.bytes[slots.used - 1][length++] = byte;
        }
    }
}

bool equal(const Slots& first, const Slots& second, std::size_t slot)
{
    return first.lengths[slot] == second.lengths[slot] &&
           std::memcmp(first.bytes[slot].data(), second.bytes[slot].data(), first.lengths[slot]) ==
               0;
}

} // namespace

std::size_t naive_relative_link(std::string_view from, std::string_view to,
                                std::span<char, NAIVE_LINK_SIZE> link)
{
    static Slots folder;
    static Slots target;
    fill(folder, from);
    fill(target, to);

    std::size_t shared = 0;
    while (shared < folder.used && shared < target.used && equal(folder, target, shared)) {
        ++shared;
    }
    std::size_t length = 0;
    for (std::size_t slot = shared; slot < folder.used; ++slot) {
        link[length++] = '.';
        link[length++] = '.';
        link[length++] = '/';
    }
    for (std::size_t slot = shared; slot < target.used; ++slot) {
        if (slot > shared) {
            link[length++] = '/';
        }
        std::memcpy(link.data() + length, target.bytes[slot].data(), target.lengths[slot]);
        length += target.lengths[slot];
    }
    return length;
}

std::size_t naive_json_path(std::string_view page_path, std::span<char> json_path)
{
    // Each of the four endings holds one dot, its first byte.
    std::size_t stem = page_path.size();
    const std::size_t dot = page_path.rfind('.');
    if (dot != std::string_view::npos) {
        const std::string_view ending = page_path.substr(dot + 1);
        if (ending == "html" || ending == "HTML" || ending == "htm" || ending == "HTM") {
            stem = dot;
        }
    }
    page_path.copy(json_path.data(), stem);
    std::string_view(".json").copy(json_path.data() + stem, 5);
    return stem + 5;
}
