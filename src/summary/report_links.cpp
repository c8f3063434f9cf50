#include "summary/report_links.h"

#include <algorithm>
#include <cstring>

#include "report/html_escape.h"

namespace {

// The folder part of the page's path. Only "/" ends a folder here, although the
// folders above the page are created at each "\", too: that is meant.
std::string_view folder_of(std::string_view output_path)
{
    const std::size_t slash = output_path.rfind('/');
    if (slash == std::string_view::npos) {
        return ".";
    }
    return slash == 0 ? "/" : output_path.substr(0, std::min(slash, PATH_BUFFER_SIZE - 1));
}

// Writes the absolute path of a report to joined (LONG_PATH_BUFFER_SIZE bytes).
// False: it does not fit.
bool join_report_path(const ResultsLinkContext& context, std::string_view relative_path,
                      char* joined, std::string_view& path)
{
    const std::string_view folder = context.scanned_directory;
    const std::size_t length = folder.size() + 1 + relative_path.size();
    if (length >= LONG_PATH_BUFFER_SIZE) {
        return false;
    }
    std::memcpy(joined, folder.data(), folder.size());
    joined[folder.size()] = '/';
    std::memcpy(joined + folder.size() + 1, relative_path.data(), relative_path.size());
    path = {joined, length};
    return true;
}

} // namespace

void make_results_link_context(const char* input_dir, std::string_view output_path,
                               ResultsLinkContext& context)
{
    char folder[PATH_BUFFER_SIZE];
    const std::string_view text = folder_of(output_path);
    std::memcpy(folder, text.data(), text.size());
    folder[text.size()] = '\0';
    context.links_relative =
        resolve_path(folder, context.output_folder, sizeof context.output_folder) &&
        resolve_path(input_dir, context.scanned_directory, sizeof context.scanned_directory);
}

// A link that cannot be made relative falls back to the report's own path, which
// is right where the page lies in the scanned directory.
bool append_link_target(TextBuffer& buffer, const ReportEntry& entry,
                        const ResultsLinkContext& context)
{
    char joined[LONG_PATH_BUFFER_SIZE];
    char link[LONG_PATH_BUFFER_SIZE];
    std::string_view path;
    const bool is_relative = context.links_relative &&
                             join_report_path(context, entry.relative_path, joined, path) &&
                             make_relative_path(context.output_folder, path, link, sizeof link);
    return html_append_escaped(buffer, is_relative ? link : entry.relative_path);
}
