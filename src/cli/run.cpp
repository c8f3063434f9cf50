#include "cli/run.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "cli/output_paths.h"
#include "cli/version.h"
#include "core/memory.h"
#include "core/paths.h"
#include "report/read_analyze_report.h"
#include "scan/scan_reports.h"
#include "summary/json_summary.h"
#include "summary/summary_model.h"
#include "summary/summary_page.h"

namespace {

constexpr int SUCCESS = 0;
constexpr int FAILURE = 1;

// The reading run's results, released together: the entries point into the list.
struct Reading
{
    FileList files;
    ReportEntry* entries; // owned; one per file, null when there is none
};

void reading_init(Reading& reading)
{
    file_list_init(reading.files);
    reading.entries = nullptr;
}

void reading_free(Reading& reading)
{
    std::free(reading.entries);
    file_list_free(reading.files);
    reading.entries = nullptr;
}

// False: a message was printed.
bool list_files(const CommandLine& options, FileList& files)
{
    if (scan_reports(options.input_dir, options.page_path, files)) {
        return true;
    }
    std::fprintf(stderr,
                 "error: '--input' directory '%s' doesn't exist or isn't a directory (expected a "
                 "directory of fathomix analyze HTML reports)\n",
                 options.input_dir);
    return false;
}

// False: a message was printed.
bool read_files(const CommandLine& options, Reading& reading, char* path_buffer)
{
    const std::uint64_t count = reading.files.count;
    if (count == 0) {
        return true;
    }
    reading.entries = static_cast<ReportEntry*>(std::malloc(count * sizeof(ReportEntry)));
    if (reading.entries == nullptr) {
        std::fputs("error: out of memory\n", stderr);
        return false;
    }
    prefer_large_pages(reading.entries, count * sizeof(ReportEntry));
    for (std::uint64_t i = 0; i < count; ++i) {
        read_entry(options.input_dir, reading.files.paths[i], path_buffer, reading.entries[i]);
    }
    return true;
}

// Files that are no reports do not count here, unlike in the page's verdict.
int status_of(const SummaryModel& model)
{
    for (std::uint64_t i = 0; i < model.count; ++i) {
        const ReportEntry& entry = model.entries[i];
        const bool failed = entry.kind == ReportKind::Analyzed && entry.passed == 0;
        if (failed || entry.kind == ReportKind::RunError || entry.kind == ReportKind::Unreadable) {
            return FAILURE;
        }
    }
    return SUCCESS;
}

bool report_unwritten(const char* path)
{
    std::fprintf(stderr, "error: failed to write '%s'\n", path);
    return false;
}

// Leaves the JSON path, if there is one, in path_buffer.
// False: a message was printed.
bool write_outputs(const CommandLine& options, const SummaryModel& model, char* path_buffer)
{
    if (!create_page_folders(options.page_path, path_buffer)) {
        std::fprintf(stderr, "error: could not create the folder for '%s'\n", options.page_path);
        return false;
    }
    if (!write_summary_page(options.page_path, model)) {
        return report_unwritten(options.page_path);
    }
    if (options.wants_json) {
        make_json_path(options.page_path, path_buffer);
        return write_json_summary(path_buffer, model) || report_unwritten(path_buffer);
    }
    return true;
}

void print_closing_lines(const CommandLine& options, const SummaryModel& model,
                         const char* json_path)
{
    const SummaryTally tally = tally_entries(model.entries, model.count);
    std::printf("wrote %s (%zu fathomix reports: %zu passed, %zu failed", options.page_path,
                std::size_t{total_reports(tally)}, std::size_t{tally.passed},
                std::size_t{tally.failed});
    if (tally.errored != 0) {
        std::printf(", %zu errored", std::size_t{tally.errored});
    }
    std::printf(")%s\n", options.wants_json ? " + json" : "");
    if (options.wants_json) {
        std::printf("wrote %s\n", json_path);
    }
}

int run_steps(const CommandLine& options, Reading& reading)
{
    char path_buffer[LONG_PATH_BUFFER_SIZE];
    if (!list_files(options, reading.files) || !read_files(options, reading, path_buffer)) {
        return FAILURE;
    }
    const SummaryModel model = {options.input_dir, reading.entries, reading.files.count,
                                VERSION_TEXT};
    if (!write_outputs(options, model, path_buffer)) {
        return FAILURE;
    }
    print_closing_lines(options, model, path_buffer);
    return status_of(model);
}

} // namespace

void read_entry(const char* input_dir, const char* relative_path, char* path_buffer,
                ReportEntry& entry)
{
    const int length =
        std::snprintf(path_buffer, LONG_PATH_BUFFER_SIZE, "%s/%s", input_dir, relative_path);
    if (length >= 0 && static_cast<std::uint64_t>(length) < LONG_PATH_BUFFER_SIZE) {
        read_analyze_report(path_buffer, relative_path, entry);
        return;
    }
    // Unreachable in a run, whose walk keeps paths far shorter.
    std::memset(&entry, 0, sizeof entry);
    entry.relative_path = relative_path;
    entry.kind = ReportKind::Unreadable;
}

int run_summary(const CommandLine& options)
{
    Reading reading;
    reading_init(reading);
    const int status = run_steps(options, reading);
    reading_free(reading);
    return status;
}
