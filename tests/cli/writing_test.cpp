// What the built program leaves behind: paths, contents, messages, and writes that
// fail in every way that a system can make them fail.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/expected_texts.h"
#include "cli/program_run.h"
#include "cli/sample_reports.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

// "in" holds one passed report and one failed one, so that the status of a
// complete run is 1 and differs from that of a program that forgot its results.
class Writing : public testing::Test
{
protected:
    void SetUp() override
    {
        temp.write("in/a.html", passed_report());
        temp.write("in/b.html", failed_report());
    }

    ProcessResult run(const std::string& page)
    {
        return run_in(temp, {"--input", "in", "-o", page});
    }

    ProcessResult run_with_json(const std::string& page)
    {
        return run_in(temp, {"--input", "in", "-o", page, "--json"});
    }

    static std::string wrote(const std::string& page)
    {
        return "wrote " + page + " (2 fathomix reports: 1 passed, 1 failed)\n";
    }

    static std::string wrote(const std::string& page, const std::string& json)
    {
        return "wrote " + page + " (2 fathomix reports: 1 passed, 1 failed) + json\nwrote " + json +
               "\n";
    }

    // Runs with JSON and expects both files at these paths.
    void expect_both(const std::string& page, const std::string& json)
    {
        SCOPED_TRACE(page);
        expect_run(run_with_json(page), 1, wrote(page, json), "");
        expect_whole_page(written(page));
        expect_whole_json(written(json));
    }

    // The file at this path, which may be too long once the temporary folder's own
    // path stands before it.
    std::string written(const std::string& path) const
    {
        return temp.read(fs::path(path).lexically_normal().string());
    }

    static void expect_whole_json(const std::string& json)
    {
        EXPECT_TRUE(json.starts_with("{\n    \"scanned_directory\": \"in\",\n"));
        EXPECT_TRUE(json.ends_with("    \"other_files\": [\n]\n}\n"));
    }

    // Everything in the temporary folder but the input.
    Names outputs() const
    {
        Names names = temp.names();
        std::erase_if(names, [](const std::string& name) { return name.starts_with("in"); });
        return names;
    }

    TempFolder temp;
};

mode_t mode_of(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

} // namespace

TEST_F(Writing, ThePageAloneWithoutJson)
{
    expect_run(run("s.html"), 1, wrote("s.html"), "");
    EXPECT_EQ(outputs(), Names{"s.html"});
    expect_whole_page(temp.read("s.html"));
}

TEST_F(Writing, TheJsonFileStandsBesideThePage)
{
    expect_both("s.html", "s.json");
    EXPECT_EQ(outputs(), (Names{"s.html", "s.json"}));
}

TEST_F(Writing, JsonPathsFollowTheFourEndings)
{
    expect_both("1.html", "1.json");
    expect_both("2.HTML", "2.json");
    expect_both("3.htm", "3.json");
    expect_both("4.HTM", "4.json");
    expect_both("5.Html", "5.Html.json");
    expect_both("6.hTm", "6.hTm.json");
    expect_both("7", "7.json");
    expect_both("8.txt", "8.txt.json");
    expect_both("html", "html.json");
    expect_both(".html", ".json");
    expect_both("9.html/x", "9.html/x.json");
}

TEST_F(Writing, ThePathsAreShownByteForByte)
{
    const std::string page = "%s%n '\"\t\n\x01\xff.html";
    const std::string json = "%s%n '\"\t\n\x01\xff.json";
    expect_both(page, json);
    EXPECT_EQ(outputs(), (Names{page, json}));
}

TEST_F(Writing, MissingFoldersAreCreated)
{
    expect_both("out/sub/s.html", "out/sub/s.json");
    EXPECT_EQ(outputs(), (Names{"out", "out/sub", "out/sub/s.html", "out/sub/s.json"}));
}

TEST_F(Writing, AnAbsolutePageIsWritten)
{
    expect_run(run_with_json(temp.path("x/s.html")), 1,
               wrote(temp.path("x/s.html"), temp.path("x/s.json")), "");
    EXPECT_EQ(outputs(), (Names{"x", "x/s.html", "x/s.json"}));
}

