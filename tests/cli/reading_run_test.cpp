// The built program on small input folders: exit status, closing line, and what
// each file was taken for.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "cli/expected_texts.h"
#include "cli/program_run.h"
#include "cli/sample_reports.h"

namespace {

using Names = std::vector<std::string>;

class ReadingRun : public testing::Test
{
protected:
    void SetUp() override
    {
        temp.make_folder("in");
    }

    // Runs with JSON and checks everything but the two files' contents.
    void expect_complete(int status, const std::string& counts)
    {
        expect_run(run_in(temp, {"--input", "in", "-o", "s.html", "--json"}), status,
                   "wrote s.html (" + counts + ") + json\nwrote s.json\n", "");
    }

    void expect_input_message(const std::string& input)
    {
        const Names before = temp.names();
        expect_run(run_in(temp, {"--input", input, "-o", "out/s.html", "--json"}), 1, "",
                   input_message(input));
        EXPECT_EQ(temp.names(), before);
    }

    bool page_has(std::string_view text) const
    {
        return temp.read("s.html").find(text) != std::string::npos;
    }

    bool json_has(std::string_view text) const
    {
        return temp.read("s.json").find(text) != std::string::npos;
    }

    TempFolder temp;
};

constexpr std::string_view SUITE_PASSED =
    "<div class=\"kpi verdict ok\">\n<div class=\"k\">Suite Verdict</div>\n"
    "<div class=\"v\">PASS</div>\n</div>\n";
constexpr std::string_view SUITE_FAILED =
    "<div class=\"kpi verdict\">\n<div class=\"k\">Suite Verdict</div>\n"
    "<div class=\"v\">FAIL</div>\n</div>\n";

} // namespace

TEST_F(ReadingRun, AnEmptyInputDirectoryGivesStatusZeroAndTheEmptyJson)
{
    expect_complete(0, "0 fathomix reports: 0 passed, 0 failed");
    EXPECT_EQ(temp.read("s.json"), empty_json("in"));
    EXPECT_TRUE(page_has(SUITE_PASSED));
}

TEST_F(ReadingRun, OnlyPassedReportsGiveStatusZeroAndAPassedSuite)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/sub/b.htm", passed_report());
    expect_complete(0, "2 fathomix reports: 2 passed, 0 failed");
    EXPECT_TRUE(page_has(SUITE_PASSED));
}

TEST_F(ReadingRun, OtherHtmlFilesAloneGiveStatusZeroAlthoughThePageSaysFail)
{
    temp.write("in/a.html", OTHER_PAGE);
    temp.write("in/b.html", "");
    expect_complete(0, "0 fathomix reports: 0 passed, 0 failed");
    EXPECT_TRUE(page_has(SUITE_FAILED));
    EXPECT_TRUE(json_has("{ \"relative_path\": \"a.html\", \"reason\": \"not_analyze_report\" }"));
    EXPECT_TRUE(json_has("{ \"relative_path\": \"b.html\", \"reason\": \"not_analyze_report\" }"));
}

TEST_F(ReadingRun, OtherHtmlFilesBesidePassedReportsGiveStatusZeroAlthoughThePageSaysFail)
{
    temp.write("in/a.html", OTHER_PAGE);
    temp.write("in/b.html", passed_report());
    expect_complete(0, "1 fathomix reports: 1 passed, 0 failed");
    EXPECT_TRUE(page_has(SUITE_FAILED));
}

TEST_F(ReadingRun, OneUnreadableFileAndOtherwisePassedReportsGiveStatusOne)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/b.html", passed_report());
    temp.chmod("in/b.html", 0000);
    temp.chmod("", 0777);
    expect_run(run_as_ordinary_user(temp, {"--input", "in", "-o", "s.html", "--json"}), 1,
               "wrote s.html (1 fathomix reports: 1 passed, 0 failed) + json\nwrote s.json\n", "");
    EXPECT_TRUE(page_has("<td>b.html <small>(unreadable)</small></td>"));
    EXPECT_TRUE(json_has("{ \"relative_path\": \"b.html\", \"reason\": \"unreadable\" }"));
}

TEST_F(ReadingRun, OneErroredReportAndOtherwisePassedReportsGiveStatusOne)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/b.html", errored_report("no &lt;input&gt;"));
    expect_complete(1, "2 fathomix reports: 1 passed, 0 failed, 1 errored");
    EXPECT_TRUE(json_has("\"error\": \"no <input>\""));
    EXPECT_TRUE(page_has("<td style=\"text-align:left\">no &lt;input&gt;</td>"));
}

TEST_F(ReadingRun, OneFailedReportGivesStatusOne)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/b.html", failed_report());
    expect_complete(1, "2 fathomix reports: 1 passed, 1 failed");
}

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
    expect_input_message(temp.path("file.html"));
}

