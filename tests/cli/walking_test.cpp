// Which files the built program takes up, told by its JSON file. The tests of the walk
// itself have the details.

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
#include "cli/listed_files.h"
#include "cli/sample_reports.h"
#include "support/deep_tree.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

class Walking : public testing::Test
{
protected:
    void SetUp() override
    {
        temp.make_folder("in");
    }

    // Runs on "in" with JSON beside the page and returns what was listed.
    Names listed(const std::string& page = "s.html", const std::string& json = "s.json")
    {
        const ProcessResult result = run_in(temp, {"--input", "in", "-o", page, "--json"});
        EXPECT_EQ(result.errors, "");
        return paths_in(temp.read(json));
    }

    Names listed_by_ordinary_user()
    {
        temp.chmod("", 0777);
        const ProcessResult result =
            run_as_ordinary_user(temp, {"--input", "in", "-o", "s.html", "--json"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.errors, "");
        return paths_in(temp.read("s.json"));
    }

    TempFolder temp;
};

} // namespace

TEST_F(Walking, TheEndingsCountInEveryCase)
{
    for (const char* name : {"Report.HTML", "x.Htm", ".hidden.html", ".htm", "a.xhtml",
                             "page.html.bak", "notes.txt"}) {
        temp.write(std::string("in/") + name, passed_report());
    }
    EXPECT_EQ(listed(), (Names{".hidden.html", ".htm", "Report.HTML", "x.Htm"}));
}

TEST_F(Walking, FilesAtEveryDepthAndInHiddenFoldersAreListed)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/sub/sub/sub/c.html", passed_report());
    temp.write("in/.hidden/.deeper/.e.html", passed_report());
    EXPECT_EQ(listed(), (Names{".hidden/.deeper/.e.html", "a.html", "sub/sub/sub/c.html"}));
}

TEST_F(Walking, AFolderNamedLikeAReportIsWalkedIntoAndNotListed)
{
    temp.write("in/old.html/r.html", passed_report());
    temp.make_folder("in/empty.htm");
    EXPECT_EQ(listed(), Names{"old.html/r.html"});
}

TEST_F(Walking, ALinkToAReportIsListedUnderItsOwnNameAndADanglingOneIsSkipped)
{
    temp.write("real.txt", failed_report());
    temp.link("../real.txt", "in/link.html");
    temp.link("nowhere", "in/dangling.html");
    temp.link("circle.html", "in/circle.html");
    EXPECT_EQ(listed(), Names{"link.html"});
    EXPECT_EQ(files_in(temp.read("s.json")).at(0).outcome, "FAIL") << "of the file it leads to";
}

// The system follows 40 links in one path, so the report is met 41 times.
TEST_F(Walking, ALinkToItsOwnFolderListsEachReportFortyOneTimes)
{
    temp.write("in/r.html", passed_report());
    temp.link(".", "in/loop");
    Names expected;
    for (int i = 0; i < 41; ++i) {
        expected.push_back(repeated("loop/", i) + "r.html");
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(listed(), expected);
}

TEST_F(Walking, ThePageInsideTheInputIsNotListedOnTheSecondRun)
{
    temp.write("in/r.html", passed_report());
    for (int i = 0; i < 3; ++i) {
        expect_run(run_in(temp, {"--input", "in", "-o", "in/s.html", "--json"}), 0,
                   wrote_with_json("in/s.html", "in/s.json", {.passed = 1}), "");
        EXPECT_EQ(paths_in(temp.read("in/s.json")), Names{"r.html"});
    }
}

TEST_F(Walking, APageOfAnotherNameInsideTheInputIsListedAsAnOtherFile)
{
    temp.write("in/r.html", passed_report());
    EXPECT_EQ(listed("in/first.html", "in/first.json"), Names{"r.html"});
    EXPECT_EQ(listed("in/second.html", "in/second.json"), (Names{"first.html", "r.html"}));
    EXPECT_EQ(files_in(temp.read("in/second.json")).back().outcome, "not_analyze_report");
}

TEST_F(Walking, ThePageIsRecognisedHoweverItsPathOrTheInputIsTyped)
{
    temp.write("in/r.html", passed_report());
    temp.make_folder("in/sub");
    temp.link("in", "alias");
    temp.write("in/s.html", "");
    for (const std::string& page :
         Names{"in//s.html", "in/sub/../s.html", "alias/s.html", temp.path("alias/../in/s.html")}) {
        EXPECT_EQ(listed(page, "in/s.json"), Names{"r.html"}) << page;
    }
    for (const std::string& input : Names{"in/", "./in//.", "alias", temp.path("in")}) {
        expect_run(run_in(temp, {"--input", input, "-o", "in/s.html"}), 0,
                   wrote("in/s.html", {.passed = 1}), "");
    }
}

TEST_F(Walking, EverySymbolicNameOfThePageIsSkippedAndAHardLinkIsNot)
{
    temp.write("in/r.html", passed_report());
    temp.write("in/sub/s.html", "older page");
    temp.link("sub/s.html", "in/link.html");
    temp.link("link.html", "in/link2.htm");
    temp.link("sub", "in/alias");
    EXPECT_EQ(listed("in/sub/s.html", "in/sub/s.json"), Names{"r.html"});
    fs::create_hard_link(temp.path("in/sub/s.html"), temp.path("in/hard.html"));
    EXPECT_EQ(listed("in/sub/s.html", "in/sub/s.json"), (Names{"hard.html", "r.html"}));
}

TEST_F(Walking, AFileOfThePagesNameInAnotherFolderIsListed)
{
    temp.write("in/s.html", passed_report());
    temp.write("in/sub/s.html", passed_report());
    EXPECT_EQ(listed("in/sub/s.html", "in/sub/s.json"), Names{"s.html"});
    EXPECT_EQ(listed(), (Names{"s.html", "sub/s.html"}));
}

// The older page was a report, so it must be skipped because of its name alone.
TEST_F(Walking, AReportThatThePageReplacesIsNotRead)
{
    temp.write("in/r.html", failed_report());
    expect_run(run_in(temp, {"--input", "in", "-o", "in/r.html"}), 0, wrote("in/r.html", {}), "");
    expect_whole_page(temp.read("in/r.html"));
}

TEST_F(Walking, ASubFolderWithoutReadPermissionIsSkipped)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/closed/b.html", failed_report());
    temp.write("in/unreadable/c.html", failed_report());
    temp.write("in/unsearchable/sub/e.html", failed_report());
    temp.link("closed/b.html", "in/link.html");
    temp.chmod("in/closed", 0000);
    temp.chmod("in/unreadable", 0311);
    temp.chmod("in/unsearchable", 0644);
    EXPECT_EQ(listed_by_ordinary_user(), Names{"a.html"});
}

TEST_F(Walking, FilesAndFoldersNamedWithEveryByteAreRead)
{
    unsigned count = 0;
    for (unsigned byte = 1; byte <= 0xFF; ++byte) {
        if (byte != '/') {
            const std::string name = std::string("[") + static_cast<char>(byte) + "]";
            temp.write("in/" + name + ".html", passed_report());
            temp.write("in/" + name + "/r.html", failed_report());
            ++count;
        }
    }
    expect_run(run_in(temp, {"--input", "in", "-o", "s.html"}), 1,
               wrote("s.html", {.passed = count, .failed = count}), "");
}
