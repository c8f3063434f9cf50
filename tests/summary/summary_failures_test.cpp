// Memory that runs out and files that cannot be written, for the page and the
// JSON summary alike.

#include <algorithm>
#include <csignal>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>

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

// Documents of the same run taken at different times.
std::string without_digits(std::string text)
{
    for (char& byte : text) {
        byte = byte >= '0' && byte <= '9' ? '0' : byte;
    }
    return text;
}

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
std::uint64_t fail_each_allocation(WriteSummary write, const SummaryModel& model,
                                   AllocationFault::Length length)
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

// Makes one text of the model so long that the buffer grows at a chosen byte of the
// text's end or behind it, and lets each allocation of the run fail in turn. The
// bytes are taken `step` apart, up to the end of the document or `span` of them.
void fail_growth_from_a_text_on(WriteSummary write, const char* SummaryModel::*text,
                                std::size_t step, std::size_t span)
{
    constexpr std::size_t END_OF_TEXT = 20;
    const std::vector<ReportEntry> entries = one_of_each_kind();
    SummaryModel model = model_of(entries, "no such folder");
    model.*text = "@@@";
    const TempFolder folder;
    ASSERT_TRUE(write(folder.path("out").c_str(), model));
    const std::string document = folder.read("out");
    const std::size_t start = document.find("@@@");
    const std::size_t last = END_OF_TEXT + std::min(document.size() - start - 3, span);
    const std::size_t capacity = capacity_for(document.size());
    for (std::size_t at = 0; at < last; at += step) {
        const std::string filling(capacity - 1 - start + END_OF_TEXT - at, 'd');
        model.*text = filling.c_str();
        const std::uint64_t before = allocation_count();
        ASSERT_TRUE(write("/dev/null", model));
        const std::uint64_t allocations = allocation_count() - before;
        for (std::uint64_t number = 1; number <= allocations; ++number) {
            const AllocationFault fault(number, Length::Once);
            ASSERT_FALSE(write("/dev/null", model)) << "text of " << filling.size();
        }
    }
}

// Lets a piece run out of memory at each of its bytes in turn: it must give false
// and have appended a part of its text at most. What it allocates besides the text
// succeeds. Of a long piece only every `step`-th byte is taken, counted from its end.
void expect_false_at_every_byte(const Append& append, std::size_t step = 1)
{
    const std::string text = without_digits(appended(append));
    const std::size_t capacity = capacity_for(2 * text.size());
    std::uint64_t own_allocations = 0;
    for (std::size_t room = text.size() % step; room <= text.size(); room += step) {
        AppendedText cut;
        const std::size_t start = capacity - 1 - room;
        ASSERT_TRUE(text_buffer_append(cut.buffer, std::string(start, '.')));
        if (room == text.size() % step) {
            AppendedText roomy;
            ASSERT_TRUE(text_buffer_append(roomy.buffer, std::string(capacity / 2, '.')));
            const std::uint64_t before = allocation_count();
            ASSERT_TRUE(append(roomy.buffer));
            own_allocations = allocation_count() - before;
        }
        const AllocationFault fault(own_allocations + 1, Length::Once);
        ASSERT_EQ(append(cut.buffer), room == text.size()) << "room for " << room;
        const std::string part = without_digits(cut.text().substr(start));
        ASSERT_LE(part.size(), room);
        ASSERT_EQ(part, text.substr(0, part.size()));
    }
}

void allow_files_of_100_bytes()
{
    const rlimit limit = {100, 100};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
}

} // namespace

TEST(SummaryFailures, EachAllocationThatFailsLeavesAnOlderFileAsItWas)
{
    const std::vector<std::string> paths = numbered_paths("albums/2024 & older/", 600);
    const std::vector<ReportEntry> entries =
        together(one_of_each_kind(), entries_of(paths, failed_report));
    for (const WriteSummary write : WRITERS) {
        for (const auto length :
             {Length::Once, Length::FromThenOn}) {
            EXPECT_GE(fail_each_allocation(write, model_of(entries), length), 5U);
            EXPECT_GE(fail_each_allocation(write, model_of({}), length), 1U);
        }
    }
}

// No piece that the page itself appends is shorter than 7 bytes; its sections are
// looked at byte by byte below.
TEST(SummaryFailures, PageIsAbandonedWhereverMemoryRunsOut)
{
    fail_growth_from_a_text_on(write_summary_page, &SummaryModel::version, 7, 1500);
    fail_growth_from_a_text_on(write_summary_page, &SummaryModel::input_dir, 7, 1000000);
}

TEST(SummaryFailures, JsonIsAbandonedAtWhicheverByteMemoryRunsOut)
{
    fail_growth_from_a_text_on(write_json_summary, &SummaryModel::input_dir, 1, 1000000);
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

TEST(SummaryFailures, ResultsSectionAppendsNothingWhenItsSortedViewCannotBeAllocated)
{
    AppendedText section;
    ASSERT_TRUE(text_buffer_append(section.buffer, std::string(2000, '.')));
    const AllocationFault fault(1, Length::Once);
    EXPECT_FALSE(append_results_section(section.buffer, model_of({}), "summary.html", 0, 0, 0));
    EXPECT_EQ(section.buffer.length, 2000U);
}

TEST(SummaryFailures, AbsentOtherFilesSectionNeedsNoMemory)
{
    AppendedText section;
    const AllocationFault fault(1);
    EXPECT_TRUE(append_other_files_section(section.buffer, model_of({}), 0));
    EXPECT_EQ(fault.failures(), 0U);
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

TEST(SummaryFailures, ShortWriteGivesFalseAndLeavesWhatWasWritten)
{
    const TempFolder folder;
    folder.make_folder("open");
    folder.chmod("open", 0777);
    for (const WriteSummary write : WRITERS) {
        ASSERT_TRUE(write(folder.path("whole").c_str(), model_of({})));
        const std::string cut = folder.path("open/cut");
        EXPECT_EQ(run_unprivileged([&] {
                      allow_files_of_100_bytes();
                      return write(cut.c_str(), model_of({})) ? 1 : 0;
                  }),
                  0);
        EXPECT_EQ(folder.read("open/cut"), folder.read("whole").substr(0, 100));
    }
}
