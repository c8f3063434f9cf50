#include "core/paths.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

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

// A text being written into a caller's buffer; there is always room for its NUL.
struct BoundedText
{
    char* data;
    std::uint64_t capacity;
    std::uint64_t length;
};

// False: text does not fit with a NUL behind it; nothing was appended.
bool append(BoundedText& bounded, std::string_view text)
{
    if (bounded.length + text.size() >= bounded.capacity) {
        return false;
    }
    std::memcpy(bounded.data + bounded.length, text.data(), text.size());
    bounded.length += text.size();
    return true;
}

} // namespace

bool resolve_path(const char* path, char* output, std::uint64_t capacity)
{
    std::array<char, PATH_BUFFER_SIZE> resolved;
    if (realpath(path, resolved.data()) == nullptr) {
        return false;
    }
    const std::size_t length = std::strlen(resolved.data());
    if (length >= capacity) {
        return false;
    }
    std::memcpy(output, resolved.data(), length + 1);
    return true;
}

bool make_relative_path(std::string_view from, std::string_view to, char* output,
                        std::uint64_t capacity)
{
    Components folder;
    Components target;
    split(from, folder);
    split(to, target);
    const std::size_t shared = count_shared(folder, target);

    BoundedText link = {output, capacity, 0};
    for (std::size_t i = shared; i < folder.count; ++i) {
        if (!append(link, "../")) {
            return false;
        }
    }
    for (std::size_t i = shared; i < target.count; ++i) {
        if ((i > shared && !append(link, "/")) || !append(link, target.names[i])) {
            return false;
        }
    }
    if (link.length >= capacity) {
        return false;
    }
    output[link.length] = '\0';
    return true;
}
