// What the tests of the summary room share: entries and models as a reading run
// leaves them, and what the writers make of them.

#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "core/text_buffer.h"
#include "summary/summary_model.h"
#include "support/intercepted_calls.h"
#include "support/read_back.h"

// Entries as the report reader leaves them. Every byte that nobody may read holds
// 0xAA, never a NUL: unused slots, and each text's field behind its NUL. The path
// is borrowed and must outlive the entry.
ReportEntry passed_report(const char* path);
ReportEntry failed_report(const char* path);
ReportEntry errored_report(const char* path); // without a reason
ReportEntry errored_report(const char* path, std::string_view error);
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

// An entry for each path, which are borrowed.
using MakeEntry = ReportEntry (*)(const char* path);
std::vector<ReportEntry> entries_of(const std::vector<std::string>& paths, MakeEntry make);

std::vector<ReportEntry> together(std::vector<ReportEntry> first,
                                  const std::vector<ReportEntry>& second);

// Every byte value but NUL, 0x01 to 0xff in order.
std::string all_bytes();

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

// What append, called with a buffer, appends to it. The test fails if it gives false.
template <typename Append>
std::string appended(const Append& append)
{
    AppendedText text;
    EXPECT_TRUE(append(text.buffer));
    return text.text();
}

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

// The Results section of these entries. The folder that is missing by default makes
// every link the bare relative path.
std::string results_section(const std::vector<ReportEntry>& entries,
                            const char* input_dir = "no such folder",
                            const char* output_path = "summary.html");

// Where the links of the rows lead, table after table.
std::vector<std::string> linked_paths(const std::vector<PageTable>& tables);

// The clock stands still for as long as it lives.
class StoppedClock
{
public:
    explicit StoppedClock(std::time_t now = 0)
        : time_(time_call, [now](const auto&, std::time_t*) { return now; })
    {
    }

private:
    Interception<std::time_t, std::time_t*> time_;
};