TEST_F(ReadingRun, AnInputThatIsADanglingLinkOrAFifoIsReported)
{
    temp.link("nowhere", "link");
    ASSERT_EQ(mkfifo(temp.path("fifo").c_str(), 0666), 0);
    expect_input_message("link");
    expect_input_message("fifo");
}

TEST_F(ReadingRun, AnInputThatMayNotBeReadIsReported)
{
    temp.write("in/a.html", passed_report());
    temp.chmod("in", 0311);
    temp.chmod("", 0777);
    expect_run(run_as_ordinary_user(temp, {"--input", "in", "-o", "s.html"}), 1, "",
               input_message("in"));
    EXPECT_FALSE(temp.exists("s.html"));
}

TEST_F(ReadingRun, AnInputThatMayNotBeSearchedIsAnEmptyOne)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/sub/b.html", passed_report());
    temp.chmod("in", 0444);
    temp.chmod("", 0777);
    expect_run(run_as_ordinary_user(temp, {"--input", "in", "-o", "s.html", "--json"}), 0,
               "wrote s.html (0 fathomix reports: 0 passed, 0 failed) + json\nwrote s.json\n", "");
    EXPECT_EQ(temp.read("s.json"), empty_json("in"));
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
    for (const std::string& input : Names{"in", "in/", "./in", "in//.//", "link", "link/.",
                                          "in/../in", temp.path("in"), "."}) {
        SCOPED_TRACE(input);
        expect_run(run_in(temp, {"--input", input, "-o", "s.html", "--json"}), 0,
                   input == "." ? "wrote s.html (2 fathomix reports: 2 passed, 0 failed) + json\n"
                                  "wrote s.json\n"
                                : "wrote s.html (1 fathomix reports: 1 passed, 0 failed) + json\n"
                                  "wrote s.json\n",
                   "");
        EXPECT_TRUE(
            temp.read("s.json").starts_with("{\n    \"scanned_directory\": \"" + input + "\",\n"));
    }
}

TEST_F(ReadingRun, AnInputNamedLikeAnOptionIsRead)
{
    temp.write("--json/a.html", failed_report());
    expect_run(run_in(temp, {"--input", "--json", "-o", "s.html"}), 1,
               "wrote s.html (1 fathomix reports: 0 passed, 1 failed)\n", "");
}

TEST_F(ReadingRun, EveryFieldOfAReportReachesTheJson)
{
    temp.write("in/album/track01.html", FULL_FAILED_REPORT);
    expect_complete(1, "1 fathomix reports: 0 passed, 1 failed");
    EXPECT_EQ(temp.read("s.json"), "{\n"
                                   "    \"scanned_directory\": \"in\",\n"
                                   "    \"total_reports\": 1,\n"
                                   "    \"passed\": 0,\n"
                                   "    \"failed\": 1,\n"
                                   "    \"errored\": 0,\n"
                                   "    \"reports\": [\n"
                                   "        {\n"
                                   "            \"relative_path\": \"album/track01.html\",\n"
                                   "            \"verdict\": \"FAIL\",\n"
                                   "            \"analysis_mode\": \"Mode X\",\n"
                                   "            \"analysis_mode_sub\": \"Variant 1\",\n"
                                   "            \"failed_checks\": [\"Noise\", \"Phase\"],\n"
                                   "            \"non_gating_checks\": [\"Dither\"],\n"
                                   "            \"error\": \"\"\n"
                                   "        }\n"
                                   "    ],\n"
                                   "    \"other_files\": [\n"
                                   "]\n"
                                   "}\n");
}

TEST_F(ReadingRun, EveryFieldOfAReportReachesThePage)
{
    temp.write("in/album/track01.html", FULL_FAILED_REPORT);
    expect_complete(1, "1 fathomix reports: 0 passed, 1 failed");
    EXPECT_TRUE(page_has(
        "<tr><td>1</td><td><a href=\"in/album/track01.html\">album/<wbr>track01</a></td>"
        "<td>Mode X <span style=\"color:var(--muted);font-size:0.85em\">&middot; Variant 1</span>"
        "</td><td><span class=\"badge fail\">FAIL</span></td><td>Noise, Phase<br>"
        "<span style=\"color:var(--muted);font-size:0.85em\">Not gating: Dither</span></td></tr>\n"));
}

