#include "faults/expected_outputs.h"

namespace {

std::string verdict_word(Verdict verdict)
{
    return verdict == Verdict::Pass ? "PASS" : verdict == Verdict::Fail ? "FAIL" : "ERROR";
}

std::string tab_of(const std::string& name, const std::string& marks)
{
    return "<a href=\"#check\"" + marks + ">" + name + "</a>\n";
}

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char byte : text) {
        result += byte == '"' || byte == '\\' ? std::string("\\") + byte : std::string(1, byte);
    }
    return result + '"';
}

std::string quoted_list(const std::vector<std::string>& names)
{
    std::string result = "[";
    for (const std::string& name : names) {
        result += (result.size() > 1 ? ", " : "") + quoted(name);
    }
    return result + "]";
}

bool is_report(const ListedFile& listed)
{
    return listed.file.verdict != Verdict::Other && listed.file.verdict != Verdict::Unreadable;
}

std::string json_report(const ListedFile& listed)
{
    const KnownFile& file = listed.file;
    const std::string lead = ",\n            ";
    return "        {\n            \"relative_path\": " + quoted(listed.path) + lead +
           "\"verdict\": " + quoted(verdict_word(file.verdict)) + lead +
           "\"analysis_mode\": " + quoted(file.mode) + lead +
           "\"analysis_mode_sub\": " + quoted(file.sub_mode) + lead +
           "\"failed_checks\": " + quoted_list(file.failed_checks) + lead +
           "\"non_gating_checks\": " + quoted_list(file.non_gating_checks) + lead +
           "\"error\": " + quoted(file.error) + "\n        }";
}

std::string json_other_file(const ListedFile& listed)
{
    const bool unread = listed.file.verdict == Verdict::Unreadable;
    return "        { \"relative_path\": " + quoted(listed.path) +
           ", \"reason\": " + quoted(unread ? "unreadable" : "not_analyze_report") + " }";
}

std::string json_array(const std::vector<std::string>& elements)
{
    std::string result = "[\n";
    for (const std::string& element : elements) {
        result += (result.size() > 2 ? ",\n" : "") + element;
    }
    return result + (elements.empty() ? "]" : "\n    ]");
}

} // namespace

std::string html_text(const std::string& text, const std::string& behind_slash)
{
    std::string result;
    for (const char byte : text) {
        switch (byte) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += byte;
        }
        if (byte == '/') {
            result += behind_slash;
        }
    }
    return result;
}

std::string document_of(const KnownFile& file)
{
    if (file.verdict == Verdict::Other) {
        return "";
    }
    std::string text = "<div class=\"k\">Overall Verdict</div>\n<div class=\"v\">" +
                       verdict_word(file.verdict) + "</div>\n";
    if (file.verdict == Verdict::Error) {
        return text + "<p class=\"run-error\">" + html_text(file.error) + "</p>\n";
    }
    if (!file.mode.empty()) {
        text += "<div class=\"k\">Analysis Mode</div>\n<div class=\"v\">" + file.mode +
                "</div>\n<div class=\"kpi-sub\">" + file.sub_mode + "</div>\n";
    }
    text += "<nav class=\"nav-tabs\">\n" + tab_of("Level", "");
    for (const std::string& name : file.failed_checks) {
        text += tab_of(name, " data-fail");
    }
    for (const std::string& name : file.non_gating_checks) {
        text += tab_of(name, " data-fail data-nongating");
    }
    return text + "</nav>\n";
}

KnownFile unreadable()
{
    return {Verdict::Unreadable, "", "", {}, {}, ""};
}

Counts counts_of(const std::vector<ListedFile>& files)
{
    Counts counts;
    for (const ListedFile& listed : files) {
        switch (listed.file.verdict) {
        case Verdict::Pass:
            ++counts.passed;
            break;
        case Verdict::Fail:
            ++counts.failed;
            break;
        case Verdict::Error:
            ++counts.errored;
            break;
        default:
            ++counts.other;
        }
    }
    return counts;
}

int status_of(const std::vector<ListedFile>& files)
{
    for (const ListedFile& listed : files) {
        if (listed.file.verdict != Verdict::Pass && listed.file.verdict != Verdict::Other) {
            return 1;
        }
    }
    return 0;
}

std::string json_of(const std::string& input, const std::vector<ListedFile>& files)
{
    const Counts counts = counts_of(files);
    std::vector<std::string> reports;
    std::vector<std::string> others;
    for (const ListedFile& listed : files) {
        if (is_report(listed)) {
            reports.push_back(json_report(listed));
        } else {
            others.push_back(json_other_file(listed));
        }
    }
    return "{\n    \"scanned_directory\": " + quoted(input) + ",\n    \"total_reports\": " +
           std::to_string(counts.passed + counts.failed + counts.errored) +
           ",\n    \"passed\": " + std::to_string(counts.passed) +
           ",\n    \"failed\": " + std::to_string(counts.failed) +
           ",\n    \"errored\": " + std::to_string(counts.errored) +
           ",\n    \"reports\": " + json_array(reports) +
           ",\n    \"other_files\": " + json_array(others) + "\n}\n";
}

std::vector<std::string> closing_pieces(const std::string& page, const std::string& json,
                                        const std::vector<ListedFile>& files)
{
    const Counts counts = counts_of(files);
    std::vector<std::string> pieces = {
        "wrote " + page + " (" + std::to_string(counts.passed + counts.failed + counts.errored) +
        " fathomix reports: " + std::to_string(counts.passed) + " passed, " +
        std::to_string(counts.failed) + " failed"};
    if (counts.errored > 0) {
        pieces.push_back(", " + std::to_string(counts.errored) + " errored");
    }
    if (json.empty()) {
        pieces.emplace_back(")\n");
        return pieces;
    }
    pieces.emplace_back(") + json\n");
    pieces.push_back("wrote " + json + "\n");
    return pieces;
}
