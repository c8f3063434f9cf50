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
#include "summary/page_fragments.h"
#include "summary/page_model.h"
#include "summary/report_tables.h"
#include "summary/summary_page.h"
#include "support/allocation_faults.h"
#include "support/process.h"
#include "support/temp_folder.h"

namespace {

using WriteSummary = bool (*)(const char*, const SummaryModel&);

const std::vector<WriteSummary> WRITERS = {write_summary_page, write_json_summary};

// Documents of the same run taken at different times.
std::string without_digits(std::string text)
{
    for (char& byte : text) {
        byte = byte >= '0' && byte <= '9' ? '0' : byte;
    }
    return text;
}

// Some of everything, several hundred entries.
class ManyEntries
{
public:
    explicit ManyEntries(int count) : paths_(numbered_paths("albums/2024 & older/", count))
    {
        for (std::size_t i = 0; i < paths_.size(); ++i) {
            entries_.push_back(entry(i % 5, paths_[i].c_str()));
        }
    }

    SummaryModel model() const
    {
        return model_of(entries_, "no such folder");
    }

private:
    static ReportEntry entry(std::size_t turn, const char* path)
    {
        if (turn == 0) {
            return errored_report(path, "Input \"take 2.wav\" could not be opened\n");
        }
        if (turn == 1) {
            return unreadable_file(path);
        }
        if (turn == 2) {
            return unrelated_file(path);
        }
        ReportEntry analyzed = turn == 3 ? passed_report(path) : failed_report(path);
        set_modes(analyzed, "Mode <X>", "Variant 1");
        if (turn == 4) {
            set_failed_checks(analyzed, {"Check A", "Check & B"});
        }
        set_non_gating_checks(analyzed, {"Check C", "Check \"D\""});
        return analyzed;
    }

