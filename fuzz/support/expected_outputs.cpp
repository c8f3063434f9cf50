#include "support/expected_outputs.h"

#include <algorithm>
#include <vector>

#include <nlohmann/json.hpp>

#include "report/html_escape.h"
#include "summary/summary_page.h"
#include "support/naive_paths.h"
#include "support/read_back.h"
#include "support/require.h"

namespace {

constexpr std::size_t LONG_PATH = 8192;

using Names = char[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE];
using Json = nlohmann::ordered_json;
using Rows = std::vector<const ReportEntry*>;

// The entries, parted as page and JSON part them; each in the order of the walk.
struct Parts
{
    Rows errored;
    Rows failed;
    Rows passed;
    Rows reports; // of all three kinds
    Rows others;
};

Parts part(std::span<const ReportEntry> entries)
{
    Parts parts;
    for (const ReportEntry& entry : entries) {
        if (entry.kind == ReportKind::NotAnalyzeReport || entry.kind == ReportKind::Unreadable) {
            parts.others.push_back(&entry);
            continue;
        }
        Rows& by_verdict = entry.passed == 1 ? parts.passed : parts.failed;
        (entry.kind == ReportKind::RunError ? parts.errored : by_verdict).push_back(&entry);
        parts.reports.push_back(&entry);
    }
    return parts;
}

std::string due_link(std::string_view relative_path, const ExpectedOutputs& expected)
{
    const std::string path(relative_path);
    if (expected.output_folder == nullptr || expected.scanned_directory == nullptr) {
        return path;
    }
    const std::string joined = std::string(expected.scanned_directory) + "/" + path;
    const std::string link = naive_relative_link(expected.output_folder, joined);
    return joined.size() < LONG_PATH && link.size() < LONG_PATH ? link : path;
}

std::string due_name(std::string_view path)
{
    const std::size_t dot = path.rfind('.');
    const std::string_view ending = dot == path.npos ? "" : path.substr(dot);
    const bool is_dropped = ending == ".html" || ending == ".htm";
    return std::string(path.substr(0, std::min<std::size_t>(is_dropped ? dot : path.size(), 4095)));
}

std::string joined_names(const Names& names, std::uint64_t count)
{
    std::string joined;
    for (std::uint64_t i = 0; i < count; ++i) {
        joined += (i > 0 ? ", " : "") + std::string(names[i]);
    }
    return joined;
}

void judge_cells(const std::vector<std::string>& cells, const ReportEntry& entry)
{
    const bool errored = entry.kind == ReportKind::RunError;
    require(cells.size() == (errored ? 4 : 5), "the number of cells");
    require(cells[1] == due_name(entry.relative_path), "the name that is shown");
    if (errored) {
        require(entry.error[0] == '\0' || cells[3] == entry.error, "the reason");
        return;
    }
    const std::string_view mode = entry.analysis_mode;
    const bool has_sub_mode = !mode.empty() && entry.analysis_mode_sub[0] != '\0';
    require(mode.empty() || cells[2].starts_with(mode), "the mode");
    require(mode.empty() || has_sub_mode || cells[2] == mode, "no sub-mode");
    require(!has_sub_mode || cells[2].ends_with(entry.analysis_mode_sub), "the sub-mode");

    const std::string failed = joined_names(entry.failed_checks, entry.failed_check_count);
    const std::string others = joined_names(entry.non_gating_checks, entry.non_gating_check_count);
    require(cells[4].starts_with(failed), "the failed checks come first");
    require(cells[4].ends_with(others), "the non-gating checks come last");
    require(entry.failed_check_count == 0 || entry.non_gating_check_count > 0 || cells[4] == failed,
            "the failed checks alone");
}

// Rows of all tables are numbered on; number is that of the row before.
void judge_table(const PageTable& table, Rows due, std::size_t& number,
                 const ExpectedOutputs& expected)
{
    std::sort(due.begin(), due.end(), [](const ReportEntry* first, const ReportEntry* second) {
        return std::string_view(first->relative_path) < second->relative_path;
    });
    require(table.rows.size() == due.size(), "the number of rows");
    require(table.page_size == (due.size() > 100 ? "100" : ""), "the page size");
    require(table.has_pager == (due.size() > 100), "the pager");
    for (std::size_t i = 0; i < due.size(); ++i) {
        const PageRow& row = table.rows[i];
        require(row.cells.at(0) == std::to_string(++number), "the row's number");
        require(row.link == due_link(due[i]->relative_path, expected), "the row's link");
        judge_cells(row.cells, *due[i]);
    }
}

void judge_other_files(const PageTable& table, const Rows& due)
{
    require(table.rows.size() == due.size(), "the number of other files");
    for (std::size_t i = 0; i < due.size(); ++i) {
        const std::vector<std::string>& cells = table.rows[i].cells;
        const bool is_plain = due[i]->kind == ReportKind::NotAnalyzeReport;
        require(cells.size() == 1 && cells[0].starts_with(due[i]->relative_path), "another file");
        require(is_plain == (cells[0] == due[i]->relative_path), "the mark of an unreadable file");
    }
}

// The object may hold other keys, too.
void require_keys(const Json& object, const Json& due)
{
    for (const auto& [key, value] : due.items()) {
        require(object.at(key) == value, key.c_str());
    }
}

Json json_names(const Names& slots, std::uint64_t count)
{
    Json names = Json::array();
    for (std::uint64_t i = 0; i < count; ++i) {
        names.push_back(as_characters(slots[i]));
    }
    return names;
}

template <typename Append>
bool holds_once(std::string_view page, const Append& append)
{
    TextBuffer buffer;
    text_buffer_init(buffer);
    require(append(buffer), "memory for what the page holds");
    const std::string_view text(buffer.data, buffer.length);
    const std::size_t at = page.find(text);
    const bool once = at != page.npos && page.find(text, at + 1) == page.npos;
    text_buffer_free(buffer);
    return once;
}

} // namespace

