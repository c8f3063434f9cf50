#include "core/paths.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "core/append_all.h"

namespace {

struct Components
{
    std::array<std::string_view, PATH_MAX_COMPONENTS> names;
    std::size_t count;
};

void split(std::string_view path, Components& components)
{
    components.count = 0;
    std::size_t at = 0;
    while (components.count < PATH_MAX_COMPONENTS) {
        while (at < path.size() && is_path_separator(path[at])) {
            ++at;
        }
        if (at == path.size()) {
            return;
        }
        const std::size_t start = at;
        while (at < path.size() && !is_path_separator(path[at])) {
            ++at;
        }
        const std::size_t length = std::min<std::size_t>(at - start, PATH_COMPONENT_MAX_LENGTH);
        components.names[components.count++] = {path.data() + start, length};
    }
}

std::size_t count_shared(const Components& from, const Components& to)
{
    const std::size_t limit = std::min(from.count, to.count);
    std::size_t shared = 0;
    while (shared < limit && from.names[shared] == to.names[shared]) {
        ++shared;
    }
    return shared;
}

} // namespace

std::string_view without_ending(std::string_view path,
                                std::initializer_list<std::string_view> endings)
{
    for (const std::string_view ending : endings) {
        if (path.ends_with(ending)) {
            return path.substr(0, path.size() - ending.size());
        }
    }
    return path;
}

// NOLINTNEXTLINE(readability-non-const-parameter): the text is put there
bool resolve_path(const char* path, char* output, std::uint64_t capacity)
{
    std::array<char, PATH_BUFFER_SIZE> resolved;
    BoundedText canonical = {output, capacity, 0};
    return realpath(path, resolved.data()) != nullptr &&
           bounded_text_append(canonical, resolved.data());
}

// NOLINTNEXTLINE(readability-non-const-parameter): the text is put there
bool make_relative_path(std::string_view from, std::string_view to, char* output,
                        std::uint64_t capacity)
{
    Components folder;
    Components target;
    split(from, folder);
    split(to, target);
    const std::size_t shared = count_shared(folder, target);

    BoundedText link = {output, capacity, 0};
    bool fits = bounded_text_append(link, "");
    for (std::size_t i = shared; fits && i < folder.count; ++i) {
        fits = bounded_text_append(link, "../");
    }
    for (std::size_t i = shared; fits && i < target.count; ++i) {
        fits = append_all(link, i > shared ? "/" : "", target.names[i]);
    }
    return fits;
}
