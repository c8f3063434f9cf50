// Micro-benchmarks of the pieces that a run spends its own time in.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "core/paths.h"
#include "core/text_buffer.h"
#include "report/html_escape.h"
#include "report/read_analyze_report.h"
#include "summary/json_summary.h"
#include "summary/report_tables.h"

namespace {

constexpr char PATH[] = "albums/late sessions/disc 2/report-001234.html";

std::string make_report(std::size_t size, bool is_report)
{
    std::string text = "<!doctype html>\n<style>.kpi { border: 1px solid }</style>\n";
    if (is_report) {
        text += "<div class=\"k\">Overall Verdict</div>\n<div class=\"v\">FAIL</div>\n"
                "<div class=\"k\">Analysis Mode</div>\n<div class=\"v\">Comparison</div>\n"
                "<div class=\"kpi-sub\">48 kHz</div>\n<nav class=\"nav-tabs\">\n";
        for (int i = 0; i < 10; ++i) {
            text += i % 3 == 0 ? "<a href=\"#x\" data-fail>Loudness</a>\n"
                               : "<a href=\"#x\">Dropouts</a>\n";
        }
        text += "</nav>\n";
    }
    while (text.size() < size) {
        text += "<svg><path d=\"M0,100 L10,20 L20,30\"/></svg><div class=\"tile\"><a href=\"#t\">"
                "Band</a></div>{\"points\":[1,2,3]}\n";
    }
    return text;
}

void read_text(benchmark::State& state, bool is_report)
{
    const std::string text = make_report(static_cast<std::size_t>(state.range(0)), is_report);
    ReportEntry entry;
    for (auto unused : state) {
        scrape_analyze_report(text.c_str(), PATH, entry);
        benchmark::DoNotOptimize(entry);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

void read_report(benchmark::State& state)
{
    read_text(state, true);
}

// No label anywhere: the whole text is searched.
void search_other_page(benchmark::State& state)
{
    read_text(state, false);
}

void escape(benchmark::State& state, bool (*append)(TextBuffer&, std::string_view))
{
    TextBuffer buffer;
    text_buffer_init(buffer);
    for (auto unused : state) {
        buffer.length = 0;
        if (!append(buffer, PATH)) {
            std::abort();
        }
        benchmark::DoNotOptimize(buffer.data);
    }
    text_buffer_free(buffer);
}

void escape_text(benchmark::State& state)
{
    escape(state, html_append_escaped);
}

void escape_path(benchmark::State& state)
{
    escape(state, html_append_escaped_path);
}

void escape_json(benchmark::State& state)
{
    escape(state, json_append_escaped);
}

void relative_path(benchmark::State& state)
{
    const std::string to = std::string("/srv/bench/reports/") + PATH;
    char link[LONG_PATH_BUFFER_SIZE];
    for (auto unused : state) {
        if (!make_relative_path("/srv/bench/out", to, link, sizeof link)) {
            std::abort();
        }
        benchmark::DoNotOptimize(link);
    }
}

// A suite of passed and failed reports in random-looking order.
class Suite
{
public:
    explicit Suite(std::size_t count) : paths_(count), entries_(count)
    {
        const std::string text = make_report(0, true);
        for (std::size_t i = 0; i < count; ++i) {
            paths_[i] = "session-" + std::to_string(i * 7919 % count) + "/report.html";
            scrape_analyze_report(text.c_str(), paths_[i].c_str(), entries_[i]);
            entries_[i].passed = i % 5 != 0 ? 1 : 0;
        }
    }

    SummaryModel model() const
    {
        return {"/tmp", entries_.data(), entries_.size(), "0"};
    }

private:
    std::vector<std::string> paths_;
    std::vector<ReportEntry> entries_;
};

void page_rows(benchmark::State& state)
{
    const Suite suite(static_cast<std::size_t>(state.range(0)));
    const SummaryModel model = suite.model();
    const SummaryTally tally = tally_entries(model.entries, model.count);
    for (auto unused : state) {
        TextBuffer buffer;
        text_buffer_init(buffer);
        if (!append_results_section(buffer, model, "/tmp/summary.html", tally.failed, tally.passed,
                                    tally.errored)) {
            std::abort();
        }
        text_buffer_free(buffer);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

void json_rows(benchmark::State& state)
{
    const Suite suite(static_cast<std::size_t>(state.range(0)));
    const SummaryModel model = suite.model();
    for (auto unused : state) {
        if (!write_json_summary("/dev/null", model)) {
            std::abort();
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

BENCHMARK(read_report)->Arg(12000)->Arg(60000)->Arg(2000000);
BENCHMARK(search_other_page)->Arg(12000)->Arg(60000)->Arg(2000000);
BENCHMARK(escape_text);
BENCHMARK(escape_path);
BENCHMARK(escape_json);
BENCHMARK(relative_path);
BENCHMARK(page_rows)->Arg(1000)->Arg(100000);
BENCHMARK(json_rows)->Arg(1000)->Arg(100000);

} // namespace

BENCHMARK_MAIN();
