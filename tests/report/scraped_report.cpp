#include "report/scraped_report.h"

#include <ostream>
#include <vector>

#include <gtest/gtest.h>

#include "report/read_analyze_report.h"

namespace {

ReadReport judged(const ReportEntry& entry)
{
    EXPECT_EQ(entry.relative_path, RELATIVE_PATH);
    EXPECT_EQ(faults_of(entry), "");
    return visible_fields(entry);
}

std::string tab_with(std::string_view attributes, std::string_view name)
{
    return "<a href=\"#c\"" + std::string(attributes) + ">" + std::string(name) + "</a>\n";
}

} // namespace

ReadReport scrape(std::string_view document)
{
    std::vector<char> block(document.begin(), document.end());
    block.push_back('\0');
    block.shrink_to_fit();
    ReportEntry entry = old_entry();
    scrape_analyze_report(block.data(), RELATIVE_PATH, entry);
    return judged(entry);
}

ReadReport read_report(const std::string& full_path)
{
    ReportEntry entry = old_entry();
    read_analyze_report(full_path.c_str(), RELATIVE_PATH, entry);
    return judged(entry);
}

ReadReport empty_report(ReportKind kind)
{
    ReadReport report;
    report.kind = kind;
    return report;
}

std::ostream& operator<<(std::ostream& out, const ReadReport& report)
{
    return out << "kind " << static_cast<std::uint32_t>(report.kind) << ", passed " << report.passed
               << ", modes "
               << testing::PrintToString(Names{report.analysis_mode, report.analysis_mode_sub})
               << ", failed " << testing::PrintToString(report.failed_checks) << ", non-gating "
               << testing::PrintToString(report.non_gating_checks) << ", error "
               << testing::PrintToString(report.error);
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
