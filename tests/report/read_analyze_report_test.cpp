// The report reader on whole documents and on files; how it reads the single
// fragments is tested in the report_*_test.cpp files.

#include <cstring>
#include <string>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "report/read_analyze_report.h"
#include "report/scraped_report.h"
#include "support/allocation_faults.h"
#include "support/process.h"
#include "support/temp_folder.h"

using namespace std::string_literals;

namespace {

constexpr const char* TEN_LINES = "<div class=\"k\">Overall Verdict</div>\n"
                                  "<div class=\"v\">FAIL</div>\n"
                                  "<div class=\"k\">Analysis Mode</div>\n"
                                  "<div class=\"v\">Loopback</div>\n"
                                  "<div class=\"kpi-sub\">stereo, 48 kHz</div>\n"
                                  "<nav class=\"nav-tabs\">\n"
                                  "<a href=\"#one\">Level</a>\n"
                                  "<a href=\"#two\" data-fail>Noise Floor</a>\n"
                                  "<a href=\"#three\" data-fail data-nongating>Jitter</a>\n"
                                  "</nav>\n";

constexpr const char* ERRORED_LINES = "<div class=\"k\">Overall Verdict</div>\n"
                                      "<div class=\"v\">ERROR</div>\n"
                                      "<div class=\"k\">Analysis Mode</div>\n"
                                      "<div class=\"v\">Loopback</div>\n"
                                      "<div class=\"kpi-sub\">stereo</div>\n"
                                      "<nav class=\"nav-tabs\">\n"
                                      "<a data-fail>Noise Floor</a>\n"
                                      "<a data-fail data-nongating>Jitter</a>\n"
                                      "</nav>\n"
                                      "<p class=\"run-error\">no input &amp; no output</p>\n";

void expect_ten_lines(const ReportEntry& entry)
{
    EXPECT_EQ(entry.kind, ReportKind::Analyzed);
    EXPECT_EQ(entry.passed, 0);
    EXPECT_STREQ(entry.analysis_mode, "Loopback");
    EXPECT_STREQ(entry.analysis_mode_sub, "stereo, 48 kHz");
    EXPECT_EQ(failed_names(entry), Names({"Noise Floor"}));
    EXPECT_EQ(non_gating_names(entry), Names({"Jitter"}));
    EXPECT_STREQ(entry.error, "");
}

int kind_of(const std::string& path)
{
    ReportEntry entry = old_entry();
    read_analyze_report(path.c_str(), RELATIVE_PATH, entry);
    return static_cast<int>(entry.kind);
}

} // namespace

TEST(ReadAnalyzeReport, SizesAndKindsHaveTheNumbersThatEverybodyReliesOn)
{
    EXPECT_EQ(REPORT_TEXT_SIZE, 40U);
    EXPECT_EQ(REPORT_MAX_CHECKS, 16U);
    EXPECT_EQ(REPORT_ERROR_SIZE, 640U);
    EXPECT_EQ(static_cast<std::uint32_t>(ReportKind::Analyzed), 0U);
    EXPECT_EQ(static_cast<std::uint32_t>(ReportKind::NotAnalyzeReport), 1U);
    EXPECT_EQ(static_cast<std::uint32_t>(ReportKind::Unreadable), 2U);
    EXPECT_EQ(static_cast<std::uint32_t>(ReportKind::RunError), 3U);
}

TEST(ReadAnalyzeReport, ATextOfTheTenLinesIsReadInFull)
{
    expect_ten_lines(scrape(TEN_LINES));
}

TEST(ReadAnalyzeReport, AFileOfTheTenLinesIsReadInFull)
{
    const TempFolder folder;
    folder.write("a.html", TEN_LINES);
    expect_ten_lines(read_report(folder.path("a.html")));
}

TEST(ReadAnalyzeReport, AReportBehindASymbolicLinkIsRead)
{
    const TempFolder folder;
    folder.write("a.html", TEN_LINES);
    folder.link("a.html", "b.html");
    expect_ten_lines(read_report(folder.path("b.html")));
}

