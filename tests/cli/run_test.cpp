#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "cli/expected_texts.h"
#include "cli/run.h"
#include "cli/sample_reports.h"
#include "core/paths.h"
#include "support/allocation_faults.h"
#include "support/process.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

struct RunResult
{
    int status = -1;
    std::string output;
    std::string errors;
};

RunResult run(const std::string& input, const std::string& page, bool json)
{
    RunResult result;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    result.status = run_summary({input.c_str(), page.c_str(), json});
    result.errors = testing::internal::GetCapturedStderr();
    result.output = testing::internal::GetCapturedStdout();
    return result;
}

// A temporary folder with an input folder "in"; the page goes to "s.html" beside it.
class Run : public testing::Test
{
protected:
    void SetUp() override
    {
        temp.make_folder("in");
    }

    RunResult run_page() const
    {
        return run(temp.path("in"), temp.path("s.html"), false);
    }

    RunResult run_with_json() const
    {
        return run(temp.path("in"), temp.path("s.html"), true);
    }

    std::string wrote_page(const std::string& counts) const
    {
        return "wrote " + temp.path("s.html") + " (" + counts + ")\n";
    }

    std::string wrote_both(const std::string& counts) const
    {
        return "wrote " + temp.path("s.html") + " (" + counts + ") + json\nwrote " +
               temp.path("s.json") + "\n";
    }

    static void expect_failure(const RunResult& result, const std::string& message)
    {
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors, message);
    }

    static void expect_complete(const RunResult& result, int status, const std::string& output)
    {
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.output, output);
        EXPECT_EQ(result.errors, "");
    }

    TempFolder temp;
};

void make_fifo(const std::string& path)
{
    ASSERT_EQ(mkfifo(path.c_str(), 0644), 0);
}

} // namespace

TEST_F(Run, AnEmptyInputDirectoryGivesStatusZero)
{
    expect_complete(run_page(), 0, wrote_page("0 fathomix reports: 0 passed, 0 failed"));
    EXPECT_TRUE(temp.exists("s.html"));
    EXPECT_FALSE(temp.exists("s.json"));
}

TEST_F(Run, OnlyPassedReportsGiveStatusZero)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/b.html", passed_report());
    expect_complete(run_page(), 0, wrote_page("2 fathomix reports: 2 passed, 0 failed"));
}

TEST_F(Run, OnlyOtherHtmlFilesGiveATotalOfZeroAndStatusZero)
{
    temp.write("in/a.html", OTHER_PAGE);
    temp.write("in/b.html", "");
    expect_complete(run_page(), 0, wrote_page("0 fathomix reports: 0 passed, 0 failed"));
}

TEST_F(Run, OneFailedReportGivesStatusOne)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/b.html", failed_report());
    temp.write("in/c.html", passed_report());
    expect_complete(run_page(), 1, wrote_page("3 fathomix reports: 2 passed, 1 failed"));
}

TEST_F(Run, OneErroredReportAndOtherwisePassedReportsGiveStatusOne)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/b.html", errored_report("no input"));
    expect_complete(run_page(), 1, wrote_page("2 fathomix reports: 1 passed, 0 failed, 1 errored"));
}

TEST_F(Run, OneUnreadableFileAndOtherwisePassedReportsShowNoFailureButGiveStatusOne)
{
    temp.write("in/a.html", passed_report());
    make_fifo(temp.path("in/b.html"));
    expect_complete(run_page(), 1, wrote_page("1 fathomix reports: 1 passed, 0 failed"));
}

TEST_F(Run, EachKindAloneDecidesTheStatus)
{
    struct Case
    {
        std::string report;
        int status;
        const char* counts;
    };
    const std::vector<Case> cases = {
        {passed_report(), 0, "1 fathomix reports: 1 passed, 0 failed"},
        {failed_report(), 1, "1 fathomix reports: 0 passed, 1 failed"},
        {errored_report(""), 1, "1 fathomix reports: 0 passed, 0 failed, 1 errored"},
        {std::string(OTHER_PAGE), 0, "0 fathomix reports: 0 passed, 0 failed"},
    };
    for (const Case& one : cases) {
        temp.write("in/r.html", one.report);
        expect_complete(run_page(), one.status, wrote_page(one.counts));
        expect_complete(run_with_json(), one.status, wrote_both(one.counts));
    }
}

