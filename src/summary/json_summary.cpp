#include "summary/json_summary.h"

#include <array>

#include "core/append_all.h"
#include "core/files.h"
#include "core/replaced_text.h"

namespace {

constexpr std::size_t CONTROL_COUNT = 0x20; // bytes below the space

using UnicodeEscape = std::array<char, 7>; // such as "\u001f", and a NUL

// Those of the control characters, by their numbers.
constexpr std::array<UnicodeEscape, CONTROL_COUNT> make_unicode_escapes()
{
    constexpr std::string_view DIGITS = "0123456789abcdef";
    std::array<UnicodeEscape, CONTROL_COUNT> escapes = {};
    for (std::size_t byte = 0; byte < CONTROL_COUNT; ++byte) {
        escapes[byte] = {'\\', 'u', '0', '0', DIGITS[byte / 16], DIGITS[byte % 16], '\0'};
    }
    return escapes;
}

constexpr auto UNICODE_ESCAPES = make_unicode_escapes();

// Backspace and form feed have no short escape here, and "/" none at all.
constexpr ByteReplacements make_replacements()
{
    ByteReplacements replacements = {};
    for (std::size_t byte = 0; byte < CONTROL_COUNT; ++byte) {
        set_replacement(replacements, static_cast<char>(byte), UNICODE_ESCAPES[byte].data());
    }
    set_replacement(replacements, '\t', "\\t");
    set_replacement(replacements, '\n', "\\n");
    set_replacement(replacements, '\r', "\\r");
    set_replacement(replacements, '"', "\\\"");
    set_replacement(replacements, '\\', "\\\\");
    return replacements;
}

constexpr ByteReplacements REPLACEMENTS = make_replacements();

struct Quoted
{
    std::string_view text;
};

bool append_part(TextBuffer& buffer, Quoted piece)
{
    return text_buffer_append_char(buffer, '"') && json_append_escaped(buffer, piece.text) &&
           text_buffer_append_char(buffer, '"');
}

// A report's verdict or, for other files, the reason why they are none.
const char* word_for(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Passed:
        return "PASS";
    case Outcome::Failed:
        return "FAIL";
    case Outcome::Errored:
        return "ERROR";
    case Outcome::Unreadable:
        return "unreadable";
    case Outcome::NoReport:
        break;
    }
    return "not_analyze_report";
}

constexpr char COUNTS[] = R"(,
    "total_reports": %ju,
    "passed": %ju,
    "failed": %ju,
    "errored": %ju,
    "reports": [
)";

// Each member of a report's object stands on a line of its own.
bool append_key(TextBuffer& buffer, std::string_view key)
{
    return append_all(buffer, ",\n            \"", key, "\": ");
}

bool append_member(TextBuffer& buffer, std::string_view key, std::string_view value)
{
    return append_key(buffer, key) && append_part(buffer, Quoted{value});
}

bool append_report(TextBuffer& buffer, const ReportEntry& entry)
{
    return append_all(buffer,
                      "        {\n            \"relative_path\": ", Quoted{entry.relative_path}) &&
           append_member(buffer, "verdict", word_for(outcome_of(entry))) &&
           append_member(buffer, "analysis_mode", entry.analysis_mode) &&
           append_member(buffer, "analysis_mode_sub", entry.analysis_mode_sub) &&
           append_key(buffer, "failed_checks") &&
           json_append_string_array(buffer, entry.failed_checks, entry.failed_check_count) &&
           append_key(buffer, "non_gating_checks") &&
           json_append_string_array(buffer, entry.non_gating_checks,
                                    entry.non_gating_check_count) &&
           append_member(buffer, "error", entry.error) && text_buffer_append(buffer, "\n        }");
}

bool append_other_file(TextBuffer& buffer, const ReportEntry& entry)
{
    return append_all(buffer, R"(        { "relative_path": )", Quoted{entry.relative_path},
                      R"(, "reason": )", Quoted{word_for(outcome_of(entry))}, " }");
}

// Appends the elements of those entries that belong to an array, and its end. Who reads
// the file line by line knows an empty array by the bracket at the start of its line.
bool append_array(TextBuffer& buffer, const SummaryModel& model,
                  bool (*belongs)(const ReportEntry&),
                  bool (*append_element)(TextBuffer&, const ReportEntry&))
{
    std::string_view separator;
    bool complete = true;
    for (std::uint64_t i = 0; complete && i < model.count; ++i) {
        if (belongs(model.entries[i])) {
            complete =
                text_buffer_append(buffer, separator) && append_element(buffer, model.entries[i]);
            separator = ",\n";
        }
    }
    return complete && text_buffer_append(buffer, separator.empty() ? "]" : "\n    ]");
}

bool append_document(TextBuffer& buffer, const SummaryModel& model)
{
    const SummaryTally tally = tally_entries(model.entries, model.count);
    return append_all(buffer, "{\n    ", Quoted{"scanned_directory"}, ": ",
                      Quoted{model.input_dir}) &&
           text_buffer_appendf(buffer, COUNTS, std::uintmax_t{total_reports(tally)},
                               std::uintmax_t{tally.passed}, std::uintmax_t{tally.failed},
                               std::uintmax_t{tally.errored}) &&
           append_array(buffer, model, is_report, append_report) &&
           append_all(buffer, ",\n    ", Quoted{"other_files"}, ": [\n") &&
           append_array(
               buffer, model, [](const ReportEntry& entry) { return !is_report(entry); },
               append_other_file) &&
           text_buffer_append(buffer, "\n}\n");
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
    bool complete = text_buffer_append_char(buffer, '[');
    for (std::uint64_t i = 0; complete && i < count; ++i) {
        complete = append_all(buffer, i > 0 ? ", " : "", Quoted{first_slot[i]});
    }
    return complete && text_buffer_append_char(buffer, ']');
}
