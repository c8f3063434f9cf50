// Which files the built program takes up, told by its JSON file.

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "support/deep_tree.h"
#include "cli/expected_texts.h"
#include "cli/process_limits.h"
#include "cli/program_run.h"
#include "cli/sample_reports.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

// The paths of a JSON file's reports and other files, sorted; for names that JSON
// does not escape.
Names listed_in(const std::string& json)
{
    const std::string key = "\"relative_path\": \"";
    Names paths;
    for (std::size_t at = json.find(key); at != std::string::npos; at = json.find(key, at)) {
        at += key.size();
        paths.push_back(json.substr(at, json.find('"', at) - at));
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

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
        return listed_in(temp.read(json));
    }

    Names listed_by_ordinary_user()
    {
        temp.chmod("", 0777);
        const ProcessResult result =
            run_as_ordinary_user(temp, {"--input", "in", "-o", "s.html", "--json"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.errors, "");
        return listed_in(temp.read("s.json"));
    }

    TempFolder temp;
};

} // namespace

TEST_F(Walking, TheEndingsCountInEveryCase)
{
    for (const char* name : {"Report.HTML", "x.Htm", ".hidden.html", ".htm", ".html", "a.hTmL",
                             "b.HTM", "a.xhtml", "page.html.bak", "notes.txt", "html", "htm",
                             "x.htmlx", "x.ht", "x.html ", "x.shtml", "xhtm"}) {
        temp.write(std::string("in/") + name, passed_report());
    }
    EXPECT_EQ(listed(),
              (Names{".hidden.html", ".htm", ".html", "Report.HTML", "a.hTmL", "b.HTM", "x.Htm"}));
}

TEST_F(Walking, FilesAtEveryDepthAndInHiddenFoldersAreListed)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/sub/b.html", passed_report());
    temp.write("in/sub/sub/sub/c.html", passed_report());
    temp.write("in/.hidden/d.html", passed_report());
    temp.write("in/.hidden/.deeper/.e.html", passed_report());
    temp.write("in/.../f.html", passed_report());
    EXPECT_EQ(listed(), (Names{".../f.html", ".hidden/.deeper/.e.html", ".hidden/d.html", "a.html",
                               "sub/b.html", "sub/sub/sub/c.html"}));
}

TEST_F(Walking, AFolderNamedLikeAReportIsWalkedIntoAndNotListed)
{
    temp.write("in/old.html/r.html", passed_report());
    temp.make_folder("in/empty.htm");
    EXPECT_EQ(listed(), Names{"old.html/r.html"});
}

TEST_F(Walking, ALinkToAReportIsListedUnderItsOwnName)
{
    temp.write("real.txt", failed_report());
    temp.link("../real.txt", "in/link.html");
    temp.write("in/a.html", passed_report());
    temp.link("a.html", "in/b.html");
    temp.link("a.html", "in/c.txt");
    EXPECT_EQ(listed(), (Names{"a.html", "b.html", "link.html"}));
    EXPECT_NE(temp.read("s.json").find("\"failed\": 1,"), std::string::npos);
}

TEST_F(Walking, DanglingAndCircularLinksAreSkipped)
{
    temp.link("nowhere", "in/dangling.html");
    temp.link("circle.html", "in/circle.html");
    temp.link("two.html", "in/one.html");
    temp.link("one.html", "in/two.html");
    expect_run(run_in(temp, {"--input", "in", "-o", "s.html"}), 0,
               "wrote s.html (0 fathomix reports: 0 passed, 0 failed)\n", "");
}

TEST_F(Walking, ALinkToAFolderIsWalkedInto)
{
    temp.write("elsewhere/r.html", passed_report());
    temp.link("../elsewhere", "in/link");
    temp.link("../elsewhere", "in/link.html");
    EXPECT_EQ(listed(), (Names{"link.html/r.html", "link/r.html"}));
}