// Where the deciding file stands in the list must not matter.
TEST_F(Run, OneFailedReportAmongManyGivesStatusOneWhereverItStands)
{
    for (int i = 0; i < 8; ++i) {
        temp.write("in/" + std::to_string(i) + ".html", passed_report());
    }
    for (int i = 0; i < 8; ++i) {
        const std::string name = "in/" + std::to_string(i) + ".html";
        temp.write(name, failed_report());
        expect_complete(run_page(), 1, wrote_page("8 fathomix reports: 7 passed, 1 failed"));
        temp.write(name, passed_report());
    }
}

TEST_F(Run, TheClosingLinesCountEveryKind)
{
    for (int i = 0; i < 9; ++i) {
        temp.write("in/passed" + std::to_string(i) + ".html", passed_report());
    }
    temp.write("in/failed1.html", failed_report());
    temp.write("in/failed2.html", failed_report());
    temp.write("in/errored.html", errored_report("no input"));
    temp.write("in/other.html", OTHER_PAGE);
    make_fifo(temp.path("in/unreadable.html"));
    const char* const counts = "12 fathomix reports: 9 passed, 2 failed, 1 errored";
    expect_complete(run_page(), 1, wrote_page(counts));
    EXPECT_FALSE(temp.exists("s.json"));
    expect_complete(run_with_json(), 1, wrote_both(counts));
    EXPECT_TRUE(temp.exists("s.json"));
}

TEST_F(Run, MoreThanOneErroredReportIsCounted)
{
    for (int i = 0; i < 12; ++i) {
        temp.write("in/" + std::to_string(i) + ".html", errored_report("no input"));
    }
    expect_complete(run_page(), 1,
                    wrote_page("12 fathomix reports: 0 passed, 0 failed, 12 errored"));
}

TEST_F(Run, AMissingInputIsReportedAndNothingIsWritten)
{
    const std::string input = temp.path("nothing");
    expect_failure(run(input, temp.path("out/s.html"), true), input_message(input));
    EXPECT_EQ(temp.names(), Names{"in"});
}

TEST_F(Run, AnInputThatIsAFileIsReportedAndNothingIsWritten)
{
    temp.write("file.html", passed_report());
    const std::string input = temp.path("file.html");
    expect_failure(run(input, temp.path("out/s.html"), true), input_message(input));
    EXPECT_EQ(temp.names(), (Names{"file.html", "in"}));
}

TEST_F(Run, TheInputIsReportedBeforeAPageFolderThatCannotBeCreated)
{
    temp.write("file", "");
    const std::string input = temp.path("nothing");
    expect_failure(run(input, temp.path("file/sub/s.html"), false), input_message(input));
}

TEST_F(Run, APageFolderThatCannotBeCreatedIsReported)
{
    temp.write("file", "kept");
    const std::string page = temp.path("file/sub/s.html");
    expect_failure(run(temp.path("in"), page, true), folder_message(page));
    EXPECT_EQ(temp.names(), (Names{"file", "in"}));
    EXPECT_EQ(temp.read("file"), "kept");
}

TEST_F(Run, APageBelowARegularFileCannotBeWritten)
{
    temp.write("file", "kept");
    const std::string page = temp.path("file/s.html");
    expect_failure(run(temp.path("in"), page, true), write_message(page));
    EXPECT_EQ(temp.names(), (Names{"file", "in"}));
    EXPECT_EQ(temp.read("file"), "kept");
}

TEST_F(Run, APagePathThatNamesAFolderCannotBeWritten)
{
    temp.make_folder("folder");
    const std::string page = temp.path("folder");
    expect_failure(run(temp.path("in"), page, true), write_message(page));
    EXPECT_EQ(temp.names(), (Names{"folder", "in"}));
}

TEST_F(Run, APagePathWithATrailingSlashMakesTheFolderAndCannotBeWritten)
{
    const std::string page = temp.path("new/");
    expect_failure(run(temp.path("in"), page, true), write_message(page));
    EXPECT_EQ(temp.names(), (Names{"in", "new"}));
}

TEST_F(Run, AnEmptyPagePathCannotBeWritten)
{
    expect_failure(run(temp.path("in"), "", true), write_message(""));
    EXPECT_EQ(temp.names(), Names{"in"});
}

TEST_F(Run, JsonThatCannotBeWrittenIsReportedAndThePageStays)
{
    temp.write("in/a.html", passed_report());
    temp.make_folder("s.json");
    expect_failure(run_with_json(), write_message(temp.path("s.json")));
    EXPECT_TRUE(temp.read("s.html").ends_with("</html>\n"));
    EXPECT_EQ(temp.names(), (Names{"in", "in/a.html", "s.html", "s.json"}));
}

