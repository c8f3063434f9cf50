#include "support/naive_paths.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t MOST_COMPONENTS = 64;
constexpr std::size_t LONGEST_COMPONENT = 255;

// One byte after another: a separator closes the component before it, any other byte
// opens one or goes on with it.
std::vector<std::string> components_of(std::string_view path)
{
    std::vector<std::string> components;
    bool inside = false;
    for (const char byte : path) {
        const bool separates = byte == '/' || byte == '\\';
        if (!separates && !inside) {
            components.emplace_back();
        }
        inside = !separates;
        if (inside && components.back().size() < LONGEST_COMPONENT) {
            components.back() += byte;
        }
    }
    components.resize(std::min(components.size(), MOST_COMPONENTS));
    return components;
}

} // namespace

std::string naive_relative_link(std::string_view from, std::string_view to)
{
    const std::vector<std::string> folder = components_of(from);
    const std::vector<std::string> target = components_of(to);
    std::size_t shared = 0;
    while (shared < folder.size() && shared < target.size() && folder[shared] == target[shared]) {
        ++shared;
    }
    std::string link;
    for (std::size_t i = shared; i < folder.size(); ++i) {
        link += "../";
    }
    for (std::size_t i = shared; i < target.size(); ++i) {
        link += (i > shared ? "/" : "") + target[i];
    }
    return link;
}

std::string naive_json_path(std::string_view page_path)
{
    for (const std::string_view ending : {".html", ".HTML", ".htm", ".HTM"}) {
        if (page_path.ends_with(ending)) {
            page_path.remove_suffix(ending.size());
            break;
        }
    }
    return std::string(page_path) + ".json";
}