// The system follows 40 links in one path, so the report is met 41 times.
TEST_F(Walking, ALinkToItsOwnFolderListsEachReportFortyOneTimes)
{
    temp.write("in/r.html", passed_report());
    temp.link(".", "in/loop");
    expect_run(run_in(temp, {"--input", "in", "-o", "s.html", "--json"}), 0,
               "wrote s.html (41 fathomix reports: 41 passed, 0 failed) + json\nwrote s.json\n",
               "");
    Names expected;
    std::string prefix;
    for (int i = 0; i < 41; ++i) {
        expected.push_back(prefix + "r.html");
        prefix += "loop/";
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(listed_in(temp.read("s.json")), expected);
}

TEST_F(Walking, ThePageInsideTheInputIsNotListedOnTheSecondRun)
{
    temp.write("in/r.html", passed_report());
    const std::string lines =
        "wrote in/s.html (1 fathomix reports: 1 passed, 0 failed) + json\nwrote in/s.json\n";
    for (int i = 0; i < 3; ++i) {
        expect_run(run_in(temp, {"--input", "in", "-o", "in/s.html", "--json"}), 0, lines, "");
        EXPECT_EQ(listed_in(temp.read("in/s.json")), Names{"r.html"});
        EXPECT_NE(temp.read("in/s.html").find("<div class=\"v\">PASS</div>"), std::string::npos);
    }
}

TEST_F(Walking, APageOfAnotherNameInsideTheInputIsListedAsAnOtherFile)
{
    temp.write("in/r.html", passed_report());
    EXPECT_EQ(listed("in/first.html", "in/first.json"), Names{"r.html"});
    EXPECT_EQ(listed("in/second.html", "in/second.json"), (Names{"first.html", "r.html"}));
    EXPECT_NE(
        temp.read("in/second.json")
            .find("{ \"relative_path\": \"first.html\", \"reason\": \"not_analyze_report\" }"),
        std::string::npos);
}

TEST_F(Walking, ThePageIsRecognisedHoweverItsPathIsTyped)
{
    temp.write("in/r.html", passed_report());
    temp.make_folder("in/sub");
    temp.link("in", "alias");
    for (const std::string& page :
         Names{"in/s.html", "./in/s.html", "in//s.html", "in/./s.html", "in/sub/../s.html",
               "alias/s.html", temp.path("in/s.html"), temp.path("alias/../in/s.html")}) {
        SCOPED_TRACE(page);
        expect_run(run_in(temp, {"--input", "in", "-o", page}), 0,
                   "wrote " + page + " (1 fathomix reports: 1 passed, 0 failed)\n", "");
        EXPECT_EQ(listed("in/s.html", "in/s.json"), Names{"r.html"});
        EXPECT_EQ(listed(page, "in/s.json"), Names{"r.html"});
    }
}

TEST_F(Walking, ThePageIsRecognisedHoweverTheInputIsTyped)
{
    temp.write("in/r.html", passed_report());
    temp.link("in", "alias");
    for (const std::string& input : Names{"in", "in/", "./in//.", "alias", temp.path("in")}) {
        SCOPED_TRACE(input);
        for (int i = 0; i < 2; ++i) {
            expect_run(run_in(temp, {"--input", input, "-o", "in/s.html"}), 0,
                       "wrote in/s.html (1 fathomix reports: 1 passed, 0 failed)\n", "");
        }
    }
}

TEST_F(Walking, EverySymbolicNameOfThePageIsSkipped)
{
    temp.write("in/r.html", passed_report());
    temp.link("sub/s.html", "in/link.html");
    temp.link("link.html", "in/link2.htm");
    temp.link("sub", "in/alias");
    temp.link("../sub/s.html", "in/other/S.HTML");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(listed("in/sub/s.html", "in/sub/s.json"), Names{"r.html"});
    }
}

TEST_F(Walking, ThePageIsRecognisedThroughALinkThatIsWrittenThrough)
{
    temp.write("in/r.html", passed_report());
    temp.link("in/target.html", "link.html");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(listed("link.html", "link.json"), Names{"r.html"});
    }
    EXPECT_TRUE(fs::is_symlink(temp.path("link.html")));
    expect_whole_page(temp.read("in/target.html"));
}

TEST_F(Walking, AHardLinkToThePageIsStillListed)
{
    temp.write("in/r.html", passed_report());
    EXPECT_EQ(listed("in/s.html", "in/s.json"), Names{"r.html"});
    fs::create_hard_link(temp.path("in/s.html"), temp.path("in/hard.html"));
    EXPECT_EQ(listed("in/s.html", "in/s.json"), (Names{"hard.html", "r.html"}));
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
    expect_run(run_in(temp, {"--input", "in", "-o", "in/r.html"}), 0,
               "wrote in/r.html (0 fathomix reports: 0 passed, 0 failed)\n", "");
    expect_whole_page(temp.read("in/r.html"));
}