TEST_F(Run, AFailedPageLeavesTheOlderJsonFileAlone)
{
    temp.make_folder("s.html");
    temp.write("s.json", "older json");
    expect_failure(run_with_json(), write_message(temp.path("s.html")));
    EXPECT_EQ(temp.read("s.json"), "older json");
}

TEST_F(Run, AFileWithoutReadPermissionIsUnreadable)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/b.html", passed_report());
    temp.chmod("in/b.html", 0000);
    temp.chmod("", 0777);
    const int status = run_unprivileged([&] {
        const RunResult result = run_with_json();
        std::ofstream(temp.path("output")) << result.output;
        std::ofstream(temp.path("errors")) << result.errors;
        return result.status;
    });
    EXPECT_EQ(status, 1);
    EXPECT_EQ(temp.read("output"), wrote_both("1 fathomix reports: 1 passed, 0 failed"));
    EXPECT_EQ(temp.read("errors"), "");
    EXPECT_NE(
        temp.read("s.json").find("{ \"relative_path\": \"b.html\", \"reason\": \"unreadable\" }"),
        std::string::npos);
}

// ---- One file of the list ----

namespace {

// Every byte of the record set, so that what a call leaves alone can be told.
struct MarkedEntry
{
    MarkedEntry()
    {
        std::memset(&entry, 0xAB, sizeof entry);
    }

    ReportEntry entry;
};

bool all_bytes_are(const void* begin, std::size_t size, unsigned char value)
{
    const std::string_view bytes(static_cast<const char*>(begin), size);
    return bytes.find_first_not_of(static_cast<char>(value)) == std::string_view::npos;
}

void expect_cleared(const ReportEntry& entry)
{
    EXPECT_EQ(entry.passed, 0);
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_EQ(entry.non_gating_check_count, 0U);
    EXPECT_TRUE(all_bytes_are(entry.analysis_mode, sizeof entry.analysis_mode, 0));
    EXPECT_TRUE(all_bytes_are(entry.analysis_mode_sub, sizeof entry.analysis_mode_sub, 0));
    EXPECT_TRUE(all_bytes_are(entry.failed_checks, sizeof entry.failed_checks, 0));
    EXPECT_TRUE(all_bytes_are(entry.non_gating_checks, sizeof entry.non_gating_checks, 0));
    EXPECT_TRUE(all_bytes_are(entry.error, sizeof entry.error, 0));
}

} // namespace

TEST_F(Run, ReadEntryReadsTheFileBelowTheInputDirectory)
{
    temp.write("in/a/r.html", FULL_FAILED_REPORT);
    MarkedEntry marked;
    const char relative[] = "a/r.html";
    read_entry(temp.path("in").c_str(), relative, marked.entry);
    EXPECT_EQ(marked.entry.kind, ReportKind::Analyzed);
    EXPECT_EQ(marked.entry.passed, 0);
    EXPECT_STREQ(marked.entry.analysis_mode, "Mode X");
    EXPECT_EQ(marked.entry.failed_check_count, 2U);
    EXPECT_EQ(static_cast<const void*>(marked.entry.relative_path),
              static_cast<const void*>(relative));
}

TEST_F(Run, ReadEntryTakesTheInputDirectoryAsTyped)
{
    temp.write("in/r.html", passed_report());
    MarkedEntry marked;
    const std::string input = temp.path("in//./");
    read_entry(input.c_str(), "r.html", marked.entry);
    EXPECT_EQ(marked.entry.kind, ReportKind::Analyzed);
    EXPECT_EQ(marked.entry.passed, 1);
}

TEST_F(Run, ReadEntryOfAMissingFileIsUnreadable)
{
    MarkedEntry marked;
    read_entry(temp.path("in").c_str(), "gone.html", marked.entry);
    EXPECT_EQ(marked.entry.kind, ReportKind::Unreadable);
    EXPECT_EQ(marked.entry.passed, 0);
}

// The reader gets the longest path that fits (the system refuses it) and leaves
// the unused name slots alone, which is how this differs from a cleared entry.
TEST_F(Run, ReadEntryHandsAPathOf8191CharactersToTheReader)
{
    MarkedEntry marked;
    const std::string input(4096, 'i');
    const std::string relative(4094, 'r');
    read_entry(input.c_str(), relative.c_str(), marked.entry);
    EXPECT_EQ(marked.entry.kind, ReportKind::Unreadable);
    EXPECT_TRUE(all_bytes_are(marked.entry.failed_checks, sizeof marked.entry.failed_checks, 0xAB));
    EXPECT_EQ(static_cast<const void*>(marked.entry.relative_path),
              static_cast<const void*>(relative.c_str()));
}

