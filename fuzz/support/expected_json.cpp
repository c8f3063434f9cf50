#include "support/expected_outputs.h"
#include "support/json_reader.h"

namespace {

bool is_other_file(const ReportEntry& entry)
{
    return entry.kind == ReportKind::NotAnalyzeReport || entry.kind == ReportKind::Unreadable;
}

void judge_names(JsonReader& json, const char (&slots)[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE],
                 std::uint64_t count)
{
    json.punctuation('[');
    for (std::uint64_t slot = 0; slot < count; ++slot) {
        if (slot > 0) {
            json.punctuation(',');
        }
        json.string(slots[slot]);
    }
    json.punctuation(']');
}

std::string_view verdict(const ReportEntry& entry)
{
    if (entry.kind == ReportKind::RunError) {
        return "ERROR";
    }
    return entry.passed == 1 ? "PASS" : "FAIL";
}

void judge_report(JsonReader& json, const ReportEntry& entry)
{
    json.punctuation('{');
    json.key("relative_path");
    json.string(entry.relative_path);
    json.punctuation(',');
    json.key("verdict");
    json.string(verdict(entry));
    json.punctuation(',');
    json.key("analysis_mode");
    json.string(entry.analysis_mode);
    json.punctuation(',');
    json.key("analysis_mode_sub");
    json.string(entry.analysis_mode_sub);
    json.punctuation(',');
    json.key("failed_checks");
    judge_names(json, entry.failed_checks, entry.failed_check_count);
    json.punctuation(',');
    json.key("non_gating_checks");
    judge_names(json, entry.non_gating_checks, entry.non_gating_check_count);
    json.punctuation(',');
    json.key("error");
    json.string(entry.error);
    json.punctuation('}');
}

void judge_other_file(JsonReader& json, const ReportEntry& entry)
{
    json.punctuation('{');
    json.key("relative_path");
    json.string(entry.relative_path);
    json.punctuation(',');
    json.key("reason");
    json.string(entry.kind == ReportKind::Unreadable ? "unreadable" : "not_analyze_report");
    json.punctuation('}');
}

void judge_array(JsonReader& json, std::span<const ReportEntry> entries, bool of_other_files)
{
    json.punctuation('[');
    bool is_first = true;
    for (const ReportEntry& entry : entries) {
        if (is_other_file(entry) != of_other_files) {
            continue;
        }
        if (!is_first) {
            json.punctuation(',');
        }
        is_first = false;
        of_other_files ? judge_other_file(json, entry) : judge_report(json, entry);
    }
    json.punctuation(']');
}

void judge_number(JsonReader& json, std::string_view key, std::uint64_t value)
{
    json.key(key);
    json.number(value);
    json.punctuation(',');
}

} // namespace

void judge_json(std::string_view document, const ExpectedOutputs& expected)
{
    std::uint64_t passed = 0;
    std::uint64_t failed = 0;
    std::uint64_t errored = 0;
    for (const ReportEntry& entry : expected.entries) {
        const bool analyzed = entry.kind == ReportKind::Analyzed;
        passed += analyzed && entry.passed == 1 ? 1 : 0;
        failed += analyzed && entry.passed == 0 ? 1 : 0;
        errored += entry.kind == ReportKind::RunError ? 1 : 0;
    }
    JsonReader json(document);
    json.punctuation('{');
    json.key("scanned_directory");
    json.string(expected.input_dir);
    json.punctuation(',');
    judge_number(json, "total_reports", passed + failed + errored);
    judge_number(json, "passed", passed);
    judge_number(json, "failed", failed);
    judge_number(json, "errored", errored);
    json.key("reports");
    judge_array(json, expected.entries, false);
    json.punctuation(',');
    json.key("other_files");
    judge_array(json, expected.entries, true);
    json.punctuation('}');
    json.end();
}
