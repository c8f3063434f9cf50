#include "report/every_sequence.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "report/document_generator.h"
#include "report/entry_comparison.h"
#include "report/guarded_text.h"
#include "report/naive_scraper.h"
#include "report/read_analyze_report.h"

namespace {

using namespace std::string_view_literals;

constexpr char RELATIVE_PATH[] = "runs/a.html";

constexpr std::array ALL_FRAGMENTS = {
    "<div class=\"k\">Overall Verdict</div>"sv,
    "<div class=\"v\">"sv,
    "PASS"sv,
    "ERROR"sv,
    "FAIL"sv,
    "<p class=\"run-error\">"sv,
    "</p>"sv,
    "<nav class=\"nav-tabs\">"sv,
    "</nav>"sv,
    "<a "sv,
    ">"sv,
    "</a>"sv,
    " data-fail"sv,
    " data-nongating"sv,
    "<div class=\"k\">Analysis Mode</div>\n"sv,
    "<div class=\"kpi-sub\">"sv,
    "</div>"sv,
    "\n"sv,
    "&amp;"sv,
    "x"sv,
};

// "<a" and "</a" become tags only together with what follows them.
constexpr std::array TAB_FRAGMENTS = {
    "<a "sv,
    "<a"sv,
    ">"sv,
    "</a>"sv,
    "</a"sv,
    " data-fail"sv,
    " data-nongating"sv,
    "</nav>"sv,
    "<nav class=\"nav-tabs\">"sv,
    "x"sv,
};

constexpr std::array MODE_FRAGMENTS = {
    "<div class=\"k\">Analysis Mode</div>\n"sv,
    "<div class=\"v\">"sv,
    "<div class=\"kpi-sub\">"sv,
    "</div>"sv,
    "</div"sv,
    "\n"sv,
    "\r"sv,
    "x"sv,
};

constexpr std::array ERROR_FRAGMENTS = {
    "<p class=\"run-error\">"sv,
    "</p>"sv,
    "&"sv,
    "amp;"sv,
    "&lt;"sv,
    "&#39;"sv,
    "&quot"sv,
    ";"sv,
    "x"sv,
};

struct Search
{
    const Scope& scope;
    int length;
    Share share;
    SequenceTally& tally;
    GuardedText memory;
    unsigned subtrees = 0;
    std::string text = {}; // the document once more, for the naive scraper
    ReportEntry entry = {};
};

// The subtrees below sequences of so many fragments are dealt out to the shares; the
// first share gets what is shorter.
constexpr int SPLIT_LENGTH = 2;

void count(SequenceTally& tally, const NaiveEntry& entry)
{
    const bool analyzed = entry.kind == ReportKind::Analyzed;
    tally.documents += 1;
    tally.passed += entry.passed;
    tally.failed += analyzed && !entry.passed;
    tally.errored += entry.kind == ReportKind::RunError;
    tally.not_reports += entry.kind == ReportKind::NotAnalyzeReport;
    tally.modes += !entry.analysis_mode.empty();
    tally.sub_modes += !entry.analysis_mode_sub.empty();
    tally.gating += !entry.failed_checks.empty();
    tally.non_gating += !entry.non_gating_checks.empty();
    tally.error_texts += !entry.error.empty();
}

void note_difference(const Search& search, const NaiveEntry& naive)
{
    SequenceTally& tally = search.tally;
    tally.differences += 1;
    if (tally.differences == 1) {
        std::snprintf(tally.first_difference, sizeof tally.first_difference, "%s:\n%s\n%s",
                      std::string(search.scope.name).c_str(), printable(search.text).c_str(),
                      differences(search.entry, naive).c_str());
    }
}

void judge(Search& search, char* sequence)
{
    const std::string_view before = search.scope.before;
    char* document = sequence - before.size();
    std::memcpy(document, before.data(), before.size());
    search.text.assign(document, search.memory.nul());
    const NaiveEntry naive = naive_scrape(search.text);

    std::memset(&search.entry, OLD_BYTE, sizeof search.entry);
    scrape_analyze_report(document, RELATIVE_PATH, search.entry);
    count(search.tally, naive);
    if (!agree(search.entry, naive) || search.entry.relative_path != RELATIVE_PATH) {
        note_difference(search, naive);
    }
}

// Judges the sequence of so many fragments that stands at text, and all that end in
// it. Building them from the end keeps their NUL beside the guard.
void judge_all(Search& search, char* text, int fragments)
{
    if (fragments == SPLIT_LENGTH && search.subtrees++ % search.share.count != search.share.index) {
        return;
    }
    if (fragments >= SPLIT_LENGTH || search.share.index == 0) {
        judge(search, text);
    }
    if (fragments == search.length) {
        return;
    }
    for (const std::string_view fragment : search.scope.fragments) {
        char* longer = text - fragment.size();
        std::memcpy(longer, fragment.data(), fragment.size());
        judge_all(search, longer, fragments + 1);
    }
}

std::uint64_t power(std::uint64_t base, int exponent)
{
    return exponent == 0 ? 1 : base * power(base, exponent - 1);
}

} // namespace