    std::vector<std::string> paths_;
    std::vector<ReportEntry> entries_;
};

// Fails each allocation of a run of the writer in turn. Counts those that failed.
std::uint64_t fail_each_allocation(WriteSummary write, const SummaryModel& model,
                                   AllocationFault::Length length)
{
    const TempFolder folder;
    const std::string file = folder.path("out");
    EXPECT_TRUE(write(file.c_str(), model));
    const std::string whole = without_digits(folder.read("out"));
    for (std::uint64_t number = 1;; ++number) {
        folder.write("out", "older file");
        bool written = false;
        std::uint64_t failures = 0;
        {
            const AllocationFault fault(number, length);
            written = write(file.c_str(), model);
            failures = fault.failures();
        }
        if (failures == 0) {
            EXPECT_TRUE(written);
            EXPECT_EQ(without_digits(folder.read("out")), whole);
            return number - 1;
        }
        EXPECT_FALSE(written) << "allocation " << number;
        EXPECT_EQ(folder.read("out"), "older file") << "allocation " << number;
        EXPECT_EQ(folder.names(), std::vector<std::string>{"out"});
    }
}

// Makes one text of the model so long that the buffer grows at a chosen byte of the
// text's end or behind it, and lets each allocation of the run fail in turn. The
// bytes are taken `step` apart, up to the end of the document or `span` of them.
void fail_growth_from_a_text_on(WriteSummary write, const char* SummaryModel::*text,
                                std::size_t step, std::size_t span)
{
    constexpr std::size_t END_OF_TEXT = 20;
    const ManyEntries few(5);
    const TempFolder folder;
    const std::string file = folder.path("out");
    SummaryModel model = few.model();
    model.*text = "@@@";
    ASSERT_TRUE(write(file.c_str(), model));
    const std::string document = folder.read("out");
    const std::size_t start = document.find("@@@");
    const std::size_t last = END_OF_TEXT + std::min(document.size() - start - 3, span);
    std::size_t capacity = 256;
    while (capacity < document.size() + 1) {
        capacity *= 2;
    }
    folder.write("out", "older file");
    for (std::size_t at = 0; at < last; at += step) {
        const std::string filling(capacity - 1 - start + END_OF_TEXT - at, 'd');
        model.*text = filling.c_str();
        const std::uint64_t before = allocation_count();
        ASSERT_TRUE(write("/dev/null", model));
        const std::uint64_t allocations = allocation_count() - before;
        for (std::uint64_t number = 1; number <= allocations; ++number) {
            const AllocationFault fault(number, AllocationFault::Length::Once);
            ASSERT_FALSE(write(file.c_str(), model)) << "text of " << filling.size();
            ASSERT_EQ(fault.failures(), 1U);
        }
        ASSERT_EQ(folder.read("out"), "older file");
    }
}

// Allocations of a piece that finds more room than it needs.
std::uint64_t allocations_besides_text(const std::function<bool(TextBuffer&)>& append,
                                       std::size_t capacity)
{
    AppendedText roomy;
    EXPECT_TRUE(text_buffer_append(roomy.buffer, std::string(capacity / 2, '.')));
    EXPECT_EQ(roomy.buffer.capacity, capacity);
    const std::uint64_t before = allocation_count();
    EXPECT_TRUE(append(roomy.buffer));
    return allocation_count() - before;
}

// Lets a piece run out of memory at each of its bytes in turn: it must give false
// and have appended a part of its text at most. What it allocates besides the text
// succeeds. Of a long piece only every `step`-th byte is taken, counted from its end.
void expect_false_at_every_byte(const std::function<bool(TextBuffer&)>& append,
                                std::size_t step = 1)
{
    AppendedText whole;
    ASSERT_TRUE(append(whole.buffer));
    const std::string text = without_digits(whole.text());
    std::size_t capacity = 256;
    while (capacity < 2 * text.size() + 2) {
        capacity *= 2;
    }
    const std::uint64_t own_allocations = allocations_besides_text(append, capacity);
    for (std::size_t room = text.size() % step; room <= text.size(); room += step) {
        AppendedText cut;
        const std::size_t start = capacity - 1 - room;
        ASSERT_TRUE(text_buffer_append(cut.buffer, std::string(start, '.')));
        ASSERT_EQ(cut.buffer.capacity, capacity);
        const AllocationFault fault(own_allocations + 1, AllocationFault::Length::Once);
        ASSERT_EQ(append(cut.buffer), room == text.size()) << "room for " << room;
        ASSERT_EQ(fault.failures(), room == text.size() ? 0U : 1U);
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
    const ManyEntries many(600);
    for (const WriteSummary write : WRITERS) {
        EXPECT_GE(fail_each_allocation(write, many.model(), AllocationFault::Length::Once), 5U);
        EXPECT_GE(fail_each_allocation(write, many.model(), AllocationFault::Length::FromThenOn),
                  5U);
    }
}

TEST(SummaryFailures, EachAllocationThatFailsWithoutEntriesLeavesAnOlderFileAsItWas)
{
    for (const WriteSummary write : WRITERS) {
        EXPECT_GE(fail_each_allocation(write, model_of({}), AllocationFault::Length::Once), 1U);
        EXPECT_GE(fail_each_allocation(write, model_of({}), AllocationFault::Length::FromThenOn),
                  1U);
    }
}

TEST(SummaryFailures, NoFileAppearsWhenMemoryRunsOut)
{
    const ManyEntries many(300);
    const TempFolder folder;
    for (const WriteSummary write : WRITERS) {
        for (std::uint64_t number = 1; number <= 5; ++number) {
            const AllocationFault fault(number);
            EXPECT_FALSE(write(folder.path("out").c_str(), many.model()));
        }
    }
    EXPECT_TRUE(folder.names().empty());
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

TEST(SummaryFailures, KpiGridGivesFalseAtWhicheverByteMemoryRunsOut)
{
    expect_false_at_every_byte(
        [](TextBuffer& buffer) { return append_kpi_grid(buffer, 600, 500, 60, 40, 7); });
    expect_false_at_every_byte(
        [](TextBuffer& buffer) { return append_kpi_grid(buffer, 600, 540, 60, 0, 7); });
}

TEST(SummaryFailures, FooterGivesFalseAtWhicheverByteMemoryRunsOut)
{
    expect_false_at_every_byte(
        [](TextBuffer& buffer) { return append_page_footer(buffer, model_of({})); });
}

TEST(SummaryFailures, ResultsSectionGivesFalseAtWhicheverByteMemoryRunsOut)
{
    const ManyEntries few(5);
    expect_false_at_every_byte([&few](TextBuffer& buffer) {
        return append_results_section(buffer, few.model(), "summary.html", 1, 1, 1);
    });
}

TEST(SummaryFailures, PagedResultsSectionGivesFalseWhereverMemoryRunsOut)
{
    const std::vector<std::string> paths = numbered_paths("", 101);
    std::vector<ReportEntry> errored;
    std::vector<ReportEntry> passed;
    for (const std::string& path : paths) {
        errored.push_back(errored_report(path.c_str()));
        passed.push_back(passed_report(path.c_str()));
    }
    expect_false_at_every_byte(
        [&errored](TextBuffer& buffer) {
            return append_results_section(buffer, model_of(errored, "no such folder"),
                                          "summary.html", 0, 0, 101);
        },
        11);
    expect_false_at_every_byte(
        [&passed](TextBuffer& buffer) {
            return append_results_section(buffer, model_of(passed, "no such folder"),
                                          "summary.html", 0, 101, 0);
        },
        11);
}

TEST(SummaryFailures, EmptyReportTableGivesFalseAtWhicheverByteMemoryRunsOut)
{
    ResultsLinkContext context = {};
    expect_false_at_every_byte([&context](TextBuffer& buffer) {
        std::uint64_t counter = 0;
        return append_report_table(buffer, nullptr, 0, 1, context, counter);
    });
}

TEST(SummaryFailures, ResultsSectionAppendsNothingWhenItsSortedViewCannotBeAllocated)
{
    const ManyEntries many(50);
    AppendedText section;
    ASSERT_TRUE(text_buffer_append(section.buffer, "before"));
    const AllocationFault fault(1, AllocationFault::Length::Once);
    EXPECT_FALSE(append_results_section(section.buffer, many.model(), "summary.html", 10, 10, 10));
    EXPECT_EQ(fault.failures(), 1U);
    EXPECT_EQ(section.text(), "before");
}

TEST(SummaryFailures, SortedViewIsAllocatedEvenForNoReports)
{
    AppendedText section;
    ASSERT_TRUE(text_buffer_append(section.buffer, std::string(2000, '.')));
    const AllocationFault fault(1, AllocationFault::Length::Once);
    EXPECT_FALSE(append_results_section(section.buffer, model_of({}), "summary.html", 0, 0, 0));
    EXPECT_EQ(section.buffer.length, 2000U);
}

TEST(SummaryFailures, OtherFilesSectionGivesFalseAtWhicheverByteMemoryRunsOut)
{
    const ManyEntries few(5);
    expect_false_at_every_byte(
        [&few](TextBuffer& buffer) { return append_other_files_section(buffer, few.model(), 2); });
}

TEST(SummaryFailures, AbsentOtherFilesSectionNeedsNoMemory)
{
    AppendedText section;
    const AllocationFault fault(1);
    EXPECT_TRUE(append_other_files_section(section.buffer, model_of({}), 0));
    EXPECT_EQ(fault.failures(), 0U);
}

TEST(SummaryFailures, JsonArrayAndTextGiveFalseAtWhicheverByteMemoryRunsOut)
{
    ReportEntry entry = failed_report("a.html");
    set_failed_checks(entry, {"Check A", "\x01\x02", "\n\t\"\\\xff", ""});
    expect_false_at_every_byte([&entry](TextBuffer& buffer) {
        return json_append_string_array(buffer, entry.failed_checks, 4);
    });
    expect_false_at_every_byte(
        [](TextBuffer& buffer) { return json_append_escaped(buffer, all_bytes()); });
}

TEST(SummaryFailures, FullDeviceGivesFalse)
{
    const ManyEntries many(300);
    for (const WriteSummary write : WRITERS) {
        EXPECT_FALSE(write("/dev/full", many.model()));
        EXPECT_FALSE(write("/dev/full", model_of({})));
    }
}

TEST(SummaryFailures, NullDeviceTakesEverything)
{
    for (const WriteSummary write : WRITERS) {
        EXPECT_TRUE(write("/dev/null", model_of({})));
    }
}

TEST(SummaryFailures, OutputInAFolderThatDoesNotExistGivesFalseAndNoFile)
{
    const TempFolder folder;
    folder.write("file", "older file");
    for (const WriteSummary write : WRITERS) {
        EXPECT_FALSE(write(folder.path("missing/out").c_str(), model_of({})));
        EXPECT_FALSE(write(folder.path("file/out").c_str(), model_of({})));
        EXPECT_FALSE(write("", model_of({})));
    }
    EXPECT_EQ(folder.names(), std::vector<std::string>{"file"});
    EXPECT_EQ(folder.read("file"), "older file");
}

TEST(SummaryFailures, FolderAsTargetGivesFalse)
{
    const TempFolder folder;
    folder.make_folder("out");
    for (const WriteSummary write : WRITERS) {
        EXPECT_FALSE(write(folder.path("out").c_str(), model_of({})));
        EXPECT_FALSE(write(folder.path("out/").c_str(), model_of({})));
    }
    EXPECT_EQ(folder.names(), std::vector<std::string>{"out"});
}

TEST(SummaryFailures, OutputThatMayNotBeWrittenGivesFalseAndStaysAsItWas)
{
    const TempFolder folder;
    folder.write("closed/older", "older file");
    folder.chmod("closed/older", 0444);
    folder.chmod("closed", 0555);
    const std::string older = folder.path("closed/older");
    const std::string fresh = folder.path("closed/new");
    for (const WriteSummary write : WRITERS) {
        EXPECT_EQ(run_unprivileged([&] { return write(older.c_str(), model_of({})) ? 1 : 0; }), 0);
        EXPECT_EQ(run_unprivileged([&] { return write(fresh.c_str(), model_of({})) ? 1 : 0; }), 0);
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
        const std::string whole = folder.path("whole");
        ASSERT_TRUE(write(whole.c_str(), model_of({})));
        const std::string cut = folder.path("open/cut");
        EXPECT_EQ(run_unprivileged([&] {
                      allow_files_of_100_bytes();
                      return write(cut.c_str(), model_of({})) ? 1 : 0;
                  }),
                  0);
        EXPECT_EQ(folder.read("open/cut"), folder.read("whole").substr(0, 100));
        std::filesystem::remove(cut);
    }
}
