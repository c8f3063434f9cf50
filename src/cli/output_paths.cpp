#include "cli/output_paths.h"

#include "core/append_all.h"
#include "core/files.h"
#include "core/paths.h"

namespace {

// Creates the folder that the first length bytes of path name, unless it is there. The
// path is whole again afterwards.
bool make_prefix_folder(char* path, std::size_t length)
{
    const char separator = path[length];
    path[length] = '\0';
    const bool exists = make_folder(path);
    path[length] = separator;
    return exists;
}

// What stands before the last separator of either kind, if anything does.
std::string_view folder_above(std::string_view path)
{
    while (!path.empty() && !is_path_separator(path.back())) {
        path.remove_suffix(1);
    }
    return path.substr(0, path.empty() ? 0 : path.size() - 1);
}

// Whether path is a drive such as "C:", which is created as the page's own folder alone.
bool is_drive(std::string_view path)
{
    return path.size() == 2 && path[1] == ':';
}

} // namespace

bool create_page_folders(std::string_view page_path)
{
    char bytes[PATH_BUFFER_SIZE];
    BoundedText path = {bytes, sizeof bytes, 0};
    if (!bounded_text_append(path, page_path)) {
        return false;
    }
    const std::string_view folder = folder_above(page_path);
    for (std::size_t i = 1; i < folder.size(); ++i) {
        if (is_path_separator(folder[i]) && !is_drive(folder.substr(0, i)) &&
            !make_prefix_folder(path.data, i)) {
            return false;
        }
    }
    return folder.empty() || make_prefix_folder(path.data, folder.size());
}

bool append_json_path(BoundedText& json_path, std::string_view page_path)
{
    return append_all(json_path, without_ending(page_path, {".html", ".HTML", ".htm", ".HTM"}),
                      ".json");
}