const std::array<Scope, 5> SCOPES = {{
    {"all fragments", "", ALL_FRAGMENTS, "", 0},
    {"a failed report's tab bar",
     "<div class=\"k\">Overall Verdict</div><div class=\"v\">FAIL<nav class=\"nav-tabs\">",
     TAB_FRAGMENTS, "</nav>", 2},
    {"a passed report's tab bar",
     "<div class=\"k\">Overall Verdict</div><div class=\"v\">PASS<nav class=\"nav-tabs\">",
     TAB_FRAGMENTS, "</nav>", 2},
    {"a report's mode figure",
     "<div class=\"k\">Overall Verdict</div><div class=\"k\">Analysis Mode</div>\n", MODE_FRAGMENTS,
     "", 2},
    {"an errored report's paragraph",
     "<div class=\"k\">Overall Verdict</div><div class=\"v\">ERROR", ERROR_FRAGMENTS, "</p>", 2},
}};

void judge_sequences(const Scope& scope, int length, Share share, SequenceTally& tally)
{
    constexpr std::size_t LONGEST_FRAGMENT = 64;
    tally = {};
    Search search = {scope, length, share, tally,
                     GuardedText(scope.before.size() + scope.after.size() +
                                 static_cast<std::size_t>(length) * LONGEST_FRAGMENT)};
    char* after = search.memory.nul() - scope.after.size();
    std::memcpy(after, scope.after.data(), scope.after.size());
    judge_all(search, after, 0);
}

void add_tally(SequenceTally& sum, const SequenceTally& part)
{
    sum.documents += part.documents;
    sum.passed += part.passed;
    sum.failed += part.failed;
    sum.errored += part.errored;
    sum.not_reports += part.not_reports;
    sum.modes += part.modes;
    sum.sub_modes += part.sub_modes;
    sum.gating += part.gating;
    sum.non_gating += part.non_gating;
    sum.error_texts += part.error_texts;
    if (sum.differences == 0) {
        std::memcpy(sum.first_difference, part.first_difference, sizeof sum.first_difference);
    }
    sum.differences += part.differences;
}

std::uint64_t count_sequences(std::uint64_t fragments, int length)
{
    std::uint64_t sequences = 0;
    for (int exact = 0; exact <= length; ++exact) {
        sequences += power(fragments, exact);
    }
    return sequences;
}

std::uint64_t count_not_reports(int length)
{
    return count_sequences(ALL_FRAGMENTS.size() - 1, length);
}

// So many fragments before the first label, so many between it and the value that
// counts, and the rest of them behind the word.
std::uint64_t count_with_verdict(int length)
{
    constexpr std::uint64_t ANY = ALL_FRAGMENTS.size();
    std::uint64_t sequences = 0;
    for (int before = 0; before + 3 <= length; ++before) {
        for (int between = 0; before + between + 3 <= length; ++between) {
            sequences += power(ANY - 1, before) * power(ANY - 1, between) *
                         count_sequences(ANY, length - before - between - 3);
        }
    }
    return sequences;
}
