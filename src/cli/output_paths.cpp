#include "cli/output_paths.h"

#include <cstring>

#include "core/files.h"
#include "core/paths.h"

namespace {

constexpr std::string_view JSON_ENDING = ".json";

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

// What stands before the last separator; empty when there is none, or nothing before
// it.
std::string_view folder_above(std::string_view path)
{
    while (!path.empty() && !is_path_separator(path.back())) {
        path.remove_suffix(1);
    }
    return path.substr(0, path.empty() ? 0 : path.size() - 1);
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
    const std::string_view folder = folder_above(page_path);
    if (folder.empty()) {
        return true;
    }
    std::memcpy(path_buffer, folder.data(), folder.size());
    path_buffer[folder.size()] = '\0';
    for (std::size_t i = 1; i < folder.size(); ++i) {
        if (is_path_separator(folder[i]) && !ends_drive_prefix(folder, i) &&
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