void judge_page(std::string_view page, const ExpectedOutputs& expected)
{
    const Parts parts = part(expected.entries);
    const std::size_t body = page.find("<body>");
    const std::size_t scripts = page.find("<script>");
    require(body < scripts && scripts < page.size(), "a body that ends in scripts");
    const std::string_view shown = page.substr(body + 6, scripts - body - 6);
    require(holds_once(shown,
                       [&](TextBuffer& buffer) {
                           return append_kpi_grid(buffer, parts.reports.size(), parts.passed.size(),
                                                  parts.failed.size(), parts.errored.size(),
                                                  parts.others.size());
                       }),
            "the grid of these counts");
    require(holds_once(shown,
                       [&](TextBuffer& buffer) {
                           return text_buffer_append(buffer, ">") &&
                                  html_append_escaped_path(buffer, expected.input_dir) &&
                                  text_buffer_append(buffer, "</span>\n</div>\n</div>\n");
                       }),
            "the directory");
    require(shown.find(expected.generated) != shown.npos, "the time");

    const std::vector<PageTable> tables = read_tables(shown);
    std::vector<Rows> due;
    for (const Rows& rows : {parts.errored, parts.failed}) {
        if (!rows.empty()) {
            due.push_back(rows);
        }
    }
    due.push_back(parts.passed);
    const std::size_t others = parts.others.empty() ? 0 : 1;
    require(tables.size() == due.size() + others, "the number of tables");
    std::size_t number = 0;
    for (std::size_t i = 0; i < due.size(); ++i) {
        judge_table(tables[i], due[i], number, expected);
    }
    if (others > 0) {
        judge_other_files(tables.back(), parts.others);
    }
}

void judge_json(std::string_view document, const ExpectedOutputs& expected)
{
    const Parts parts = part(expected.entries);
    const Json summary = read_json(document);
    require_keys(summary, {{"scanned_directory", as_characters(expected.input_dir)},
                           {"total_reports", parts.reports.size()},
                           {"passed", parts.passed.size()},
                           {"failed", parts.failed.size()},
                           {"errored", parts.errored.size()}});
    const Json& reports = summary.at("reports");
    require(reports.size() == parts.reports.size(), "the number of reports");
    for (std::size_t i = 0; i < reports.size(); ++i) {
        const ReportEntry& entry = *parts.reports[i];
        const char* verdict = entry.passed == 1 ? "PASS" : "FAIL";
        require_keys(reports[i],
                     {{"relative_path", as_characters(entry.relative_path)},
                      {"verdict", entry.kind == ReportKind::RunError ? "ERROR" : verdict},
                      {"analysis_mode", as_characters(entry.analysis_mode)},
                      {"analysis_mode_sub", as_characters(entry.analysis_mode_sub)},
                      {"failed_checks", json_names(entry.failed_checks, entry.failed_check_count)},
                      {"non_gating_checks",
                       json_names(entry.non_gating_checks, entry.non_gating_check_count)},
                      {"error", as_characters(entry.error)}});
    }
    const Json& files = summary.at("other_files");
    require(files.size() == parts.others.size(), "the number of other files");
    for (std::size_t i = 0; i < files.size(); ++i) {
        const bool unreadable = parts.others[i]->kind == ReportKind::Unreadable;
        require_keys(files[i], {{"relative_path", as_characters(parts.others[i]->relative_path)},
                                {"reason", unreadable ? "unreadable" : "not_analyze_report"}});
    }
}
