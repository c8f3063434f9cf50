#include "cli/run.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "cli/output_paths.h"
#include "cli/progress_line.h"
#include "cli/version.h"
#include "core/append_all.h"
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
bool list_files(const CommandLine& options, ProgressLine& progress, FileList& files)
{
    progress_line_begin(progress, Stage::Listing, 0);
    const Progress listener = progress_line_listener(progress);
    if (scan_reports(options.input_dir, options.page_path, files, &listener)) {
        return true;
    }
    progress_line_erase(progress);
    std::fprintf(stderr,
                 "error: '--input' directory '%s' doesn't exist or isn't a directory (expected a "
                 "directory of fathomix analyze HTML reports)\n",
                 options.input_dir);
    return false;
}

// False: a message was printed.
bool read_files(const CommandLine& options, ProgressLine& progress, Reading& reading)
{
    const std::uint64_t count = reading.files.count;
    if (count == 0) {
        return true;
    }
    const std::size_t size = block_size(count, sizeof(ReportEntry));
    reading.entries = static_cast<ReportEntry*>(std::malloc(size));
    if (reading.entries == nullptr) {
        progress_line_erase(progress);
        std::fputs("error: out of memory\n", stderr);
        return false;
    }
    prefer_large_pages(reading.entries, size);
    progress_line_begin(progress, Stage::Reading, count);
    ReadAhead ahead;
    read_ahead_init(ahead, options.input_dir, reading.files.paths, count);
    for (std::uint64_t i = 0; i < count; ++i) {
        progress_line_advance(progress, i);
        read_entry(options.input_dir, reading.files.paths[i], reading.entries[i], &ahead);
    }
    read_ahead_free(ahead);
    return true;
}

// Files that are no reports do not count here, unlike in the page's verdict.
int status_of(const SummaryModel& model)
{
    for (std::uint64_t i = 0; i < model.count; ++i) {
        switch (outcome_of(model.entries[i])) {
        case Outcome::Failed:
        case Outcome::Errored:
        case Outcome::Unreadable:
            return FAILURE;
        case Outcome::Passed:
        case Outcome::NoReport:
            break;
        }
    }
    return SUCCESS;
}

void print_not_written(ProgressLine& progress, const char* path)
{
    progress_line_erase(progress);
    std::fprintf(stderr, "error: failed to write '%s'\n", path);
}

// False: a message was printed.
bool write_page(const CommandLine& options, ProgressLine& progress, const SummaryModel& model)
{
    if (!create_page_folders(options.page_path)) {
        progress_line_erase(progress);
        std::fprintf(stderr, "error: could not create the folder for '%s'\n", options.page_path);
        return false;
    }
    if (!write_summary_page(options.page_path, model)) {
        print_not_written(progress, options.page_path);
        return false;
    }
    return true;
}

// Leaves the path of the file in json_path, which held no text.
// False: a message was printed.
bool write_json(const CommandLine& options, ProgressLine& progress, const SummaryModel& model,
                BoundedText& json_path)
{
    if (!append_json_path(json_path, options.page_path) ||
        !write_json_summary(json_path.data, model)) {
        print_not_written(progress, json_path.data);
        return false;
    }
    return true;
}

void print_closing_lines(const CommandLine& options, const SummaryModel& model,
                         const char* json_path)
{
    const SummaryTally tally = tally_entries(model.entries, model.count);
    std::printf("wrote %s (%ju fathomix reports: %ju passed, %ju failed", options.page_path,
                std::uintmax_t{total_reports(tally)}, std::uintmax_t{tally.passed},
                std::uintmax_t{tally.failed});
    if (tally.errored != 0) {
        std::printf(", %ju errored", std::uintmax_t{tally.errored});
    }
    std::printf(")%s\n", options.wants_json ? " + json" : "");
    if (options.wants_json) {
        std::printf("wrote %s\n", json_path);
    }
}

int run_steps(const CommandLine& options, ProgressLine& progress, Reading& reading)
{
    if (!list_files(options, progress, reading.files) || !read_files(options, progress, reading)) {
        return FAILURE;
    }
    const SummaryModel model = {options.input_dir, reading.entries, reading.files.count,
                                VERSION_TEXT};
    char json_bytes[LONG_PATH_BUFFER_SIZE];
    BoundedText json_path = {json_bytes, sizeof json_bytes, 0};
    progress_line_begin(progress, Stage::Writing, 0);
    if (!write_page(options, progress, model) ||
        (options.wants_json && !write_json(options, progress, model, json_path))) {
        return FAILURE;
    }
    progress_line_erase(progress);
    print_closing_lines(options, model, json_path.data);
    return status_of(model);
}

} // namespace

void read_entry(const char* input_dir, const char* relative_path, ReportEntry& entry,
                ReadAhead* ahead)
{
    char bytes[LONG_PATH_BUFFER_SIZE];
    BoundedText path = {bytes, sizeof bytes, 0};
    if (append_all(path, input_dir, "/", relative_path)) {
        read_analyze_report(path.data, relative_path, entry, ahead);
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
    ProgressLine progress;
    progress_line_init(progress);
    const int status = run_steps(options, progress, reading);
    reading_free(reading);
    return status;
}