TEST(ReadAnalyzeReport, UnusedSlotsKeepWhatTheMemoryHeldBefore)
{
    const ReportEntry entry = scrape(TEN_LINES);
    EXPECT_TRUE(slots_untouched_from(entry.failed_checks, 1));
    EXPECT_TRUE(slots_untouched_from(entry.non_gating_checks, 1));
}

TEST(ReadAnalyzeReport, TheRelativePathIsStoredAsAPointerAndNotCopied)
{
    const TempFolder folder;
    folder.write("a.html", TEN_LINES);
    char path[] = "sub/a.html";
    ReportEntry entry = old_entry();
    read_analyze_report(folder.path("a.html").c_str(), path, entry);
    EXPECT_EQ(entry.relative_path, path);
    ReportEntry scraped = old_entry();
    scrape_analyze_report(TEN_LINES, path, scraped);
    EXPECT_EQ(scraped.relative_path, path);
}

TEST(ReadAnalyzeReport, AnErroredReportIsReadThroughAFile)
{
    const TempFolder folder;
    folder.write("a.html", ERRORED_LINES);
    const ReportEntry entry = read_report(folder.path("a.html"));
    EXPECT_EQ(entry.kind, ReportKind::RunError);
    EXPECT_STREQ(entry.error, "no input & no output");
}

TEST(ReadAnalyzeReport, AnErrorReportKeepsModeAndCountsEmptyEvenWithTabBarAndModeFigure)
{
    const ReportEntry entry = scrape(ERRORED_LINES);
    EXPECT_EQ(entry.kind, ReportKind::RunError);
    EXPECT_EQ(entry.passed, 0);
    EXPECT_STREQ(entry.analysis_mode, "");
    EXPECT_STREQ(entry.analysis_mode_sub, "");
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_EQ(entry.non_gating_check_count, 0U);
    EXPECT_TRUE(slots_untouched_from(entry.failed_checks, 0));
    EXPECT_TRUE(slots_untouched_from(entry.non_gating_checks, 0));
}

TEST(ReadAnalyzeReport, WhatAnEntryHeldBeforeNeverShowsInTheNextReading)
{
    const TempFolder folder;
    folder.write("fail.html", TEN_LINES);
    folder.write("error.html", ERRORED_LINES);
    folder.write("pass.html", verdict("PASS"));
    folder.write("other.html", "<p>other</p>\n");
    ReportEntry entry = old_entry();

    read_analyze_report(folder.path("fail.html").c_str(), RELATIVE_PATH, entry);
    read_analyze_report(folder.path("error.html").c_str(), RELATIVE_PATH, entry);
    EXPECT_EQ(entry.kind, ReportKind::RunError);
    EXPECT_STREQ(entry.analysis_mode, "");
    EXPECT_STREQ(entry.analysis_mode_sub, "");
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_EQ(entry.non_gating_check_count, 0U);

    read_analyze_report(folder.path("pass.html").c_str(), RELATIVE_PATH, entry);
    EXPECT_EQ(entry.kind, ReportKind::Analyzed);
    EXPECT_EQ(entry.passed, 1);
    EXPECT_STREQ(entry.error, "");

    read_analyze_report(folder.path("other.html").c_str(), RELATIVE_PATH, entry);
    EXPECT_EQ(entry.kind, ReportKind::NotAnalyzeReport);
    EXPECT_EQ(entry.passed, 0);

    read_analyze_report(folder.path("fail.html").c_str(), RELATIVE_PATH, entry);
    read_analyze_report(folder.path("missing.html").c_str(), RELATIVE_PATH, entry);
    EXPECT_EQ(entry.kind, ReportKind::Unreadable);
    EXPECT_STREQ(entry.analysis_mode, "");
    EXPECT_STREQ(entry.analysis_mode_sub, "");
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_EQ(entry.non_gating_check_count, 0U);
}

TEST(ReadAnalyzeReport, AnEmptyFileIsReadAndIsNotAnAnalyzeReport)
{
    const TempFolder folder;
    folder.write("a.html", "");
    expect_empty(read_report(folder.path("a.html")), ReportKind::NotAnalyzeReport);
}