TEST_F(Writing, BackslashesMakeFoldersButThePageIsWrittenAsTyped)
{
    expect_both("a\\b\\s.html", "a\\b\\s.json");
    EXPECT_EQ(outputs(), (Names{"a", "a\\b", "a\\b\\s.html", "a\\b\\s.json"}));
    EXPECT_TRUE(fs::is_directory(temp.path("a")));
    EXPECT_TRUE(fs::is_directory(temp.path("a\\b")));
    EXPECT_TRUE(fs::is_regular_file(temp.path("a\\b\\s.html")));
}

TEST_F(Writing, ADrivePrefixIsNeverCreatedOnTheWay)
{
    expect_run(run_with_json("C:/x/y.html"), 1, "", folder_message("C:/x/y.html"));
    EXPECT_EQ(outputs(), Names{});
}

TEST_F(Writing, ADrivePrefixWithBackslashesIsAnOrdinaryName)
{
    expect_both("C:\\x\\s.html", "C:\\x\\s.json");
    EXPECT_EQ(outputs(), (Names{"C:\\x", "C:\\x\\s.html", "C:\\x\\s.json"}));
}

TEST_F(Writing, DoubledSeparatorsAreHarmless)
{
    expect_both("out//sub///s.html", "out//sub///s.json");
    EXPECT_EQ(outputs(), (Names{"out", "out/sub", "out/sub/s.html", "out/sub/s.json"}));
}

TEST_F(Writing, AFileWhereTheFolderShouldBeMakesThePageUnwritable)
{
    temp.write("file", "kept");
    expect_run(run_with_json("file/s.html"), 1, "", write_message("file/s.html"));
    EXPECT_EQ(temp.read("file"), "kept");
}

TEST_F(Writing, AFileFurtherUpMakesTheFolderImpossible)
{
    temp.write("file", "kept");
    expect_run(run_with_json("file/sub/s.html"), 1, "", folder_message("file/sub/s.html"));
    EXPECT_EQ(temp.read("file"), "kept");
}

TEST_F(Writing, FoldersAboveTheFailingOneStay)
{
    const std::string page = "out/" + std::string(256, 'x') + "/s.html";
    expect_run(run_with_json(page), 1, "", folder_message(page));
    EXPECT_EQ(outputs(), Names{"out"});
}

TEST_F(Writing, AnEmptyPagePathCannotBeWritten)
{
    expect_run(run_with_json(""), 1, "", write_message(""));
    EXPECT_EQ(outputs(), Names{});
}

TEST_F(Writing, APagePathWithATrailingSlashMakesTheFolderAndCannotBeWritten)
{
    expect_run(run_with_json("new/"), 1, "", write_message("new/"));
    EXPECT_EQ(outputs(), Names{"new"});
}

TEST_F(Writing, APagePathThatNamesAFolderCannotBeWritten)
{
    temp.make_folder("folder");
    for (const std::string& page : Names{"folder", "folder/", ".", "..", "/", "folder/.."}) {
        expect_run(run_with_json(page), 1, "", write_message(page));
    }
    EXPECT_EQ(outputs(), Names{"folder"});
}

TEST_F(Writing, AJsonPathThatNamesAFolderFailsAndThePageStays)
{
    temp.make_folder("s.json");
    expect_run(run_with_json("s.html"), 1, "", write_message("s.json"));
    EXPECT_EQ(outputs(), (Names{"s.html", "s.json"}));
    expect_whole_page(temp.read("s.html"));
}

// ---- The longest paths ----

namespace {

// "new/", as many "./" as it takes, and a name, of exactly this length together.
std::string page_of_length(std::size_t length, const std::string& name)
{
    std::string path = "new/";
    while (path.size() + 2 + name.size() <= length) {
        path += "./";
    }
    return path + std::string(length - path.size() - name.size(), 'x') + name;
}

} // namespace

TEST_F(Writing, APagePathOf4095CharactersIsWritten)
{
    const std::string page = page_of_length(4095, "s.html");
    ASSERT_EQ(page.size(), 4095U);
    expect_both(page, page.substr(0, 4090) + ".json");
}

