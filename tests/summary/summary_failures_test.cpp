// Memory that runs out and files that cannot be written, for the page and the
// JSON summary alike.

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/json_summary.h"
#include "summary/page_model.h"
#include "summary/report_tables.h"
#include "summary/summary_page.h"
#include "support/call_faults.h"
#include "support/process.h"
#include "support/temp_folder.h"

namespace {

using WriteSummary = bool (*)(const char*, const SummaryModel&);
using Append = std::function<bool(TextBuffer&)>;

const std::vector<WriteSummary> WRITERS = {write_summary_page, write_json_summary};

// One entry of each kind, with texts that are to be escaped.
std::vector<ReportEntry> one_of_each_kind()
{
    ReportEntry passed = passed_report("a & b/passed.html");
    ReportEntry failed = failed_report("a & b/failed.html");
    for (ReportEntry* entry : {&passed, &failed}) {
        set_modes(*entry, "Mode <X>", "Variant 1");
        set_non_gating_checks(*entry, {"Check C", "Check \"D\""});
    }
    set_failed_checks(failed, {"Check A", "Check & B"});
    return {errored_report("a & b/errored.html", "Input \"take 2.wav\" could not be opened\n"),
            unreadable_file("a & b/unreadable.html"), unrelated_file("a & b/unrelated.html"),
            passed, failed};
}

// Fails each allocation of a run of the writer in turn. Counts those that failed.
std::uint64_t fail_each_allocation(WriteSummary write, const SummaryModel& model, Length length)
{
    const TempFolder folder;
    const std::string file = folder.path("out");
    folder.write("out", "older file");
    for (std::uint64_t number = 1;; ++number) {
        const AllocationFault fault(number, length);
        const bool written = write(file.c_str(), model);
        EXPECT_EQ(written, fault.failures() == 0);
        if (fault.failures() == 0) {
            return number - 1;
        }
        EXPECT_EQ(folder.read("out"), "older file") << "allocation " << number;
        EXPECT_EQ(folder.names(), std::vector<std::string>{"out"});
    }
}

std::size_t capacity_for(std::size_t length)
{
    std::size_t capacity = TEXT_BUFFER_FIRST_CAPACITY;
    while (capacity < length + 1) {
        capacity *= 2;
    }
    return capacity;
}

// Lets the buffer of a piece run out of room at each of its bytes in turn: it must give
// false and have appended a part of its text at most. Of a long piece only every
// `step`-th byte is taken, counted from its end.
void expect_false_at_every_byte(const Append& append, std::size_t step = 1)
{
    const StoppedClock clock;
    const std::string text = appended(append);
    const std::size_t capacity = capacity_for(2 * text.size());
    for (std::size_t room = text.size() % step; room <= text.size(); room += step) {
        AppendedText cut;
        const std::size_t start = capacity - 1 - room;
        ASSERT_TRUE(text_buffer_append(cut.buffer, std::string(start, '.')));
        const CallFault growth(realloc_call, 1, nullptr, ENOMEM);
        ASSERT_EQ(append(cut.buffer), room == text.size()) << "room for " << room;
        const std::string part = cut.text().substr(start);
        ASSERT_LE(part.size(), room);
        ASSERT_EQ(part, text.substr(0, part.size()));
    }
}

} // namespace

TEST(SummaryFailures, EachAllocationThatFailsLeavesAnOlderFileAsItWas)
{
    const std::vector<std::string> paths = numbered_paths("albums/2024 & older/", 600);
    const std::vector<ReportEntry> entries =
        together(one_of_each_kind(), entries_of(paths, failed_report));
    for (const WriteSummary write : WRITERS) {
        for (const auto length : {Length::Once, Length::FromThenOn}) {
            EXPECT_GE(fail_each_allocation(write, model_of(entries), length), 5U);
            EXPECT_GE(fail_each_allocation(write, model_of({}), length), 1U);
        }
    }
}

TEST(SummaryFailures, EachPieceGivesFalseAtWhicheverByteMemoryRunsOut)
{
    const std::vector<ReportEntry> entries = one_of_each_kind();
    const SummaryModel model = model_of(entries, "no such folder");
    const std::string bytes = all_bytes();
    const ResultsLinkContext context = {};
    const std::vector<Append> pieces = {
        [](TextBuffer& buffer) { return append_kpi_grid(buffer, 600, 500, 60, 40, 7); },
        [](TextBuffer& buffer) { return append_kpi_grid(buffer, 600, 540, 60, 0, 7); },
        [&](TextBuffer& buffer) { return append_page_footer(buffer, model); },
        [&](TextBuffer& buffer) {
            return append_results_section(buffer, model, "summary.html", 1, 1, 1);
        },
        [&](TextBuffer& buffer) {
            std::uint64_t counter = 0;
            return append_report_table(buffer, nullptr, 0, 1, context, counter);
        },
        [&](TextBuffer& buffer) { return append_other_files_section(buffer, model, 2); },
        [&](TextBuffer& buffer) {
            return json_append_string_array(buffer, entries[4].non_gating_checks, 2);
        },
        [&](TextBuffer& buffer) { return json_append_escaped(buffer, bytes); },
    };
    for (const Append& piece : pieces) {
        SCOPED_TRACE(&piece - pieces.data());
        expect_false_at_every_byte(piece);
    }
}

TEST(SummaryFailures, PagedResultsSectionGivesFalseWhereverMemoryRunsOut)
{
    const std::vector<std::string> paths = numbered_paths("", 101);
    for (const MakeEntry make : {MakeEntry{errored_report}, MakeEntry{passed_report}}) {
        const std::vector<ReportEntry> entries = entries_of(paths, make);
        const SummaryTally tally = tally_entries(entries.data(), entries.size());
        expect_false_at_every_byte(
            [&](TextBuffer& buffer) {
                return append_results_section(buffer, model_of(entries, "no such folder"),
                                              "summary.html", 0, tally.passed, tally.errored);
            },
            11);
    }
}

TEST(SummaryFailures, FullDeviceGivesFalseAndTheNullDeviceTakesEverything)
{
    for (const WriteSummary write : WRITERS) {
        EXPECT_FALSE(write("/dev/full", model_of({})));
        EXPECT_TRUE(write("/dev/null", model_of({})));
    }
}

TEST(SummaryFailures, OutputInAFolderThatDoesNotExistOrIsNoFileGivesFalseAndNoFile)
{
    const TempFolder folder;
    folder.write("file", "older file");
    for (const WriteSummary write : WRITERS) {
        EXPECT_FALSE(write(folder.path("missing/out").c_str(), model_of({})));
        EXPECT_FALSE(write(folder.path("file/out").c_str(), model_of({})));
        EXPECT_FALSE(write(folder.path().c_str(), model_of({})));
        EXPECT_FALSE(write("", model_of({})));
    }
    EXPECT_EQ(folder.names(), std::vector<std::string>{"file"});
    EXPECT_EQ(folder.read("file"), "older file");
}

TEST(SummaryFailures, OutputThatMayNotBeWrittenGivesFalseAndStaysAsItWas)
{
    const TempFolder folder;
    folder.write("closed/older", "older file");
    folder.chmod("closed/older", 0444);
    folder.chmod("closed", 0555);
    for (const WriteSummary write : WRITERS) {
        for (const std::string& path : {folder.path("closed/older"), folder.path("closed/new")}) {
            EXPECT_EQ(run_unprivileged([&] { return write(path.c_str(), model_of({})) ? 1 : 0; }),
                      0);
        }
    }
    EXPECT_EQ(folder.read("closed/older"), "older file");
    EXPECT_FALSE(folder.exists("closed/new"));
}
