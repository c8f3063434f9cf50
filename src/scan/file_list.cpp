#include "scan/file_list.h"

#include <cstdlib>

#include "core/memory.h"

namespace {

bool grow(FileList& list)
{
    const std::uint64_t capacity = list.count == 0 ? FILE_LIST_FIRST_CAPACITY : 2 * list.count;
    void* paths = std::realloc(list.paths, block_size(capacity, sizeof *list.paths));
    if (paths == nullptr) {
        return false;
    }
    list.paths = static_cast<char**>(paths);
    list.capacity = capacity;
    return true;
}

} // namespace

void file_list_init(FileList& list)
{
    list = {nullptr, 0, 0};
}

bool file_list_append(FileList& list, std::string_view path)
{
    if (list.count == list.capacity && !grow(list)) {
        return false;
    }
    char* copy = static_cast<char*>(std::malloc(path.size() + 1));
    if (copy == nullptr) {
        return false;
    }
    path.copy(copy, path.size());
    copy[path.size()] = '\0';
    list.paths[list.count] = copy;
    ++list.count;
    return true;
}

void file_list_free(FileList& list)
{
    for (std::uint64_t i = 0; i < list.count; ++i) {
        std::free(list.paths[i]);
    }
    std::free(list.paths);
    file_list_init(list);
}
