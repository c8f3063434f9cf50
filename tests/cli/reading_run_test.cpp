// The built program on small input folders: exit status, closing line, and what
// each file was taken for.

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
#include "cli/listed_files.h"
#include "cli/sample_reports.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;
using Files = std::vector<ListedFile>;

class ReadingRun : public testing::Test
{
protected:
    void SetUp() override
    {
        temp.make_folder("in");
    }

    // Runs with JSON and checks everything but the two files' contents.
    void expect_complete(int status, const Counts& counts)
    {
        expect_run(run_in(temp, {"--input", "in", "-o", "s.html", "--json"}), status,
                   wrote_with_json("s.html", "s.json", counts), "");
    }

    void expect_input_message(const std::string& input)
    {
        const Names before = temp.names();
        expect_run(run_in(temp, {"--input", input, "-o", "out/s.html", "--json"}), 1, "",
                   input_message(input));
        EXPECT_EQ(temp.names(), before);
    }

    Files files() const
    {
        return files_in(temp.read("s.json"));
    }

    TempFolder temp;
};

} // namespace

TEST_F(ReadingRun, AnEmptyInputDirectoryGivesStatusZero)
{
    expect_run(run_in(temp, {"--input", "in", "-o", "s.html"}), 0, wrote("s.html", {}), "");
    EXPECT_EQ(temp.names(), (Names{"in", "s.html"}));
    expect_complete(0, {});
    EXPECT_EQ(files(), Files{});
}

TEST_F(ReadingRun, OnlyOtherHtmlFilesGiveATotalOfZeroAndStatusZero)
{
    temp.write("in/a.html", OTHER_PAGE);
    temp.write("in/b/b.html", "");
    expect_complete(0, {});
    const Names paths = {"a.html", "b/b.html"};
    EXPECT_EQ(paths_in(temp.read("s.json")), paths);
    EXPECT_EQ(files().at(0).outcome, "not_analyze_report");
    EXPECT_EQ(files().at(1).outcome, "not_analyze_report");
}

TEST_F(ReadingRun, OneFileDecidesTheStatusAloneAndBesidePassedReports)
{
    struct Case
    {
        std::string report;
        int status;
        Counts counts;
    };
    for (const Case& one :
         {Case{passed_report(), 0, {.passed = 1}}, Case{failed_report(), 1, {.failed = 1}},
          Case{errored_report("no input"), 1, {.errored = 1}},
          Case{std::string(OTHER_PAGE), 0, {}}}) {
        Counts counts = one.counts;
        fs::remove(temp.path("in/passed.html"));
        temp.write("in/one.html", one.report);
        expect_complete(one.status, counts);
        temp.write("in/passed.html", passed_report());
        ++counts.passed;
        expect_complete(one.status, counts);
    }
}

TEST_F(ReadingRun, OneUnreadableFileAndOtherwisePassedReportsShowNoFailureButGiveStatusOne)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/b.html", passed_report());
    temp.chmod("in/b.html", 0000);
    temp.chmod("", 0777);
    expect_run(run_as_ordinary_user(temp, {"--input", "in", "-o", "s.html", "--json"}), 1,
               wrote_with_json("s.html", "s.json", {.passed = 1}), "");
    EXPECT_EQ(files(), (Files{{"a.html", "PASS", ""}, {"b.html", "unreadable", ""}}));
}

TEST_F(ReadingRun, AFifoDoesNotHoldUpTheRunAndIsUnreadableAsASocketIs)
{
    temp.write("in/a.html", passed_report());
    temp.make_fifo("in/b/fifo.html");
    expect_complete(1, {.passed = 1});
    EXPECT_EQ(files().back(), (ListedFile{"b/fifo.html", "unreadable", ""}));
    fs::remove(temp.path("in/b/fifo.html"));
    temp.make_socket("in/b/socket.html");
    expect_complete(1, {.passed = 1});
    EXPECT_EQ(files().back(), (ListedFile{"b/socket.html", "unreadable", ""}));
}

TEST_F(ReadingRun, EveryKindIsCountedAndTheInputIsLeftAsItIs)
{
    for (int i = 0; i < 9; ++i) {
        temp.write("in/passed" + std::to_string(i) + ".html", passed_report());
    }
    temp.write("in/failed1.html", FULL_FAILED_REPORT);
    temp.write("in/failed2.html", failed_report());
    temp.write("in/errored.html", errored_report("no input"));
    temp.write("in/other.html", OTHER_PAGE);
    temp.write("in/notes.txt", "notes");
    const Names before = temp.names();
    expect_complete(1, {.passed = 9, .failed = 2, .errored = 1});
    fs::remove(temp.path("s.html"));
    fs::remove(temp.path("s.json"));
    EXPECT_EQ(temp.names(), before);
    EXPECT_EQ(temp.read("in/failed1.html"), FULL_FAILED_REPORT);
    EXPECT_EQ(temp.read("in/notes.txt"), "notes");
}

// ---- The input ----

TEST_F(ReadingRun, AnInputThatDoesNotExistIsReportedAndNothingIsWritten)
{
    expect_input_message("nothing");
    expect_input_message("in/nothing/");
    expect_input_message("");
}

TEST_F(ReadingRun, AnInputThatIsAFileIsReportedAndNothingIsWritten)
{
    temp.write("file.html", passed_report());
    expect_input_message("file.html");
    expect_input_message("file.html/");
}

TEST_F(ReadingRun, AMissingInputIsReportedBeforeAnythingThatIsWrongWithThePage)
{
    temp.write("file", "");
    for (const std::string& page : {std::string(4096, 'x'), std::string("file/sub/s.html")}) {
        expect_run(run_in(temp, {"--input", "none", "-o", page}), 1, "", input_message("none"));
    }
}

TEST_F(ReadingRun, TheInputIsShownByteForByteInTheMessage)
{
    expect_input_message("%s%n 'x' \"\\\t\n\x01\xff");
    expect_input_message(std::string(5000, 'x'));
    expect_input_message(std::string(100000, '/') + "x");
}

TEST_F(ReadingRun, TheInputIsUsedAndShownAsTyped)
{
    temp.write("in/a.html", passed_report());
    temp.link("in", "link");
    for (const std::string& input :
         Names{"in", "in/", "./in", "in//.//", "link", "link/.", "in/../in", temp.path("in")}) {
        expect_run(run_in(temp, {"--input", input, "-o", "s.html", "--json"}), 0,
                   wrote_with_json("s.html", "s.json", {.passed = 1}), "");
        EXPECT_NE(temp.read("s.json").find(": \"" + input + "\",\n"), std::string::npos) << input;
    }
}
