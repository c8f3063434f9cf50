// What the built program leaves behind: paths, contents, messages, and writes that a
// device or a limit refuses.

#include <csignal>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
#include "cli/listed_files.h"
#include "cli/process_limits.h"
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
        return run_in(temp, {"--input", "in", "-o", page, "--json"});
    }

    // Expects a complete run and both files at these paths.
    void expect_both(const std::string& page, const std::string& json)
    {
        SCOPED_TRACE(page);
        expect_run(run(page), 1, wrote_with_json(page, json, {.passed = 1, .failed = 1}), "");
        expect_whole_page(written(page));
        EXPECT_EQ(paths_in(written(json)), (Names{"a.html", "b.html"}));
    }

    void expect_failure(const ProcessResult& result, const std::string& message,
                        const Names& left_behind)
    {
        expect_run(result, 1, "", message);
        EXPECT_EQ(outputs(), left_behind);
    }

    // The file at this path, which may be too long once the temporary folder's own
    // path stands before it.
    std::string written(const std::string& path) const
    {
        return temp.read(fs::path(path).lexically_normal().string());
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
    expect_run(run_in(temp, {"--input", "in", "-o", "s.html"}), 1,
               wrote("s.html", {.passed = 1, .failed = 1}), "");
    EXPECT_EQ(outputs(), Names{"s.html"});
    expect_whole_page(temp.read("s.html"));
}

TEST_F(Writing, TheJsonFileStandsBesideThePage)
{
    expect_both("s.html", "s.json");
    expect_both("1.HTM", "1.json");
    expect_both("2.Html", "2.Html.json");
    expect_both("3", "3.json");
    expect_both("--help", "--help.json");
    EXPECT_EQ(outputs(), (Names{"--help", "--help.json", "1.HTM", "1.json", "2.Html", "2.Html.json",
                                "3", "3.json", "s.html", "s.json"}));
}

TEST_F(Writing, ThePathsAreShownByteForByte)
{
    const std::string name = "%s%n '\"\t\n\x01\xff";
    expect_both(name + ".html", name + ".json");
}

TEST_F(Writing, LinksOfAPageInANewFolderLeadToTheReports)
{
    expect_both("new/folder/s.html", "new/folder/s.json");
    const Names links = links_in(temp.read("new/folder/s.html"));
    ASSERT_EQ(links.size(), 2U);
    EXPECT_TRUE(fs::equivalent(temp.path("new/folder/" + links[0]), temp.path("in/b.html")));
    EXPECT_TRUE(fs::equivalent(temp.path("new/folder/" + links[1]), temp.path("in/a.html")));
}

TEST_F(Writing, BackslashesMakeFoldersButThePageIsWrittenAsTyped)
{
    expect_both("a\\b\\s.html", "a\\b\\s.json");
    EXPECT_EQ(outputs(), (Names{"a", "a\\b", "a\\b\\s.html", "a\\b\\s.json"}));
    EXPECT_TRUE(fs::is_directory(temp.path("a\\b")));
    EXPECT_TRUE(fs::is_regular_file(temp.path("a\\b\\s.html")));
}

TEST_F(Writing, APagePathThatNamesNoFileCannotBeWritten)
{
    temp.make_folder("folder");
    temp.write("file", "kept");
    for (const std::string& page :
         Names{"folder", "folder/", ".", "..", "/", "folder/..", "", "file/s.html"}) {
        expect_failure(run(page), write_message(page), {"file", "folder"});
    }
    expect_failure(run("new/"), write_message("new/"), {"file", "folder", "new"});
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
    expect_both(page, page.substr(0, 4090) + ".json");
}

TEST_F(Writing, APagePathOf4096CharactersFailsBeforeAFolderIsCreated)
{
    for (const std::string& page : {page_of_length(4096, "s.html"), std::string(4096, 's')}) {
        expect_failure(run(page), folder_message(page), {});
    }
}

TEST_F(Writing, AJsonPathThatGrowsTooLongForTheSystemFailsAndThePageStays)
{
    const std::string htm = page_of_length(4095, "s.htm");
    expect_run(run(htm), 1, "", write_message(htm.substr(0, 4091) + ".json"));
    expect_whole_page(written(htm));
}

// ---- Older files ----

TEST_F(Writing, OlderFilesAreReplacedWhollyInPlace)
{
    temp.write("s.html", std::string(1000000, 'x'));
    temp.write("s.json", std::string(1000000, 'x'));
    temp.chmod("s.html", 0600);
    fs::create_hard_link(temp.path("s.html"), temp.path("same"));
    expect_both("s.html", "s.json");
    EXPECT_EQ(temp.read("same"), temp.read("s.html"));
    EXPECT_EQ(mode_of(temp.path("s.html")), 0600U);
}

// ---- Devices and limits ----

TEST_F(Writing, APageOnAFullDeviceIsReported)
{
    temp.link("/dev/full", "s.html");
    expect_run(run("s.html"), 1, "", write_message("s.html"));
    EXPECT_FALSE(temp.exists("s.json"));
}

TEST_F(Writing, ThePageCanGoToStandardOutputBeforeTheClosingLine)
{
    const ProcessResult result = run_in(temp, {"--input", "in", "-o", "/dev/stdout"});
    expect_run(result, 1, result.output, "");
    const std::string line = wrote("/dev/stdout", {.passed = 1, .failed = 1});
    ASSERT_TRUE(result.output.ends_with(line));
    expect_whole_page(result.output.substr(0, result.output.size() - line.size()));
}

// The program itself has to deal with the signal, whatever the test inherited.
TEST_F(Writing, APageBeyondTheFileSizeLimitIsReportedAndLeftCut)
{
    for (const rlim_t bytes : {rlim_t{4096}, rlim_t{0}}) {
        const auto limit_file_size = [bytes] {
            std::signal(SIGXFSZ, SIG_DFL);
            limit(RLIMIT_FSIZE, bytes);
        };
        const ProcessResult result =
            run_fthsummary({"--input", "in", "-o", "s.html", "--json"},
                           {.folder = temp.path(), .before_exec = limit_file_size});
        expect_failure(result, write_message("s.html"), {"s.html"});
        EXPECT_EQ(temp.read("s.html").size(), bytes);
    }
}
