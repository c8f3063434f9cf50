#include "summary/json_summary.h"

#include <array>

#include "core/files.h"
#include "core/replaced_text.h"

namespace {

constexpr std::size_t CONTROL_COUNT = 0x20; // bytes below the space

struct UnicodeEscape
{
    char text[7]; // such as "\u001f", and a NUL
};

// Those of the control characters, by their numbers.
constexpr std::array<UnicodeEscape, CONTROL_COUNT> make_unicode_escapes()
{
    constexpr std::string_view DIGITS = "0123456789abcdef";
    std::array<UnicodeEscape, CONTROL_COUNT> escapes = {};
    for (std::size_t byte = 0; byte < CONTROL_COUNT; ++byte) {
        escapes[byte] = {{'\\', 'u', '0', '0', DIGITS[byte / 16], DIGITS[byte % 16], '\0'}};
    }
    return escapes;
}

constexpr auto UNICODE_ESCAPES = make_unicode_escapes();

// Backspace and form feed have no short escape here, and "/" none at all.
constexpr ByteReplacements make_replacements()
{
    ByteReplacements replacements = {};
    for (std::size_t byte = 0; byte < CONTROL_COUNT; ++byte) {
        set_replacement(replacements, static_cast<char>(byte), UNICODE_ESCAPES[byte].text);
    }
    set_replacement(replacements, '\t', "\\t");
    set_replacement(replacements, '\n', "\\n");
    set_replacement(replacements, '\r', "\\r");
    set_replacement(replacements, '"', "\\\"");
    set_replacement(replacements, '\\', "\\\\");
    return replacements;
}

constexpr ByteReplacements REPLACEMENTS = make_replacements();

bool append_quoted(TextBuffer& buffer, std::string_view text)
{
    return text_buffer_append_char(buffer, '"') && json_append_escaped(buffer, text) &&
           text_buffer_append_char(buffer, '"');
}

const char* verdict_of(const ReportEntry& entry)
{
    if (entry.kind == ReportKind::RunError) {
        return "ERROR";
    }
    return entry.passed != 0 ? "PASS" : "FAIL";
}

const char* reason_of(const ReportEntry& entry)
{
    return entry.kind == ReportKind::Unreadable ? "unreadable" : "not_analyze_report";
}

bool append_header(TextBuffer& buffer, const SummaryModel& model)
{
    const SummaryTally tally = tally_entries(model.entries, model.count);
    return text_buffer_append(buffer, "{\n    \"scanned_directory\": ") &&
           append_quoted(buffer, model.input_dir) &&
           text_buffer_appendf(buffer,
                               ",\n"
                               "    \"total_reports\": %zu,\n"
                               "    \"passed\": %zu,\n"
                               "    \"failed\": %zu,\n"
                               "    \"errored\": %zu,\n",
                               std::size_t{total_reports(tally)}, std::size_t{tally.passed},
                               std::size_t{tally.failed}, std::size_t{tally.errored});
}

bool append_report(TextBuffer& buffer, const ReportEntry& entry)
{
    return text_buffer_append(buffer, "        {\n            \"relative_path\": ") &&
           append_quoted(buffer, entry.relative_path) &&
           text_buffer_append(buffer, ",\n            \"verdict\": ") &&
           append_quoted(buffer, verdict_of(entry)) &&
           text_buffer_append(buffer, ",\n            \"analysis_mode\": ") &&
           append_quoted(buffer, entry.analysis_mode) &&
           text_buffer_append(buffer, ",\n            \"analysis_mode_sub\": ") &&
           append_quoted(buffer, entry.analysis_mode_sub) &&
           text_buffer_append(buffer, ",\n            \"failed_checks\": ") &&
           json_append_string_array(buffer, entry.failed_checks, entry.failed_check_count) &&
           text_buffer_append(buffer, ",\n            \"non_gating_checks\": ") &&
           json_append_string_array(buffer, entry.non_gating_checks,
                                    entry.non_gating_check_count) &&
           text_buffer_append(buffer, ",\n            \"error\": ") &&
           append_quoted(buffer, entry.error) && text_buffer_append(buffer, "\n        }");
}

bool append_other_file(TextBuffer& buffer, const ReportEntry& entry)
{
    return text_buffer_append(buffer, "        { \"relative_path\": ") &&
           append_quoted(buffer, entry.relative_path) &&
           text_buffer_append(buffer, ", \"reason\": ") &&
           append_quoted(buffer, reason_of(entry)) && text_buffer_append(buffer, " }");
}

// Appends the array of either the reports or the other files, element by element.
// An empty array's bracket stands at the start of its line: that is meant.
bool append_array(TextBuffer& buffer, const SummaryModel& model, bool of_reports)
{
    bool is_empty = true;
    for (std::uint64_t i = 0; i < model.count; ++i) {
        const ReportEntry& entry = model.entries[i];
        if (is_report(entry) != of_reports) {
            continue;
        }
        if ((!is_empty && !text_buffer_append(buffer, ",\n")) ||
            !(of_reports ? append_report(buffer, entry) : append_other_file(buffer, entry))) {
            return false;
        }
        is_empty = false;
    }
    return text_buffer_append(buffer, is_empty ? "]" : "\n    ]");
}

bool append_document(TextBuffer& buffer, const SummaryModel& model)
{
    return append_header(buffer, model) && text_buffer_append(buffer, "    \"reports\": [\n") &&
           append_array(buffer, model, true) &&
           text_buffer_append(buffer, ",\n    \"other_files\": [\n") &&
           append_array(buffer, model, false) && text_buffer_append(buffer, "\n}\n");
}

} // namespace

bool write_json_summary(const char* json_path, const SummaryModel& model)
{
    TextBuffer document;
    text_buffer_init(document);
    const bool written = append_document(document, model) &&
                         write_whole_file(json_path, document.data, document.length);
    text_buffer_free(document);
    return written;
}

bool json_append_escaped(TextBuffer& buffer, std::string_view text)
{
    return append_replaced_text(buffer, text, REPLACEMENTS);
}

bool json_append_string_array(TextBuffer& buffer, const char (*first_slot)[REPORT_TEXT_SIZE],
                              std::uint64_t count)
{
    if (!text_buffer_append_char(buffer, '[')) {
        return false;
    }
    for (std::uint64_t i = 0; i < count; ++i) {
        if ((i > 0 && !text_buffer_append(buffer, ", ")) || !append_quoted(buffer, first_slot[i])) {
            return false;
        }
    }
    return text_buffer_append_char(buffer, ']');
}