TEST_F(ReadingRun, AnErroredReportReachesTheJson)
{
    temp.write("in/track02.html",
               errored_report("Input &quot;take 2.wav&quot; could not be opened"));
    expect_complete(1, "1 fathomix reports: 0 passed, 0 failed, 1 errored");
    EXPECT_EQ(temp.read("s.json"),
              "{\n"
              "    \"scanned_directory\": \"in\",\n"
              "    \"total_reports\": 1,\n"
              "    \"passed\": 0,\n"
              "    \"failed\": 0,\n"
              "    \"errored\": 1,\n"
              "    \"reports\": [\n"
              "        {\n"
              "            \"relative_path\": \"track02.html\",\n"
              "            \"verdict\": \"ERROR\",\n"
              "            \"analysis_mode\": \"\",\n"
              "            \"analysis_mode_sub\": \"\",\n"
              "            \"failed_checks\": [],\n"
              "            \"non_gating_checks\": [],\n"
              "            \"error\": \"Input \\\"take 2.wav\\\" could not be opened\"\n"
              "        }\n"
              "    ],\n"
              "    \"other_files\": [\n"
              "]\n"
              "}\n");
}

TEST_F(ReadingRun, OnlyOneOtherFileReachesTheJson)
{
    temp.write("in/readme.html", OTHER_PAGE);
    expect_complete(0, "0 fathomix reports: 0 passed, 0 failed");
    EXPECT_EQ(temp.read("s.json"),
              "{\n"
              "    \"scanned_directory\": \"in\",\n"
              "    \"total_reports\": 0,\n"
              "    \"passed\": 0,\n"
              "    \"failed\": 0,\n"
              "    \"errored\": 0,\n"
              "    \"reports\": [\n"
              "],\n"
              "    \"other_files\": [\n"
              "        { \"relative_path\": \"readme.html\", \"reason\": \"not_analyze_report\" }\n"
              "    ]\n"
              "}\n");
}

TEST_F(ReadingRun, AFifoDoesNotHoldUpTheRunAndIsUnreadable)
{
    temp.write("in/a.html", passed_report());
    ASSERT_EQ(mkfifo(temp.path("in/x.html").c_str(), 0666), 0);
    expect_complete(1, "1 fathomix reports: 1 passed, 0 failed");
    EXPECT_TRUE(
        json_has("        { \"relative_path\": \"x.html\", \"reason\": \"unreadable\" }\n"));
}

TEST_F(ReadingRun, ASocketIsUnreadable)
{
    const int socket_file = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(socket_file, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    temp.path("in/x.html").copy(address.sun_path, sizeof address.sun_path - 1);
    const int bound =
        bind(socket_file, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    close(socket_file);
    ASSERT_EQ(bound, 0);
    expect_complete(1, "0 fathomix reports: 0 passed, 0 failed");
    EXPECT_TRUE(
        json_has("        { \"relative_path\": \"x.html\", \"reason\": \"unreadable\" }\n"));
}

TEST_F(ReadingRun, OneThousandReportsAreCounted)
{
    for (int i = 0; i < 1000; ++i) {
        temp.write("in/" + std::to_string(i % 7) + "/" + std::to_string(i) + ".html",
                   i % 10 == 0 ? failed_report() : passed_report());
    }
    expect_complete(1, "1000 fathomix reports: 900 passed, 100 failed");
}

TEST_F(ReadingRun, TheInputFilesAreLeftAsTheyAre)
{
    temp.write("in/a.html", FULL_FAILED_REPORT);
    temp.write("in/b.html", errored_report("x"));
    temp.write("in/notes.txt", "notes");
    expect_complete(1, "2 fathomix reports: 0 passed, 1 failed, 1 errored");
    EXPECT_EQ(temp.names(),
              (Names{"in", "in/a.html", "in/b.html", "in/notes.txt", "s.html", "s.json"}));
    EXPECT_EQ(temp.read("in/a.html"), FULL_FAILED_REPORT);
    EXPECT_EQ(temp.read("in/b.html"), errored_report("x"));
    EXPECT_EQ(temp.read("in/notes.txt"), "notes");
}

TEST_F(ReadingRun, TheJsonListsTheReportsInTheOrderOfTheListing)
{
    for (int i = 0; i < 40; ++i) {
        temp.write("in/r" + std::to_string(i * 7 % 40) + ".html", passed_report());
    }
    std::string expected;
    for (const auto& entry : std::filesystem::directory_iterator(temp.path("in"))) {
        expected += entry.path().filename().string() + "\n";
    }
    expect_complete(0, "40 fathomix reports: 40 passed, 0 failed");
    const std::string key = "\"relative_path\": \"";
    const std::string json = temp.read("s.json");
    std::string order;
    for (std::size_t at = json.find(key); at != json.npos; at = json.find(key, at + 1)) {
        const std::size_t start = at + key.size();
        order += json.substr(start, json.find('"', start) - start) + "\n";
    }
    EXPECT_EQ(order, expected);
}