TEST_F(Writing, APagePathOf4096CharactersFailsBeforeAFolderIsCreated)
{
    const std::string page = page_of_length(4096, "s.html");
    ASSERT_EQ(page.size(), 4096U);
    expect_run(run_with_json(page), 1, "", folder_message(page));
    EXPECT_EQ(outputs(), Names{});
    const std::string name(4096, 's');
    expect_run(run_with_json(name), 1, "", folder_message(name));
}

TEST_F(Writing, ANameOf4095CharactersPassesTheFoldersAndCannotBeWritten)
{
    const std::string name(4095, 's');
    expect_run(run_with_json(name), 1, "", write_message(name));
}

TEST_F(Writing, AJsonPathThatGrowsTooLongForTheSystemFailsAndThePageStays)
{
    const std::string htm = page_of_length(4095, "s.htm");
    expect_run(run_with_json(htm), 1, "", write_message(htm.substr(0, 4091) + ".json"));
    expect_whole_page(written(htm));
    const std::string plain = page_of_length(4095, "s");
    expect_run(run_with_json(plain), 1, "", write_message(plain + ".json"));
    expect_whole_page(written(plain));
}

TEST_F(Writing, ANameOf255BytesIsWrittenAndOneMoreIsNot)
{
    const std::string longest = std::string(250, 'n') + ".html";
    expect_both(longest, std::string(250, 'n') + ".json");
    const std::string longer = std::string(251, 'n') + ".html";
    expect_run(run_with_json(longer), 1, "", write_message(longer));
}

// ---- Older files, links and permissions ----

TEST_F(Writing, OlderFilesAreReplacedWholly)
{
    temp.write("s.html", std::string(1000000, 'x'));
    temp.write("s.json", std::string(1000000, 'x'));
    temp.chmod("s.html", 0600);
    fs::create_hard_link(temp.path("s.html"), temp.path("same"));
    expect_both("s.html", "s.json");
    EXPECT_LT(temp.read("s.html").size(), 1000000U);
    EXPECT_LT(temp.read("s.json").size(), 1000000U);
    EXPECT_EQ(temp.read("same"), temp.read("s.html"));
    EXPECT_EQ(mode_of(temp.path("s.html")), 0600U);
}

TEST_F(Writing, OutputsAreWrittenThroughLinks)
{
    temp.write("target page", "older");
    temp.link("target page", "s.html");
    temp.link("target json", "s.json");
    expect_both("s.html", "s.json");
    EXPECT_TRUE(fs::is_symlink(temp.path("s.html")));
    EXPECT_TRUE(fs::is_symlink(temp.path("s.json")));
    expect_whole_page(temp.read("target page"));
    expect_whole_json(temp.read("target json"));
}

TEST_F(Writing, FoldersAreReachedThroughLinks)
{
    temp.make_folder("real");
    temp.link("real", "link");
    expect_both("link/new/s.html", "link/new/s.json");
    EXPECT_EQ(outputs(), (Names{"link", "real", "real/new", "real/new/s.html", "real/new/s.json"}));
}

TEST_F(Writing, ADanglingLinkInTheFolderMakesThePageUnwritable)
{
    temp.link("nowhere", "link");
    expect_run(run_with_json("link/s.html"), 1, "", write_message("link/s.html"));
    EXPECT_FALSE(temp.exists("nowhere"));
}

TEST_F(Writing, NewFilesAndFoldersHeedTheUmask)
{
    struct Case
    {
        mode_t mask;
        mode_t folder;
        mode_t file;
    };
    for (const Case one : {Case{0, 0755, 0666}, Case{022, 0755, 0644}, Case{027, 0750, 0640},
                           Case{077, 0700, 0600}}) {
        fs::remove_all(temp.path("out"));
        const ProcessResult result = run_fthsummary(
            {"--input", "in", "-o", "out/sub/s.html", "--json"},
            {.folder = temp.path(), .before_exec = [mask = one.mask] { umask(mask); }});
        expect_run(result, 1, wrote("out/sub/s.html", "out/sub/s.json"), "");
        EXPECT_EQ(mode_of(temp.path("out")), one.folder);
        EXPECT_EQ(mode_of(temp.path("out/sub")), one.folder);
        EXPECT_EQ(mode_of(temp.path("out/sub/s.html")), one.file);
        EXPECT_EQ(mode_of(temp.path("out/sub/s.json")), one.file);
    }
}

