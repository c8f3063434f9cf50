#include "summary/page_model.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "summary/report_tables.h"

namespace {

ReportEntry entry_of(const char* path, ReportKind kind)
{
    ReportEntry entry;
    std::memset(&entry, 0xAA, sizeof entry);
    entry.relative_path = path;
    entry.kind = kind;
    entry.passed = 0;
    entry.analysis_mode[0] = '\0';
    entry.analysis_mode_sub[0] = '\0';
    entry.failed_check_count = 0;
    entry.non_gating_check_count = 0;
    entry.error[0] = '\0';
    return entry;
}

template <std::size_t SIZE>
void set_text(char (&field)[SIZE], std::string_view text)
{
    if (text.size() >= SIZE) {
        std::abort();
    }
    std::memcpy(field, text.data(), text.size());
    field[text.size()] = '\0';
}

void set_names(char (&slots)[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE], std::uint64_t& count,
               const std::vector<std::string>& names)
{
    if (names.size() > REPORT_MAX_CHECKS) {
        std::abort();
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        set_text(slots[i], names[i]);
    }
    count = names.size();
}

} // namespace

ReportEntry passed_report(const char* path)
{
    ReportEntry entry = entry_of(path, ReportKind::Analyzed);
    entry.passed = 1;
    return entry;
}

ReportEntry failed_report(const char* path)
{
    return entry_of(path, ReportKind::Analyzed);
}

ReportEntry errored_report(const char* path)
{
    return errored_report(path, "");
}

ReportEntry errored_report(const char* path, std::string_view error)
{
    ReportEntry entry = entry_of(path, ReportKind::RunError);
    set_text(entry.error, error);
    return entry;
}

ReportEntry unreadable_file(const char* path)
{
    return entry_of(path, ReportKind::Unreadable);
}

ReportEntry unrelated_file(const char* path)
{
    return entry_of(path, ReportKind::NotAnalyzeReport);
}

void set_modes(ReportEntry& entry, std::string_view mode, std::string_view sub_mode)
{
    set_text(entry.analysis_mode, mode);
    set_text(entry.analysis_mode_sub, sub_mode);
}

void set_failed_checks(ReportEntry& entry, const std::vector<std::string>& names)
{
    set_names(entry.failed_checks, entry.failed_check_count, names);
}

void set_non_gating_checks(ReportEntry& entry, const std::vector<std::string>& names)
{
    set_names(entry.non_gating_checks, entry.non_gating_check_count, names);
}

SummaryModel model_of(const std::vector<ReportEntry>& entries, const char* input_dir)
{
    return {input_dir, entries.empty() ? nullptr : entries.data(), entries.size(), "1.2.3"};
}

std::vector<std::string> numbered_paths(std::string_view prefix, int count)
{
    std::vector<std::string> paths;
    for (int i = 1; i <= count; ++i) {
        char name[32] = {};
        std::snprintf(name, sizeof name, "r%03d.html", i);
        paths.push_back(std::string(prefix) + name);
    }
    return paths;
}

std::vector<ReportEntry> entries_of(const std::vector<std::string>& paths, MakeEntry make)
{
    std::vector<ReportEntry> entries;
    for (const std::string& path : paths) {
        entries.push_back(make(path.c_str()));
    }
    return entries;
}

std::vector<ReportEntry> together(std::vector<ReportEntry> first,
                                  const std::vector<ReportEntry>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string all_bytes()
{
    std::string bytes;
    for (int byte = 0x01; byte <= 0xff; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

int count_of(std::string_view needle, std::string_view text)
{
    int count = 0;
    for (std::size_t at = text.find(needle); at != text.npos; at = text.find(needle, at + 1)) {
        ++count;
    }
    return count;
}

AppendedText::AppendedText()
{
    text_buffer_init(buffer);
}

AppendedText::~AppendedText()
{
    text_buffer_free(buffer);
}

std::string AppendedText::text() const
{
    return buffer.data == nullptr ? std::string() : std::string(buffer.data, buffer.length);
}

CurrentFolder::CurrentFolder(const std::string& folder) : before_(std::filesystem::current_path())
{
    std::filesystem::current_path(folder);
}

CurrentFolder::~CurrentFolder()
{
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
}

std::string results_section(const std::vector<ReportEntry>& entries, const char* input_dir,
                            const char* output_path)
{
    const SummaryTally tally = tally_entries(entries.data(), entries.size());
    return appended([&](TextBuffer& buffer) {
        return append_results_section(buffer, model_of(entries, input_dir), output_path,
                                      tally.failed, tally.passed, tally.errored);
    });
}

std::vector<std::string> linked_paths(const std::vector<PageTable>& tables)
{
    std::vector<std::string> paths;
    for (const PageTable& table : tables) {
        for (const PageRow& row : table.rows) {
            paths.push_back(row.link);
        }
    }
    return paths;
}
