// The report reader on whole documents and on files; how it reads the single
// fragments is tested in the report_*_test.cpp files.

#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "report/read_analyze_report.h"
#include "report/scraped_report.h"
#include "support/call_faults.h"
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

const ReadReport TEN_LINES_READ = {ReportKind::Analyzed, false,      "Loopback", "stereo, 48 kHz",
                                   {"Noise Floor"},      {"Jitter"}, ""};

const std::string ERRORED_LINES = verdict("ERROR") + mode_figure("Loopback", "stereo") +
                                  bar(gating_tab("Noise Floor") + non_gating_tab("Jitter")) +
                                  run_error("no input &amp; no output");

// What another user makes of a file.
int kind_for_others(const std::string& path)
{
    return run_unprivileged([&path] {
        alarm(60);
        return static_cast<int>(read_report(path).kind);
    });
}

} // namespace

TEST(ReadAnalyzeReport, TenLinesAreReadInFullFromMemoryFromAFileAndThroughALink)
{
    const TempFolder folder;
    folder.write("a.html", TEN_LINES);
    folder.link("a.html", "b.html");
    EXPECT_EQ(scrape(TEN_LINES), TEN_LINES_READ);
    EXPECT_EQ(read_report(folder.path("a.html")), TEN_LINES_READ);
    EXPECT_EQ(read_report(folder.path("b.html")), TEN_LINES_READ);
}

TEST(ReadAnalyzeReport, TheRelativePathIsStoredAsAPointerAndNotCopied)
{
    char path[] = "sub/a.html";
    ReportEntry entry = old_entry();
    read_analyze_report("no such file", path, entry);
    EXPECT_EQ(entry.relative_path, path);
    ReportEntry scraped = old_entry();
    scrape_analyze_report(TEN_LINES, path, scraped);
    EXPECT_EQ(scraped.relative_path, path);
}

TEST(ReadAnalyzeReport, AnErrorReportKeepsModeAndCountsEmptyEvenWithTabBarAndModeFigure)
{
    ReadReport expected = empty_report(ReportKind::RunError);
    expected.error = "no input & no output";
    EXPECT_EQ(scrape(ERRORED_LINES), expected);
}

TEST(ReadAnalyzeReport, WhatAnEntryHeldBeforeNeverShowsInTheNextReading)
{
    ReportEntry entry = old_entry();
    scrape_analyze_report(TEN_LINES, RELATIVE_PATH, entry);
    scrape_analyze_report(ERRORED_LINES.c_str(), RELATIVE_PATH, entry);
    EXPECT_EQ(visible_fields(entry), scrape(ERRORED_LINES));
    scrape_analyze_report(verdict("PASS").c_str(), RELATIVE_PATH, entry);
    EXPECT_EQ(visible_fields(entry), scrape(verdict("PASS")));
    scrape_analyze_report("<p>other</p>\n", RELATIVE_PATH, entry);
    EXPECT_EQ(visible_fields(entry), empty_report(ReportKind::NotAnalyzeReport));
    scrape_analyze_report(TEN_LINES, RELATIVE_PATH, entry);
    read_analyze_report("no such file", RELATIVE_PATH, entry);
    EXPECT_EQ(visible_fields(entry), empty_report(ReportKind::Unreadable));
}

TEST(ReadAnalyzeReport, AnEmptyFileIsReadAndIsNotAnAnalyzeReport)
{
    const TempFolder folder;
    folder.write("a.html", "");
    EXPECT_EQ(read_report(folder.path("a.html")), empty_report(ReportKind::NotAnalyzeReport));
}

TEST(ReadAnalyzeReport, SomeOtherPageIsNotAnAnalyzeReportAndNothingElseOfItIsRead)
{
    EXPECT_EQ(scrape("<!DOCTYPE html>\n" + bar(gating_tab("Level")) + mode_figure("m", "s") +
                     run_error("e")),
              empty_report(ReportKind::NotAnalyzeReport));
}

TEST(ReadAnalyzeReport, AFileWhoseVerdictLabelComesAfterANulIsNotAnAnalyzeReport)
{
    const TempFolder folder;
    folder.write("a.html", "<p>text</p>\n\0"s + TEN_LINES);
    EXPECT_EQ(read_report(folder.path("a.html")), empty_report(ReportKind::NotAnalyzeReport));
}

TEST(ReadAnalyzeReport, WhatStandsAfterTheFirstNulIsNotRead)
{
    const TempFolder folder;
    folder.write("a.html", verdict("FAIL") + "\0"s + bar(gating_tab("Level")) +
                               mode_figure("Loopback", "stereo"));
    EXPECT_EQ(read_report(folder.path("a.html")), empty_report(ReportKind::Analyzed));
}

TEST(ReadAnalyzeReport, WhatIsMissingEmptyDanglingOrAFolderIsUnreadable)
{
    const TempFolder folder;
    folder.write("file.html", TEN_LINES);
    folder.make_folder("folder.html");
    folder.link("missing.html", "dangling.html");
    for (const std::string& path :
         {folder.path("missing.html"), std::string(), folder.path("dangling.html"),
          folder.path("folder.html"), folder.path("file.html/b.html")}) {
        EXPECT_EQ(read_report(path), empty_report(ReportKind::Unreadable)) << path;
    }
}

TEST(ReadAnalyzeReport, AFifoIsUnreadableAndNotWaitedFor)
{
    const TempFolder folder;
    const std::string fifo = folder.path("a.html");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0666), 0);
    EXPECT_EQ(kind_for_others(fifo), static_cast<int>(ReportKind::Unreadable));
}

TEST(ReadAnalyzeReport, AFileWithoutReadPermissionIsUnreadable)
{
    const TempFolder folder;
    folder.write("a.html", TEN_LINES);
    const std::string path = folder.path("a.html");
    folder.chmod("a.html", 0644);
    ASSERT_EQ(kind_for_others(path), static_cast<int>(ReportKind::Analyzed));
    folder.chmod("a.html", 0);
    EXPECT_EQ(kind_for_others(path), static_cast<int>(ReportKind::Unreadable));
}

TEST(ReadAnalyzeReport, AFileThatDoesNotFitInMemoryIsUnreadable)
{
    const TempFolder folder;
    folder.write("a.html", TEN_LINES);
    {
        const AllocationFault fault(1);
        EXPECT_EQ(read_report(folder.path("a.html")), empty_report(ReportKind::Unreadable));
        EXPECT_GE(fault.failures(), 1U);
    }
    EXPECT_EQ(read_report(folder.path("a.html")), TEN_LINES_READ);
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
        EXPECT_EQ(
            scrape(document),
            (ReadReport{
                ReportKind::Analyzed, false, "Loopback", "stereo", {"Level"}, {"Jitter"}, ""}))
            << document;
    }
}