TEST(ReadAnalyzeReport, AFileOfOneNulIsNotAnAnalyzeReport)
{
    const TempFolder folder;
    folder.write("a.html", "\0"s);
    expect_empty(read_report(folder.path("a.html")), ReportKind::NotAnalyzeReport);
}

TEST(ReadAnalyzeReport, SomeOtherPageIsNotAnAnalyzeReportAndNothingElseOfItIsRead)
{
    const std::string other =
        "<!DOCTYPE html>\n" + bar(gating_tab("Level")) + mode_figure("m", "s") + run_error("e");
    expect_empty(scrape(other), ReportKind::NotAnalyzeReport);
}

TEST(ReadAnalyzeReport, AFileWhoseVerdictLabelComesAfterANulIsNotAnAnalyzeReport)
{
    const TempFolder folder;
    folder.write("a.html", "<p>text</p>\n\0"s + TEN_LINES);
    expect_empty(read_report(folder.path("a.html")), ReportKind::NotAnalyzeReport);
}

TEST(ReadAnalyzeReport, WhatStandsAfterTheFirstNulIsNotRead)
{
    const TempFolder folder;
    folder.write("a.html", verdict("FAIL") + "\0"s + bar(gating_tab("Level")) +
                               mode_figure("Loopback", "stereo"));
    const ReportEntry entry = read_report(folder.path("a.html"));
    EXPECT_EQ(entry.kind, ReportKind::Analyzed);
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_STREQ(entry.analysis_mode, "");
}

TEST(ReadAnalyzeReport, AMissingFileIsUnreadable)
{
    const TempFolder folder;
    expect_empty(read_report(folder.path("missing.html")), ReportKind::Unreadable);
}

TEST(ReadAnalyzeReport, AnEmptyPathIsUnreadable)
{
    expect_empty(read_report(""), ReportKind::Unreadable);
}

TEST(ReadAnalyzeReport, ADanglingLinkIsUnreadable)
{
    const TempFolder folder;
    folder.link("missing.html", "a.html");
    expect_empty(read_report(folder.path("a.html")), ReportKind::Unreadable);
}

TEST(ReadAnalyzeReport, AFolderNamedLikeAReportIsUnreadable)
{
    const TempFolder folder;
    folder.make_folder("a.html");
    expect_empty(read_report(folder.path("a.html")), ReportKind::Unreadable);
}

TEST(ReadAnalyzeReport, APathThroughAFileIsUnreadable)
{
    const TempFolder folder;
    folder.write("a.html", TEN_LINES);
    expect_empty(read_report(folder.path("a.html/b.html")), ReportKind::Unreadable);
}

TEST(ReadAnalyzeReport, AFifoIsUnreadableAndNotWaitedFor)
{
    const TempFolder folder;
    const std::string fifo = folder.path("a.html");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0666), 0);
    const int kind = run_unprivileged([&fifo] {
        alarm(60);
        return kind_of(fifo);
    });
    EXPECT_EQ(kind, static_cast<int>(ReportKind::Unreadable));
}

TEST(ReadAnalyzeReport, ASocketIsUnreadable)
{
    const TempFolder folder;
    const std::string path = folder.path("a.html");
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(descriptor, 0);
    ASSERT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    expect_empty(read_report(path), ReportKind::Unreadable);
    close(descriptor);
}

TEST(ReadAnalyzeReport, AFileWithoutReadPermissionIsUnreadable)
{
    const TempFolder folder;
    folder.write("a.html", TEN_LINES);
    const std::string path = folder.path("a.html");
    const auto read = [&path] { return kind_of(path); };
    ASSERT_EQ(run_unprivileged(read), static_cast<int>(ReportKind::Analyzed));
    folder.chmod("a.html", 0);
    EXPECT_EQ(run_unprivileged(read), static_cast<int>(ReportKind::Unreadable));
}

TEST(ReadAnalyzeReport, AFileInAFolderWithoutSearchPermissionIsUnreadable)
{
    const TempFolder folder;
    folder.write("sub/a.html", TEN_LINES);
    const std::string path = folder.path("sub/a.html");
    const auto read = [&path] { return kind_of(path); };
    ASSERT_EQ(run_unprivileged(read), static_cast<int>(ReportKind::Analyzed));
    folder.chmod("sub", 0);
    EXPECT_EQ(run_unprivileged(read), static_cast<int>(ReportKind::Unreadable));
}

