#include "summary/report_links.h"

#include <algorithm>

#include "core/append_all.h"
#include "report/html_escape.h"

namespace {

// The folder part of the page's path, cut to what a path may have. Only "/" ends a
// folder here, as it does for the system that opens the page: a "\" is part of a name
// to it, although the folders above the page are created at each "\", too.
std::string_view folder_of(std::string_view output_path)
{
    const std::size_t slash = output_path.rfind('/');
    if (slash == std::string_view::npos) {
        return ".";
    }
    return slash == 0 ? "/"
                      : output_path.substr(0, std::min<std::size_t>(slash, PATH_BUFFER_SIZE - 1));
}

} // namespace

void make_results_link_context(const char* input_dir, std::string_view output_path,
                               ResultsLinkContext& context)
{
    char bytes[PATH_BUFFER_SIZE];
    BoundedText folder = {bytes, sizeof bytes, 0};
    context.links_relative =
        bounded_text_append(folder, folder_of(output_path)) &&
        resolve_path(folder.data, context.output_folder, sizeof context.output_folder) &&
        resolve_path(input_dir, context.scanned_directory, sizeof context.scanned_directory);
}

// A link that cannot be made relative falls back to the report's own path, which
// is right where the page lies in the scanned directory.
bool append_link_target(TextBuffer& buffer, const ReportEntry& entry,
                        const ResultsLinkContext& context)
{
    char bytes[LONG_PATH_BUFFER_SIZE];
    char link[LONG_PATH_BUFFER_SIZE];
    BoundedText path = {bytes, sizeof bytes, 0};
    const bool is_relative =
        context.links_relative &&
        append_all(path, context.scanned_directory, "/", entry.relative_path) &&
        make_relative_path(context.output_folder, path.data, link, sizeof link);
    return html_append_escaped(buffer, is_relative ? link : entry.relative_path);
}
