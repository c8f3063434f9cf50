// The shortest files of each kind that the reader tells apart.

#pragma once

#include <string>
#include <string_view>

// A report with its verdict alone: no mode, no checks.
inline std::string report_with_verdict(std::string_view verdict)
{
    return "<div class=\"k\">Overall Verdict</div>\n<div class=\"v\">" + std::string(verdict) +
           "</div>\n";
}

inline std::string passed_report()
{
    return report_with_verdict("PASS");
}

inline std::string failed_report()
{
    return report_with_verdict("FAIL");
}

inline std::string errored_report(std::string_view text)
{
    return report_with_verdict("ERROR") + "<p class=\"run-error\">" + std::string(text) + "</p>\n";
}

// A failed report with everything that the reader looks for.
inline constexpr std::string_view FULL_FAILED_REPORT =
    "<div class=\"k\">Overall Verdict</div>\n"
    "<div class=\"v\">FAIL</div>\n"
    "<div class=\"k\">Analysis Mode</div>\n"
    "<div class=\"v\">Mode X</div>\n"
    "<div class=\"kpi-sub\">Variant 1</div>\n"
    "<nav class=\"nav-tabs\">\n"
    "<a href=\"#levels\">Levels</a>\n"
    "<a href=\"#noise\" data-fail>Noise</a>\n"
    "<a href=\"#phase\" data-fail>Phase</a>\n"
    "<a href=\"#dither\" data-fail data-nongating>Dither</a>\n"
    "</nav>\n";

// An HTML page that is no report.
inline constexpr std::string_view OTHER_PAGE = "<!doctype html>\n<title>Notes</title>\n";