TEST_F(Walking, ASubFolderWithoutReadPermissionIsSkipped)
{
    temp.write("in/a.html", passed_report());
    temp.write("in/closed/b.html", failed_report());
    temp.write("in/unreadable/c.html", failed_report());
    temp.write("in/unsearchable/d.html", failed_report());
    temp.write("in/unsearchable/sub/e.html", failed_report());
    temp.chmod("in/closed", 0000);
    temp.chmod("in/unreadable", 0311);
    temp.chmod("in/unsearchable", 0644);
    EXPECT_EQ(listed_by_ordinary_user(), Names{"a.html"});
}

TEST_F(Walking, ALinkIntoAClosedFolderIsSkipped)
{
    temp.write("closed/r.html", failed_report());
    temp.link("../closed/r.html", "in/link.html");
    temp.link("../closed", "in/link");
    temp.write("in/a.html", passed_report());
    temp.chmod("closed", 0000);
    EXPECT_EQ(listed_by_ordinary_user(), Names{"a.html"});
}

TEST_F(Walking, AFolderThatMayBeSearchedAndReadButNotWrittenIsListed)
{
    temp.write("in/sub/b.html", passed_report());
    temp.chmod("in/sub", 0555);
    temp.chmod("in", 0555);
    EXPECT_EQ(listed_by_ordinary_user(), Names{"sub/b.html"});
}

// ---- Names that hold every byte ----

namespace {

constexpr unsigned LAST_BYTE = 0xFF;

std::string name_with(unsigned byte)
{
    return std::string("[") + static_cast<char>(byte) + "].html";
}

std::string in_json(unsigned byte)
{
    switch (byte) {
    case 0x09:
        return "\\t";
    case 0x0A:
        return "\\n";
    case 0x0D:
        return "\\r";
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    default:
        break;
    }
    if (byte < 0x20) {
        const std::string digits = "0123456789abcdef";
        return std::string("\\u00") + digits[byte / 16] + digits[byte % 16];
    }
    return std::string(1, static_cast<char>(byte));
}

std::string in_page(unsigned byte)
{
    switch (byte) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return std::string(1, static_cast<char>(byte));
    }
}

// A backslash separates components in links, so it comes out as a slash there.
std::string in_link(unsigned byte)
{
    return byte == '\\' ? "/" : in_page(byte);
}

std::string in_visible_path(unsigned byte)
{
    return byte == '\\' ? "\\<wbr>" : in_page(byte);
}

void write_every_name(const TempFolder& temp, std::string_view contents)
{
    for (unsigned byte = 1; byte <= LAST_BYTE; ++byte) {
        if (byte != '/') {
            temp.write("in/" + name_with(byte), contents);
        }
    }
}

} // namespace

TEST_F(Walking, ReportNamesOfEveryByteAppearInThePageInByteOrder)
{
    write_every_name(temp, passed_report());
    expect_run(run_in(temp, {"--input", "in", "-o", "s.html"}), 0,
               "wrote s.html (254 fathomix reports: 254 passed, 0 failed)\n", "");
    std::string rows;
    unsigned row = 0;
    for (unsigned byte = 1; byte <= LAST_BYTE; ++byte) {
        if (byte != '/') {
            rows += "<tr><td>" + std::to_string(++row) + "</td><td><a href=\"in/[" + in_link(byte) +
                    "].html\">[" + in_visible_path(byte) +
                    "]</a></td><td>&mdash;</td><td><span class=\"badge pass\">PASS</span></td>"
                    "<td>&mdash;</td></tr>\n";
        }
    }
    EXPECT_NE(temp.read("s.html").find("<tbody>\n" + rows + "</tbody>\n"), std::string::npos);
}

TEST_F(Walking, ReportNamesOfEveryByteAppearInTheJson)
{
    write_every_name(temp, passed_report());
    EXPECT_EQ(run_in(temp, {"--input", "in", "-o", "s.html", "--json"}).status, 0);
    const std::string json = temp.read("s.json");
    for (unsigned byte = 1; byte <= LAST_BYTE; ++byte) {
        if (byte != '/') {
            EXPECT_NE(
                json.find("            \"relative_path\": \"[" + in_json(byte) + "].html\",\n"),
                std::string::npos)
                << "byte " << byte;
        }
    }
}

TEST_F(Walking, OtherFilesNamedWithEveryByteAppearInPageAndJson)
{
    write_every_name(temp, OTHER_PAGE);
    expect_run(run_in(temp, {"--input", "in", "-o", "s.html", "--json"}), 0,
               "wrote s.html (0 fathomix reports: 0 passed, 0 failed) + json\nwrote s.json\n", "");
    const std::string page = temp.read("s.html");
    const std::string json = temp.read("s.json");
    for (unsigned byte = 1; byte <= LAST_BYTE; ++byte) {
        if (byte != '/') {
            EXPECT_NE(page.find("<tr><td>[" + in_visible_path(byte) + "].html</td></tr>\n"),
                      std::string::npos)
                << "byte " << byte;
            EXPECT_NE(json.find("        { \"relative_path\": \"[" + in_json(byte) +
                                "].html\", \"reason\": \"not_analyze_report\" }"),
                      std::string::npos)
                << "byte " << byte;
        }
    }
}