TEST_F(Run, ReadEntryWithAnOverLongPathLeavesAClearedUnreadableEntry)
{
    for (const std::size_t length : {std::size_t{4095}, std::size_t{4096}, std::size_t{100000}}) {
        MarkedEntry marked;
        const std::string input(4096, 'i');
        const std::string relative(length, 'r');
        read_entry(input.c_str(), relative.c_str(), marked.entry);
        EXPECT_EQ(marked.entry.kind, ReportKind::Unreadable);
        EXPECT_EQ(static_cast<const void*>(marked.entry.relative_path),
                  static_cast<const void*>(relative.c_str()));
        expect_cleared(marked.entry);
    }
}

// ---- Memory that runs out, one allocation after another ----

namespace {

// Fails each allocation of a run in turn, until a run needs fewer, and lists the
// outcomes in the order in which they came, neighbours that are alike once.
class RunOutOfMemory : public Run
{
protected:
    void SetUp() override
    {
        temp.write("in/a.html", passed_report());
    }

    Names outcomes(AllocationFault::Length length)
    {
        Names seen;
        for (std::uint64_t number = 1; number < 1000; ++number) {
            temp.write("s.html", "older page");
            temp.write("s.json", "older json");
            const std::string outcome = outcome_of_failing(number, length);
            if (seen.empty() || seen.back() != outcome) {
                seen.push_back(outcome);
            }
            if (outcome == "no failure") {
                break;
            }
        }
        return seen;
    }

private:
    std::string outcome_of_failing(std::uint64_t number, AllocationFault::Length length) const
    {
        RunResult result;
        std::uint64_t failures = 0;
        const std::string input = temp.path("in");
        const std::string page = temp.path("s.html");
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        {
            const AllocationFault fault(number, length);
            result.status = run_summary({input.c_str(), page.c_str(), true});
            failures = fault.failures();
        }
        result.errors = testing::internal::GetCapturedStderr();
        result.output = testing::internal::GetCapturedStdout();
        return name_of(result, failures);
    }

    std::string name_of(const RunResult& result, std::uint64_t failures) const
    {
        const bool page_is_old = temp.read("s.html") == "older page";
        const bool json_is_old = temp.read("s.json") == "older json";
        if (failures == 0) {
            expect_complete(result, 0, wrote_both("1 fathomix reports: 1 passed, 0 failed"));
            EXPECT_FALSE(page_is_old || json_is_old);
            return "no failure";
        }
        EXPECT_EQ(result.status, 1);
        if (result.errors.empty()) {
            EXPECT_EQ(result.output, wrote_both("0 fathomix reports: 0 passed, 0 failed"));
            EXPECT_FALSE(page_is_old || json_is_old);
            return "unreadable";
        }
        EXPECT_EQ(result.output, "");
        EXPECT_TRUE(json_is_old);
        EXPECT_EQ(page_is_old, result.errors != write_message(temp.path("s.json")));
        return result.errors;
    }
};

} // namespace

TEST_F(RunOutOfMemory, FromOneAllocationOnEndsTheRunWithTheMessageOfItsStage)
{
    EXPECT_EQ(outcomes(AllocationFault::Length::FromThenOn),
              (Names{input_message(temp.path("in")), "error: out of memory\n",
                     write_message(temp.path("s.html")), write_message(temp.path("s.json")),
                     "no failure"}));
}

TEST_F(RunOutOfMemory, ForOneAllocationOnlyCostsAtMostTheFileThatIsRead)
{
    EXPECT_EQ(outcomes(AllocationFault::Length::Once),
              (Names{input_message(temp.path("in")), "error: out of memory\n", "unreadable",
                     write_message(temp.path("s.html")), write_message(temp.path("s.json")),
                     "no failure"}));
}

TEST_F(RunOutOfMemory, AnEmptyInputDirectoryNeedsNoEntries)
{
    fs::remove(temp.path("in/a.html"));
    const std::string input = temp.path("in");
    const std::string page = temp.path("s.html");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    int status = -1;
    {
        const AllocationFault fault(1);
        status = run_summary({input.c_str(), page.c_str(), false});
        EXPECT_GT(fault.failures(), 0U);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), write_message(page));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(status, 1);
    EXPECT_FALSE(temp.exists("s.html"));
}
