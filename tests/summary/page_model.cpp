#include "summary/page_model.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <regex>

#include <gtest/gtest.h>

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

std::string escaped_byte(char byte)
{
    switch (byte) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return std::string(1, byte);
    }
}

// Reads a document from its start; each call takes what it names off the front,
// and false means that something else stands there.
class JsonReader
{
public:
    explicit JsonReader(std::string_view document) : rest_(document) {}

    bool summary(JsonSummary& found)
    {
        return literal("{\n    \"scanned_directory\": ") && string(found.scanned_directory) &&
               literal(",\n    \"total_reports\": ") && number(found.total_reports) &&
               literal(",\n    \"passed\": ") && number(found.passed) &&
               literal(",\n    \"failed\": ") && number(found.failed) &&
               literal(",\n    \"errored\": ") && number(found.errored) &&
               literal(",\n    \"reports\": [\n") && reports(found.reports) &&
               literal(",\n    \"other_files\": [\n") && other_files(found.other_files) &&
               literal("\n}\n") && rest_.empty();
    }

private:
    bool literal(std::string_view text)
    {
        if (!rest_.starts_with(text)) {
            return false;
        }
        rest_.remove_prefix(text.size());
        return true;
    }

    bool number(std::uint64_t& value)
    {
        std::size_t digits = 0;
        while (digits < rest_.size() && rest_[digits] >= '0' && rest_[digits] <= '9') {
            ++digits;
        }
        if (digits == 0 || digits > 19 || (digits > 1 && rest_[0] == '0')) {
            return false;
        }
        value = std::stoull(std::string(rest_.substr(0, digits)));
        rest_.remove_prefix(digits);
        return true;
    }

    // The six-character form, due only to control bytes that have no short one.
    bool unicode_escape(std::string& value)
    {
        for (int byte = 1; byte < 0x20; ++byte) {
            char form[8] = {};
            std::snprintf(form, sizeof form, "\\u00%x%x", byte / 16, byte % 16);
            if (byte != '\t' && byte != '\n' && byte != '\r' && literal(form)) {
                value += static_cast<char>(byte);
                return true;
            }
        }
        return false;
    }

    bool escape(std::string& value)
    {
        constexpr std::string_view FORMS = "tnr\"\\";
        constexpr std::string_view BYTES = "\t\n\r\"\\";
        const std::size_t form = rest_.size() < 2 ? FORMS.npos : FORMS.find(rest_[1]);
        if (form == FORMS.npos) {
            return unicode_escape(value);
        }
        value += BYTES[form];
        rest_.remove_prefix(2);
        return true;
    }

    bool string(std::string& value)
    {
        if (!literal("\"")) {
            return false;
        }
        while (!rest_.empty() && rest_[0] != '"') {
            if (rest_[0] == '\\') {
                if (!escape(value)) {
                    return false;
                }
            } else if (static_cast<unsigned char>(rest_[0]) < 0x20) {
                return false;
            } else {
                value += rest_[0];
                rest_.remove_prefix(1);
            }
        }
        return literal("\"");
    }

    bool strings(std::vector<std::string>& values)
    {
        if (literal("[]")) {
            return true;
        }
        if (!literal("[")) {
            return false;
        }
        do {
            if (!string(values.emplace_back())) {
                return false;
            }
        } while (literal(", "));
        return literal("]");
    }

    bool report(JsonReport& found)
    {
        return literal("        {\n            \"relative_path\": ") &&
               string(found.relative_path) && literal(",\n            \"verdict\": ") &&
               string(found.verdict) && literal(",\n            \"analysis_mode\": ") &&
               string(found.analysis_mode) && literal(",\n            \"analysis_mode_sub\": ") &&
               string(found.analysis_mode_sub) && literal(",\n            \"failed_checks\": ") &&
               strings(found.failed_checks) && literal(",\n            \"non_gating_checks\": ") &&
               strings(found.non_gating_checks) && literal(",\n            \"error\": ") &&
               string(found.error) && literal("\n        }");
    }

    bool reports(std::vector<JsonReport>& found)
    {
        if (literal("]")) {
            return true;
        }
        do {
            if (!report(found.emplace_back())) {
                return false;
            }
        } while (literal(",\n"));
        return literal("\n    ]");
    }

    bool other_file(JsonOtherFile& found)
    {
        return literal("        { \"relative_path\": ") && string(found.relative_path) &&
               literal(", \"reason\": ") && string(found.reason) && literal(" }");
    }

    bool other_files(std::vector<JsonOtherFile>& found)
    {
        if (literal("]")) {
            return true;
        }
        do {
            if (!other_file(found.emplace_back())) {
                return false;
            }
        } while (literal(",\n"));
        return literal("\n    ]");
    }

    std::string_view rest_;
};

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
    return {input_dir, entries.empty() ? nullptr : entries.data(), entries.size(), "0.7.1-beta"};
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

std::string all_bytes()
{
    std::string bytes;
    for (int byte = 0x01; byte <= 0xff; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char byte : text) {
        result += escaped_byte(byte);
    }
    return result;
}

std::string escaped_path(std::string_view text)
{
    std::string result;
    for (const char byte : text) {
        result += escaped_byte(byte);
        if (byte == '/' || byte == '\\') {
            result += "<wbr>";
        }
    }
    return result;
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
    std::uint64_t failed = 0;
    std::uint64_t passed = 0;
    std::uint64_t errored = 0;
    for (const ReportEntry& entry : entries) {
        errored += entry.kind == ReportKind::RunError ? 1 : 0;
        passed += entry.kind == ReportKind::Analyzed && entry.passed == 1 ? 1 : 0;
        failed += entry.kind == ReportKind::Analyzed && entry.passed == 0 ? 1 : 0;
    }
    AppendedText section;
    EXPECT_TRUE(append_results_section(section.buffer, model_of(entries, input_dir), output_path,
                                       failed, passed, errored));
    return section.text();
}

std::vector<std::string> linked_paths(const std::string& markup)
{
    constexpr std::string_view LEAD = "<a href=\"";
    std::vector<std::string> paths;
    for (std::size_t at = markup.find(LEAD); at != markup.npos; at = markup.find(LEAD, at + 1)) {
        const std::size_t start = at + LEAD.size();
        paths.push_back(markup.substr(start, markup.find('"', start) - start));
    }
    return paths;
}

std::string with_time_replaced(const std::string& page)
{
    constexpr std::string_view LEAD = "<span>summary generated ";
    const std::size_t start = page.find(LEAD);
    if (start == page.npos || page.find(LEAD, start + 1) != page.npos) {
        ADD_FAILURE() << "not exactly one time of generation";
        return page;
    }
    const std::string time = page.substr(start + LEAD.size(), 23);
    EXPECT_TRUE(std::regex_match(
        time, std::regex("[0-9]{4}-[01][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9] UTC")))
        << time;
    std::string result = page;
    return result.replace(start + LEAD.size(), time.size(), "TIME");
}

std::optional<JsonSummary> read_json_summary(std::string_view document)
{
    JsonSummary summary;
    if (!JsonReader(document).summary(summary)) {
        return std::nullopt;
    }
    return summary;
}