TEST_F(Walking, FolderNamesOfEveryByteAreWalkedInto)
{
    for (unsigned byte = 1; byte <= LAST_BYTE; ++byte) {
        if (byte != '/') {
            temp.write(std::string("in/[") + static_cast<char>(byte) + "]/r.html", passed_report());
        }
    }
    expect_run(run_in(temp, {"--input", "in", "-o", "s.html"}), 0,
               "wrote s.html (254 fathomix reports: 254 passed, 0 failed)\n", "");
}

TEST_F(Walking, AnInputNamedWithEveryByteIsShownInPageAndJson)
{
    std::string name;
    std::string shown_in_page;
    std::string shown_in_json;
    for (unsigned byte = 1; byte <= LAST_BYTE; ++byte) {
        if (byte != '/') {
            name += static_cast<char>(byte);
            shown_in_page += in_visible_path(byte);
            shown_in_json += in_json(byte);
        }
    }
    temp.write(name + "/r.html", passed_report());
    expect_run(run_in(temp, {"--input", name, "-o", "s.html", "--json"}), 0,
               "wrote s.html (1 fathomix reports: 1 passed, 0 failed) + json\nwrote s.json\n", "");
    EXPECT_NE(temp.read("s.html").find("<span class=\"fname\">" + shown_in_page + "</span>\n"),
              std::string::npos);
    EXPECT_TRUE(temp.read("s.json").starts_with("{\n    \"scanned_directory\": \"" + shown_in_json +
                                                "\",\n"));
}

TEST_F(Walking, ANameOf255BytesIsListed)
{
    const std::string name = std::string(250, 'n') + ".html";
    temp.write("in/" + name, passed_report());
    EXPECT_EQ(listed(), Names{name});
}

// ---- Deep trees ----

namespace {

constexpr rlim_t ORDINARY_STACK = 8388608; // bytes

} // namespace

// "in", 2,043 times "/d" and "/r.html" are 4,095 characters.
TEST_F(Walking, ATreeAsDeepAsPathsAllowIsReadWithinAnOrdinaryStack)
{
    const DeepTree tree(temp.path("in"), 2043);
    tree.write_innermost("r.html", passed_report());
    tree.write_innermost("rr.html", passed_report());
    const ProcessResult result = run_fthsummary({"--input", "in", "-o", "s.html", "--json"},
                                                {.folder = temp.path(), .before_exec = [] {
                                                     limit(RLIMIT_STACK, ORDINARY_STACK);
                                                     limit(RLIMIT_NOFILE, 4096);
                                                 }});
    expect_run(result, 0,
               "wrote s.html (1 fathomix reports: 1 passed, 0 failed) + json\nwrote s.json\n", "");
    EXPECT_EQ(listed_in(temp.read("s.json")), Names{repeated("d/", 2043) + "r.html"});
}

TEST_F(Walking, ATreeDeeperThanPathsAllowEndsTheDescentWithoutAWord)
{
    const DeepTree tree(temp.path("in"), 2100);
    tree.write_innermost("r.html", failed_report());
    temp.write("in/d/d/r.html", passed_report());
    const ProcessResult result =
        run_fthsummary({"--input", "in", "-o", "s.html"},
                       {.folder = temp.path(), .before_exec = [] { limit(RLIMIT_NOFILE, 4096); }});
    expect_run(result, 0, "wrote s.html (1 fathomix reports: 1 passed, 0 failed)\n", "");
}

TEST_F(Walking, WithFewDescriptorsADeepTreeIsReadAsFarAsItCanBeOpened)
{
    const DeepTree tree(temp.path("in"), 200);
    temp.write("in/r.html", passed_report());
    temp.write("in/" + repeated("d/", 10) + "r.html", passed_report());
    tree.write_innermost("r.txt", "");
    const ProcessResult result =
        run_fthsummary({"--input", "in", "-o", "s.html"},
                       {.folder = temp.path(), .before_exec = [] { limit(RLIMIT_NOFILE, 64); }});
    expect_run(result, 0, "wrote s.html (2 fathomix reports: 2 passed, 0 failed)\n", "");
}