TEST_F(Writing, AFolderThatMayNotBeWrittenInFails)
{
    temp.make_folder("closed");
    temp.chmod("closed", 0555);
    expect_run(run_as_ordinary_user(temp, {"--input", "in", "-o", "closed/s.html"}), 1, "",
               write_message("closed/s.html"));
    expect_run(run_as_ordinary_user(temp, {"--input", "in", "-o", "closed/new/s.html"}), 1, "",
               folder_message("closed/new/s.html"));
    EXPECT_EQ(outputs(), Names{"closed"});
}

TEST_F(Writing, APageThatMayNotBeWrittenKeepsItsContents)
{
    temp.write("s.html", "older page");
    temp.chmod("s.html", 0444);
    temp.chmod("", 0777);
    expect_run(run_as_ordinary_user(temp, {"--input", "in", "-o", "s.html", "--json"}), 1, "",
               write_message("s.html"));
    EXPECT_EQ(temp.read("s.html"), "older page");
    EXPECT_FALSE(temp.exists("s.json"));
}

TEST_F(Writing, AJsonFileThatMayNotBeWrittenKeepsItsContentsAndThePageStays)
{
    temp.write("s.json", "older json");
    temp.chmod("s.json", 0444);
    temp.chmod("", 0777);
    expect_run(run_as_ordinary_user(temp, {"--input", "in", "-o", "s.html", "--json"}), 1, "",
               write_message("s.json"));
    EXPECT_EQ(temp.read("s.json"), "older json");
    expect_whole_page(temp.read("s.html"));
}

// ---- Devices and limits ----

TEST_F(Writing, APageOnAFullDeviceIsReported)
{
    temp.link("/dev/full", "s.html");
    expect_run(run_with_json("s.html"), 1, "", write_message("s.html"));
    EXPECT_FALSE(temp.exists("s.json"));
}

// Far below the size of any stream buffer, which would hide the failure.
TEST_F(Writing, ASmallJsonFileOnAFullDeviceIsReportedAndThePageStays)
{
    temp.make_folder("empty");
    temp.link("/dev/full", "s.json");
    expect_run(run_in(temp, {"--input", "empty", "-o", "s.html", "--json"}), 1, "",
               write_message("s.json"));
    expect_whole_page(temp.read("s.html"));
}

TEST_F(Writing, ThePageCanGoToTheNullDevice)
{
    expect_run(run("/dev/null"), 1, wrote("/dev/null"), "");
}

TEST_F(Writing, ThePageCanGoToStandardOutputBeforeTheClosingLine)
{
    const ProcessResult result = run("/dev/stdout");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "");
    EXPECT_TRUE(result.output.starts_with("<!doctype html>\n"));
    EXPECT_TRUE(result.output.ends_with("</body>\n</html>\n" + wrote("/dev/stdout")));
}

namespace {

// The program itself has to deal with these signals, whatever the test inherited.
void default_signals()
{
    std::signal(SIGPIPE, SIG_DFL);
    std::signal(SIGXFSZ, SIG_DFL);
}

void limit_file_size(rlim_t bytes)
{
    default_signals();
    const rlimit limits = {bytes, bytes};
    if (setrlimit(RLIMIT_FSIZE, &limits) != 0) {
        _exit(126);
    }
}

} // namespace

TEST_F(Writing, APageBeyondTheFileSizeLimitIsReportedAndLeftCut)
{
    const ProcessResult result =
        run_fthsummary({"--input", "in", "-o", "s.html", "--json"},
                       {.folder = temp.path(), .before_exec = [] { limit_file_size(4096); }});
    expect_run(result, 1, "", write_message("s.html"));
    EXPECT_EQ(temp.read("s.html").size(), 4096U);
    EXPECT_FALSE(temp.exists("s.json"));
}

TEST_F(Writing, APageThatMayNotHoldOneByteIsReportedAndLeftEmpty)
{
    temp.write("s.html", "older page");
    const ProcessResult result =
        run_fthsummary({"--input", "in", "-o", "s.html"},
                       {.folder = temp.path(), .before_exec = [] { limit_file_size(0); }});
    expect_run(result, 1, "", write_message("s.html"));
    EXPECT_EQ(temp.read("s.html"), "");
}