TEST(ReadAnalyzeReport, AFileThatDoesNotFitInMemoryIsUnreadable)
{
    const TempFolder folder;
    folder.write("a.html", TEN_LINES);
    const std::string path = folder.path("a.html");
    ReportEntry entry = old_entry();
    {
        const AllocationFault fault(1);
        read_analyze_report(path.c_str(), RELATIVE_PATH, entry);
        EXPECT_GE(fault.failures(), 1U);
    }
    EXPECT_EQ(entry.relative_path, RELATIVE_PATH);
    expect_empty(entry, ReportKind::Unreadable);
    expect_ten_lines(read_report(path));
}

TEST(ReadAnalyzeReport, OneHeapBlockIsAllocatedForAFileAndNoneForAText)
{
    const TempFolder folder;
    folder.write("a.html", TEN_LINES);
    const std::string path = folder.path("a.html");
    ReportEntry entry = old_entry();
    const std::uint64_t before = allocation_count();
    read_analyze_report(path.c_str(), RELATIVE_PATH, entry);
    EXPECT_EQ(allocation_count() - before, 1U);
    scrape_analyze_report(TEN_LINES, RELATIVE_PATH, entry);
    EXPECT_EQ(allocation_count() - before, 1U);
}

TEST(ReadAnalyzeReport, TheFragmentsMayComeInAnyOrder)
{
    const std::string figure = mode_figure("Loopback", "stereo");
    const std::string tabs = bar(gating_tab("Level") + non_gating_tab("Jitter"));
    const std::string fail = verdict("FAIL");
    for (const std::string& document :
         {fail + figure + tabs, fail + tabs + figure, figure + fail + tabs, figure + tabs + fail,
          tabs + fail + figure, tabs + figure + fail}) {
        SCOPED_TRACE(document);
        const ReportEntry entry = scrape(document);
        EXPECT_EQ(entry.kind, ReportKind::Analyzed);
        EXPECT_STREQ(entry.analysis_mode, "Loopback");
        EXPECT_STREQ(entry.analysis_mode_sub, "stereo");
        EXPECT_EQ(failed_names(entry), Names({"Level"}));
        EXPECT_EQ(non_gating_names(entry), Names({"Jitter"}));
    }
}

TEST(ReadAnalyzeReport, ATabBarAfterTheModeFigureWithoutACloseIsNoReasonToLoseTheMode)
{
    const ReportEntry entry = scrape(verdict("FAIL") + mode_figure("Loopback", "stereo") +
                                     "<nav class=\"nav-tabs\">" + gating_tab("Level"));
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_STREQ(entry.analysis_mode, "Loopback");
}

TEST(ReadAnalyzeReport, ATextThatBeginsInsideTheLabelIsNoReport)
{
    const std::string report = verdict("PASS");
    for (std::size_t cut = 1; cut <= report.size(); ++cut) {
        SCOPED_TRACE(cut);
        expect_empty(scrape(report.substr(cut)), ReportKind::NotAnalyzeReport);
    }
}

TEST(ReadAnalyzeReport, ACutAnywhereInTheTenLinesGivesASoundEntry)
{
    const std::string whole = TEN_LINES;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        SCOPED_TRACE(length);
        const ReportEntry entry = scrape(whole.substr(0, length));
        // Each is there once its last "</div>" or "</nav>" is whole.
        EXPECT_EQ(entry.kind == ReportKind::Analyzed, length >= 36);
        EXPECT_EQ(std::string(entry.analysis_mode) == "Loopback", length >= 127);
        EXPECT_EQ(std::string(entry.analysis_mode_sub) == "stereo, 48 kHz", length >= 169);
        EXPECT_EQ(entry.failed_check_count == 1, length >= whole.size() - 1);
        EXPECT_EQ(entry.non_gating_check_count == 1, length >= whole.size() - 1);
    }
}
