// What the tests of the summary room share: entries and models as a reading run
// leaves them, a buffer that frees itself, and a reader of the JSON summary.

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text_buffer.h"
#include "summary/summary_model.h"

// Entries as the report reader leaves them. Every byte that nobody may read holds
// 0xAA, never a NUL: unused slots, and each text's field behind its NUL. The path
// is borrowed and must outlive the entry.
ReportEntry passed_report(const char* path);
ReportEntry failed_report(const char* path);
ReportEntry errored_report(const char* path, std::string_view error = "");
ReportEntry unreadable_file(const char* path);
ReportEntry unrelated_file(const char* path);

// The program is stopped when a text or a list does not fit into its field.
void set_modes(ReportEntry& entry, std::string_view mode, std::string_view sub_mode);
void set_failed_checks(ReportEntry& entry, const std::vector<std::string>& names);
void set_non_gating_checks(ReportEntry& entry, const std::vector<std::string>& names);

// Borrows the entries; no entries give a null pointer, as a run does.
SummaryModel model_of(const std::vector<ReportEntry>& entries, const char* input_dir = "x");

// "r001.html", "r002.html" and so on behind prefix; they sort in this order.
std::vector<std::string> numbered_paths(std::string_view prefix, int count);

// Every byte value but NUL, 0x01 to 0xff in order.
std::string all_bytes();

// text with & < > " ' as references, and "<wbr>" behind / and \ for a path.
std::string escaped(std::string_view text);
std::string escaped_path(std::string_view text);

int count_of(std::string_view needle, std::string_view text);

// An owned buffer, empty at first.
class AppendedText
{
public:
    AppendedText();
    ~AppendedText();
    AppendedText(const AppendedText&) = delete;
    AppendedText& operator=(const AppendedText&) = delete;

    std::string text() const;

    TextBuffer buffer;
};

// Makes folder the current directory for as long as it lives.
class CurrentFolder
{
public:
    explicit CurrentFolder(const std::string& folder);
    ~CurrentFolder();
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    std::filesystem::path before_;
};

// The Results section of these entries, counted here. The folder that is missing
// by default makes every link the bare relative path.
std::string results_section(const std::vector<ReportEntry>& entries,
                            const char* input_dir = "no such folder",
                            const char* output_path = "summary.html");

// The targets of all links in the markup, as they are written there.
std::vector<std::string> linked_paths(const std::string& markup);

// A page with its time of generation replaced by "TIME". The test fails unless the
// page holds exactly one, at its place and of the right form.
std::string with_time_replaced(const std::string& page);

struct JsonReport
{
    std::string relative_path;
    std::string verdict;
    std::string analysis_mode;
    std::string analysis_mode_sub;
    std::vector<std::string> failed_checks;
    std::vector<std::string> non_gating_checks;
    std::string error;

    bool operator==(const JsonReport&) const = default;
};

struct JsonOtherFile
{
    std::string relative_path;
    std::string reason;

    bool operator==(const JsonOtherFile&) const = default;
};

struct JsonSummary
{
    std::string scanned_directory;
    std::uint64_t total_reports = 0;
    std::uint64_t passed = 0;
    std::uint64_t failed = 0;
    std::uint64_t errored = 0;
    std::vector<JsonReport> reports;
    std::vector<JsonOtherFile> other_files;

    bool operator==(const JsonSummary&) const = default;
};

// Reads a document back, its texts unescaped. Nothing for a document that departs
// from the fixed layout by a single byte, or escapes a byte in another way than
// the one that is due to it.
std::optional<JsonSummary> read_json_summary(std::string_view document);