// Control characters take six bytes in JSON and one in the page, so there is a
// limit that only the JSON file exceeds.
TEST_F(Writing, AJsonFileBeyondTheFileSizeLimitIsReportedAndThePageStays)
{
    for (int i = 0; i < 80; ++i) {
        temp.write("long/" + std::to_string(i) + ".html", errored_report(std::string(639, '\x01')));
    }
    const ProcessResult result =
        run_fthsummary({"--input", "long", "-o", "s.html", "--json"},
                       {.folder = temp.path(), .before_exec = [] { limit_file_size(200000); }});
    expect_run(result, 1, "", write_message("s.json"));
    expect_whole_page(temp.read("s.html"));
    EXPECT_EQ(temp.read("s.json").size(), 200000U);
}

// ---- A standard output that takes nothing ----

namespace {

void close_standard_output()
{
    close(STDOUT_FILENO);
}

void close_all_streams()
{
    close(STDIN_FILENO);
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
}

void fill_standard_output()
{
    dup2(open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
}

void break_standard_output()
{
    default_signals();
    int ends[2] = {};
    if (pipe(ends) != 0) {
        _exit(126);
    }
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
}

} // namespace

TEST_F(Writing, TheStatusStaysAndTheFilesAreWholeWhenStandardOutputTakesNothing)
{
    temp.write("passed/r.html", passed_report());
    for (void (*spoil)() :
         {close_standard_output, fill_standard_output, break_standard_output, close_all_streams}) {
        fs::remove(temp.path("s.html"));
        fs::remove(temp.path("s.json"));
        const ProcessOptions options = {.folder = temp.path(), .before_exec = spoil};
        expect_run(run_fthsummary({"--input", "in", "-o", "s.html", "--json"}, options), 1, "", "");
        expect_whole_page(temp.read("s.html"));
        expect_whole_json(temp.read("s.json"));
        expect_run(run_fthsummary({"--input", "passed", "-o", "s.html", "--json"}, options), 0, "",
                   "");
        expect_whole_page(temp.read("s.html"));
    }
}

TEST_F(Writing, AnErrorKeepsItsStatusWhenStandardErrorTakesNothing)
{
    const ProcessOptions options = {.folder = temp.path(),
                                    .before_exec = [] { close(STDERR_FILENO); }};
    expect_run(run_fthsummary({"--input", "nothing", "-o", "s.html"}, options), 1, "", "");
    expect_run(run_fthsummary({"--input", "in", "-o", "."}, options), 1, "", "");
}

// ---- System calls ----

namespace {

std::string find_strace()
{
    const char* const path = std::getenv("PATH");
    std::istringstream folders(path == nullptr ? "" : path);
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (access((folder + "/strace").c_str(), X_OK) == 0) {
            return folder + "/strace";
        }
    }
    return "";
}

// The lines of a trace that show a call on the file at this path.
Names calls_on(const std::string& trace, const std::string& path)
{
    Names calls;
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        if (line.find("<" + path + ">") != std::string::npos) {
            calls.push_back(line);
        }
    }
    return calls;
}

} // namespace

TEST_F(Writing, EachOutputFileIsHandedToTheSystemInOneCall)
{
    const std::string strace = find_strace();
    ASSERT_NE(strace, "") << "strace is missing: install it to run the tests";
    const ProcessResult result =
        run_process(strace,
                    {"-f", "-y", "-s", "0", "-e", "trace=write,writev,pwrite64,pwritev,pwritev2",
                     "-o", "trace", fthsummary_program(), "--input", "in", "-o", "s.html", "--json"},
                    {.folder = temp.path(), .environment = {"ASAN_OPTIONS=detect_leaks=0"}});
    expect_run(result, 1, wrote("s.html", "s.json"), "");
    const std::string trace = temp.read("trace");
    for (const char* name : {"s.html", "s.json"}) {
        const Names calls = calls_on(trace, temp.path(name));
        ASSERT_EQ(calls.size(), 1U) << trace;
        EXPECT_TRUE(calls[0].ends_with(" = " + std::to_string(temp.read(name).size()))) << calls[0];
    }
}
