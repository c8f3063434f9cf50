// Which files the built program takes up, told by its JSON file. The tests of the walk
// itself have the details.

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
#include "cli/listed_files.h"
#include "cli/sample_reports.h"
#include "support/deep_tree.h"

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

    TempFolder temp;
};

} // namespace

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

// The older page was a report, so it must be skipped because of its name alone.
TEST_F(Walking, AReportThatThePageReplacesIsNotRead)
{
    temp.write("in/r.html", failed_report());
    expect_run(run_in(temp, {"--input", "in", "-o", "in/r.html"}), 0, wrote("in/r.html", {}), "");
    expect_whole_page(temp.read("in/r.html"));
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
