#include "report/naive_scraper.h"

#include <optional>
#include <utility>

namespace {

using Text = std::optional<std::string_view>;

constexpr std::string_view VALUE = "<div class=\"v\">";

// The text before (or behind) the first mark in text; nothing where there is none.
Text before(Text text, std::string_view mark)
{
    const std::size_t at = text ? text->find(mark) : std::string_view::npos;
    return at == std::string_view::npos ? Text() : text->substr(0, at);
}

Text behind(Text text, std::string_view mark)
{
    const Text front = before(text, mark);
    return front ? Text(text->substr(front->size() + mark.size())) : Text();
}

// What follows mark where text begins with it.
Text without(Text text, std::string_view mark)
{
    return text && text->starts_with(mark) ? Text(text->substr(mark.size())) : Text();
}

std::string cut(Text text, std::size_t most)
{
    return std::string(text.value_or("").substr(0, most));
}

void read_tabs(Text bar, ReadReport& report)
{
    while (report.failed_checks.size() < 16 && report.non_gating_checks.size() < 16) {
        const Text tab = behind(bar, "<a ");
        const Text tag = before(tab, ">");
        const Text name = before(behind(tab, ">"), "</a>");
        if (!name) {
            return;
        }
        // The blank behind the "a" counts as the one before an attribute.
        const std::string attributes = " " + std::string(*tag);
        if (attributes.find(" data-fail") != std::string::npos) {
            const bool gates = attributes.find(" data-nongating") == std::string::npos;
            (gates ? report.failed_checks : report.non_gating_checks).push_back(cut(name, 39));
        }
        bar = behind(behind(tab, ">"), "</a>");
    }
}

void read_modes(Text text, ReadReport& report)
{
    const Text mode = without(behind(text, "<div class=\"k\">Analysis Mode</div>\n"), VALUE);
    report.analysis_mode = cut(before(mode, "</div>"), 39);
    const Text rest = behind(mode, "</div>");
    const Text next_line = without(rest, "\n");
    const Text sub_mode = without(next_line ? next_line : rest, "<div class=\"kpi-sub\">");
    report.analysis_mode_sub = cut(before(sub_mode, "</div>"), 39);
}

} // namespace

// An ampersand that comes out of a reference begins none: it is the last to be replaced.
std::string naive_decoded(std::string text)
{
    constexpr std::pair<std::string_view, std::string_view> REFERENCES[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&amp;", "&"}};
    for (const auto& [reference, character] : REFERENCES) {
        std::size_t at = text.find(reference);
        while (at != std::string::npos) {
            text.replace(at, reference.size(), character);
            at = text.find(reference, at + 1);
        }
    }
    return text;
}

ReadReport naive_scrape(std::string_view file)
{
    ReadReport report;
    const Text text = file.substr(0, file.find('\0'));
    const Text label = behind(text, "<div class=\"k\">Overall Verdict</div>");
    if (!label) {
        return report;
    }
    const Text verdict = behind(label, VALUE);
    if (without(verdict, "ERROR")) {
        report.kind = ReportKind::RunError;
        const Text error = before(behind(text, "<p class=\"run-error\">"), "</p>");
        report.error = cut(naive_decoded(std::string(error.value_or(""))), 639);
        return report;
    }
    report.kind = ReportKind::Analyzed;
    report.passed = without(verdict, "PASS").has_value();
    const Text bar = behind(text, "<nav class=\"nav-tabs\">");
    read_tabs(before(bar, "</nav>"), report);
    read_modes(text, report);
    if (report.passed) {
        for (const std::string& name : std::exchange(report.failed_checks, {})) {
            if (report.non_gating_checks.size() < 16) {
                report.non_gating_checks.push_back(name);
            }
        }
    }
    return report;
}
