#include "cli/output_paths.h"

#include <cstring>

#include "core/files.h"
#include "core/paths.h"

namespace {

constexpr std::string_view JSON_ENDING = ".json";

bool is_separator(char c)
{
    return PATH_SEPARATORS.find(c) != std::string_view::npos;
}

bool ensure_folder(const char* path)
{
    return is_directory(path) || make_folder(path);
}

// The same for the first length bytes of path, which is whole again afterwards.
bool ensure_folder_above(char* path, std::size_t length)
{
    const char separator = path[length];
    path[length] = '\0';
    const bool exists = ensure_folder(path);
    path[length] = separator;
    return exists;
}

// Whether path begins like "C:/", whose "C:" is never created on its own.
bool ends_drive_prefix(std::string_view path, std::size_t separator)
{
    return separator == 2 && path[1] == ':';
}

// The page's path without its last ".html", ".HTML", ".htm" or ".HTM".
std::string_view without_page_ending(std::string_view path)
{
    if (path.ends_with(".html") || path.ends_with(".HTML")) {
        path.remove_suffix(5);
    } else if (path.ends_with(".htm") || path.ends_with(".HTM")) {
        path.remove_suffix(4);
    }
    return path;
}

} // namespace

bool create_page_folders(std::string_view page_path, char* path_buffer)
{
    if (page_path.size() >= PATH_BUFFER_SIZE) {
        return false;
    }
    const std::size_t last = page_path.find_last_of(PATH_SEPARATORS);
    if (last == std::string_view::npos || last == 0) {
        return true;
    }
    const std::string_view folder = page_path.substr(0, last);
    std::memcpy(path_buffer, folder.data(), folder.size());
    path_buffer[folder.size()] = '\0';
    for (std::size_t i = 1; i < folder.size(); ++i) {
        if (is_separator(folder[i]) && !ends_drive_prefix(folder, i) &&
            !ensure_folder_above(path_buffer, i)) {
            return false;
        }
    }
    return ensure_folder(path_buffer);
}

void make_json_path(std::string_view page_path, char* path_buffer)
{
    const std::string_view stem = without_page_ending(page_path);
    std::memcpy(path_buffer, stem.data(), stem.size());
    std::memcpy(path_buffer + stem.size(), JSON_ENDING.data(), JSON_ENDING.size());
    path_buffer[stem.size() + JSON_ENDING.size()] = '\0';
}
