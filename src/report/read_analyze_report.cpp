#include "report/read_analyze_report.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "core/files.h"
#include "report/html_entities.h"

namespace {

// The byte sequences that the analyzer writes and this reader looks for, each with a NUL
// behind it.
constexpr std::string_view VERDICT_LABEL = R"(<div class="k">Overall Verdict</div>)";
constexpr std::string_view VALUE_START = R"(<div class="v">)";
constexpr std::string_view VALUE_END = "</div>";
constexpr std::string_view PASS_WORD = "PASS";
constexpr std::string_view ERROR_WORD = "ERROR";
constexpr std::string_view RUN_ERROR_START = R"(<p class="run-error">)";
constexpr std::string_view RUN_ERROR_END = "</p>";
constexpr std::string_view TAB_BAR_START = R"(<nav class="nav-tabs">)";
constexpr std::string_view TAB_BAR_END = "</nav>";
constexpr std::string_view TAB_START = "<a ";
constexpr std::string_view TAB_END = "</a>";
constexpr std::string_view FAILED_MARK = " data-fail";
constexpr std::string_view NON_GATING_MARK = " data-nongating";
constexpr std::string_view MODE_LABEL = R"(<div class="k">Analysis Mode</div>)"
                                        "\n";
constexpr std::string_view SUB_MODE_START = R"(<div class="kpi-sub">)";

bool starts_with(const char* text, std::string_view marker)
{
    return std::strncmp(text, marker.data(), marker.size()) == 0;
}

// The verdict label in text, or null. A page that is no report is searched to its
// end, so this search counts: looking for the one byte that HTML, plots and plain
// data rarely hold, many bytes at a step, beats looking for the whole label.
const char* find_verdict_label(const char* text)
{
    constexpr char RARE = 'O';
    constexpr std::size_t RARE_OFFSET = VERDICT_LABEL.find(RARE);
    static_assert(RARE_OFFSET < VERDICT_LABEL.size());

    for (const char* at = std::strchr(text, RARE); at != nullptr; at = std::strchr(at + 1, RARE)) {
        if (static_cast<std::size_t>(at - text) >= RARE_OFFSET &&
            starts_with(at - RARE_OFFSET, VERDICT_LABEL)) {
            return at - RARE_OFFSET;
        }
    }
    return nullptr;
}

// The byte behind the first marker in text, or null. The document's NUL bounds
// the search, so its length need not be known.
const char* find_behind(const char* text, std::string_view marker)
{
    const char* found = std::strstr(text, marker.data());
    return found != nullptr ? found + marker.size() : nullptr;
}

// Stores text, cut to what fits, exactly as the report spells it.
void store(char (&field)[REPORT_TEXT_SIZE], std::string_view text)
{
    const std::size_t length = std::min<std::size_t>(text.size(), REPORT_TEXT_SIZE - 1);
    std::memcpy(field, text.data(), length);
    field[length] = '\0';
}

void init_entry(ReportEntry& entry, const char* relative_path)
{
    entry.relative_path = relative_path;
    entry.kind = ReportKind::Unreadable;
    entry.passed = 0;
    entry.analysis_mode[0] = '\0';
    entry.analysis_mode_sub[0] = '\0';
    entry.error[0] = '\0';
    entry.failed_check_count = 0;
    entry.non_gating_check_count = 0;
}

void read_run_error(const char* document, ReportEntry& entry)
{
    const char* text = find_behind(document, RUN_ERROR_START);
    const char* end = text != nullptr ? std::strstr(text, RUN_ERROR_END.data()) : nullptr;
    if (end != nullptr) {
        html_copy_decoded(entry.error, text, end, REPORT_ERROR_SIZE - 1);
    }
}

// The tab bar from its start tag up to, not including, its end tag; empty when there
// is none or it never ends.
std::string_view find_tab_bar(const char* document)
{
    const char* start = std::strstr(document, TAB_BAR_START.data());
    const char* end = start != nullptr ? std::strstr(start, TAB_BAR_END.data()) : nullptr;
    return end != nullptr ? std::string_view(start, end) : std::string_view();
}

struct Tab
{
    std::string_view opening_tag; // from "<a " up to, not including, the first ">"
    std::string_view name;
};

// Takes the next tab off the front of rest. Everything is searched for from where
// the last search ended, so that no text is scanned twice.
// False: there is no further whole tab.
bool take_tab(std::string_view& rest, Tab& tab)
{
    const std::size_t start = rest.find(TAB_START);
    if (start == std::string_view::npos) {
        return false;
    }
    const std::size_t tag_end = rest.find('>', start);
    if (tag_end == std::string_view::npos) {
        return false;
    }
    const std::size_t name_end = rest.find(TAB_END, tag_end + 1);
    if (name_end == std::string_view::npos) {
        return false;
    }
    const char* text = rest.data();
    tab.opening_tag = {text + start, text + tag_end};
    tab.name = {text + tag_end + 1, text + name_end};
    rest.remove_prefix(name_end + TAB_END.size());
    return true;
}

bool has_mark(const Tab& tab, std::string_view mark)
{
    return tab.opening_tag.find(mark) != std::string_view::npos;
}

// Stops when either list is full, even if the other has room, so that no failing tab is
// left out between two that are listed.
void read_check_tabs(const char* document, ReportEntry& entry)
{
    std::string_view rest = find_tab_bar(document);
    Tab tab = {};
    while (entry.failed_check_count < REPORT_MAX_CHECKS &&
           entry.non_gating_check_count < REPORT_MAX_CHECKS && take_tab(rest, tab)) {
        if (!has_mark(tab, FAILED_MARK)) {
            continue;
        }
        if (has_mark(tab, NON_GATING_MARK)) {
            store(entry.non_gating_checks[entry.non_gating_check_count++], tab.name);
        } else {
            store(entry.failed_checks[entry.failed_check_count++], tab.name);
        }
    }
}

// Stores the text of the element that begins at text with the given tag.
// Returns the byte behind the element, or null when there is no such element.
const char* read_value(const char* text, std::string_view tag, char (&field)[REPORT_TEXT_SIZE])
{
    if (!starts_with(text, tag)) {
        return nullptr;
    }
    const char* value = text + tag.size();
    const char* end = std::strstr(value, VALUE_END.data());
    if (end == nullptr) {
        return nullptr;
    }
    store(field, {value, end});
    return end + VALUE_END.size();
}

void read_analysis_mode(const char* document, ReportEntry& entry)
{
    const char* value = find_behind(document, MODE_LABEL);
    if (value == nullptr) {
        return;
    }
    const char* next = read_value(value, VALUE_START, entry.analysis_mode);
    if (next == nullptr) {
        return;
    }
    // One line feed may stand between the two elements, and nothing else.
    read_value(*next == '\n' ? next + 1 : next, SUB_MODE_START, entry.analysis_mode_sub);
}

// A passing verdict means that no failed check gated it, whatever the tabs say.
// Names that find no room among the non-gating ones are dropped.
void file_all_checks_as_non_gating(ReportEntry& entry)
{
    for (std::uint64_t i = 0;
         i < entry.failed_check_count && entry.non_gating_check_count < REPORT_MAX_CHECKS; ++i) {
        std::memcpy(entry.non_gating_checks[entry.non_gating_check_count++], entry.failed_checks[i],
                    REPORT_TEXT_SIZE);
    }
    entry.failed_check_count = 0;
}

void scrape(const char* document, ReportEntry& entry)
{
    const char* label = find_verdict_label(document);
    if (label == nullptr) {
        entry.kind = ReportKind::NotAnalyzeReport;
        return;
    }
    const char* verdict = find_behind(label, VALUE_START);
    if (verdict != nullptr && starts_with(verdict, ERROR_WORD)) {
        entry.kind = ReportKind::RunError;
        read_run_error(document, entry);
        return;
    }
    entry.kind = ReportKind::Analyzed;
    entry.passed = verdict != nullptr && starts_with(verdict, PASS_WORD) ? 1 : 0;
    read_check_tabs(document, entry);
    read_analysis_mode(document, entry);
    if (entry.passed != 0) {
        file_all_checks_as_non_gating(entry);
    }
}

} // namespace

void read_analyze_report(const char* full_path, const char* relative_path, ReportEntry& entry,
                         ReadAhead* ahead)
{
    init_entry(entry, relative_path);
    char* document = nullptr;
    if (ahead != nullptr ? read_ahead_file(*ahead, full_path, document)
                         : read_whole_file(full_path, document)) {
        scrape(document, entry);
        std::free(document);
    }
}

void scrape_analyze_report(const char* document, const char* relative_path, ReportEntry& entry)
{
    init_entry(entry, relative_path);
    scrape(document, entry);
}
