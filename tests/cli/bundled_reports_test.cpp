// The page and the JSON of the bundled reports, compared with golden files that a
// person has read. tools/update/golden writes those anew.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"

namespace {

namespace fs = std::filesystem;

const std::string GOLDEN_FOLDER = std::string(FTHSUMMARY_SOURCE_FOLDER) + "/tests/cli/golden/";

// The time of generation is the one thing on the page that differs between runs.
std::string normalise_page(const std::string& page)
{
    static const std::regex TIME(
        "summary generated [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} UTC</span>");
    return std::regex_replace(page, TIME, "summary generated TIME</span>");
}

// The order of the reports is that in which the file system lists them, so their
// objects are compared in the order of their texts.
std::string normalise_json(const std::string& json)
{
    static const std::regex REPORT("        \\{\n(            .*\n)+        \\}");
    std::vector<std::string> reports;
    for (std::sregex_iterator at(json.begin(), json.end(), REPORT), end; at != end; ++at) {
        reports.push_back(at->str());
    }
    std::sort(reports.begin(), reports.end());
    std::string sorted = std::regex_replace(json, REPORT, "\x01");
    for (const std::string& report : reports) {
        sorted.replace(sorted.find('\x01'), 1, report);
    }
    return sorted;
}

void compare_with_golden(const std::string& name, const std::string& actual)
{
    const std::string path = GOLDEN_FOLDER + name;
    if (std::getenv("FTHSUMMARY_UPDATE_GOLDEN") != nullptr) {
        fs::create_directories(GOLDEN_FOLDER);
        std::ofstream(path, std::ios::binary) << actual;
        FAIL() << path << " written anew: read the difference and run again";
    }
    EXPECT_EQ(actual, read_file(path));
}

class BundledReports : public testing::Test
{
protected:
    void SetUp() override
    {
        fs::copy(std::string(FTHSUMMARY_SOURCE_FOLDER) + "/examples/reports",
                 folder_.path("reports"), fs::copy_options::recursive);
        result_ = run_in(folder_, {"--input", "reports", "-o", "out/summary.html", "--json"});
    }

    TempFolder folder_;
    ProcessResult result_;
};

TEST_F(BundledReports, GiveTheClosingLinesAndTheStatusOfAFailedSuite)
{
    expect_run(result_, 1,
               wrote_with_json("out/summary.html", "out/summary.json",
                               {.passed = 8, .failed = 6, .errored = 3}),
               "");
}

TEST_F(BundledReports, GiveTheGoldenPage)
{
    compare_with_golden("summary.html", normalise_page(folder_.read("out/summary.html")));
}

TEST_F(BundledReports, GiveTheGoldenJson)
{
    compare_with_golden("summary.json", normalise_json(folder_.read("out/summary.json")));
}

} // namespace
