#include "report/scraped_report.h"

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "report/read_analyze_report.h"

namespace {

// Makes an entry that failed expect_sound safe to look at further.
void mend(ReportEntry& entry)
{
    entry.analysis_mode[REPORT_TEXT_SIZE - 1] = '\0';
    entry.analysis_mode_sub[REPORT_TEXT_SIZE - 1] = '\0';
    entry.error[REPORT_ERROR_SIZE - 1] = '\0';
}

// What the reader makes of an old entry that stands between guard bytes.
template <typename Reader>
ReportEntry guarded(const Reader& reader)
{
    struct
    {
        char before[64];
        ReportEntry entry;
        char after[64];
    } memory;
    std::memset(&memory, OLD_BYTE, sizeof memory);
    reader(memory.entry);

    const std::string guard(sizeof memory.before, static_cast<char>(OLD_BYTE));
    EXPECT_EQ(std::string(memory.before, sizeof memory.before), guard);
    EXPECT_EQ(std::string(memory.after, sizeof memory.after), guard);
    EXPECT_EQ(memory.entry.relative_path, RELATIVE_PATH);
    expect_sound(memory.entry);
    mend(memory.entry);
    return memory.entry;
}

std::string tab_with(std::string_view attributes, std::string_view name)
{
    return "<a href=\"#c\"" + std::string(attributes) + ">" + std::string(name) + "</a>\n";
}

} // namespace

ReportEntry scrape(std::string_view document)
{
    std::vector<char> block(document.begin(), document.end());
    block.push_back('\0');
    block.shrink_to_fit();
    return guarded([&block](ReportEntry& entry) {
        scrape_analyze_report(block.data(), RELATIVE_PATH, entry);
    });
}

ReportEntry read_report(const std::string& full_path)
{
    return guarded([&full_path](ReportEntry& entry) {
        read_analyze_report(full_path.c_str(), RELATIVE_PATH, entry);
    });
}

void expect_sound(const ReportEntry& entry)
{
    EXPECT_EQ(faults_of(entry), "");
}

void expect_empty(const ReportEntry& entry, ReportKind kind)
{
    EXPECT_EQ(entry.kind, kind);
    EXPECT_EQ(entry.passed, 0);
    EXPECT_STREQ(entry.analysis_mode, "");
    EXPECT_STREQ(entry.analysis_mode_sub, "");
    EXPECT_STREQ(entry.error, "");
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_EQ(entry.non_gating_check_count, 0U);
    EXPECT_TRUE(slots_untouched_from(entry.failed_checks, 0));
    EXPECT_TRUE(slots_untouched_from(entry.non_gating_checks, 0));
}

std::string repeated(std::string_view text, std::uint64_t count)
{
    std::string result;
    result.reserve(text.size() * count);
    for (; count > 0; --count) {
        result += text;
    }
    return result;
}

std::string verdict(std::string_view word)
{
    return "<div class=\"k\">Overall Verdict</div>\n<div class=\"v\">" + std::string(word) +
           "</div>\n";
}

std::string run_error(std::string_view text)
{
    return "<p class=\"run-error\">" + std::string(text) + "</p>\n";
}

std::string bar(std::string_view tabs)
{
    return "<nav class=\"nav-tabs\">\n" + std::string(tabs) + "</nav>\n";
}

std::string mode_figure(std::string_view mode, std::string_view sub_mode)
{
    return "<div class=\"k\">Analysis Mode</div>\n<div class=\"v\">" + std::string(mode) +
           "</div>\n<div class=\"kpi-sub\">" + std::string(sub_mode) + "</div>\n";
}

std::string passing_tab(std::string_view name)
{
    return tab_with("", name);
}

std::string gating_tab(std::string_view name)
{
    return tab_with(" data-fail", name);
}

std::string non_gating_tab(std::string_view name)
{
    return tab_with(" data-fail data-nongating", name);
}

std::string gating_tabs(std::string_view prefix, int count)
{
    std::string tabs;
    for (const std::string& name : numbered(prefix, count)) {
        tabs += gating_tab(name);
    }
    return tabs;
}

std::string non_gating_tabs(std::string_view prefix, int count)
{
    std::string tabs;
    for (const std::string& name : numbered(prefix, count)) {
        tabs += non_gating_tab(name);
    }
    return tabs;
}

Names numbered(std::string_view prefix, int count)
{
    Names names;
    for (int number = 1; number <= count; ++number) {
        names.push_back(std::string(prefix) + std::to_string(number));
    }
    return names;
}

Names together(Names first, const Names& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}
