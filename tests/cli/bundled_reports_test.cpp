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

#include "support/process.h"
#include "support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

const std::string GOLDEN_FOLDER = std::string(FTHSUMMARY_SOURCE_FOLDER) + "/tests/cli/golden/";

constexpr char CLOSING_LINES[] =
    "wrote out/summary.html (17 fathomix reports: 8 passed, 6 failed, 3 errored) + json\n"
    "wrote out/summary.json\n";

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
    const std::string array_start = "    \"reports\": [\n";
    const std::string array_end = "\n    ],\n    \"other_files\": [\n";
    const std::string separator = ",\n        {\n";
    const std::size_t start = json.find(array_start);
    const std::size_t end = json.find(array_end);
    if (start == std::string::npos || end == std::string::npos) {
        return json;
    }
    std::string objects =
        ",\n" + json.substr(start + array_start.size(), end - start - array_start.size());
    std::vector<std::string> sorted;
    while (!objects.empty()) {
        const std::size_t next = std::min(objects.find(separator, 1), objects.size());
        sorted.push_back(objects.substr(0, next));
        objects.erase(0, next);
    }
    std::sort(sorted.begin(), sorted.end());
    std::string reports;
    for (const std::string& object : sorted) {
        reports += object;
    }
    reports.erase(0, 2); // the comma and line feed before the first object
    return json.substr(0, start) + array_start + reports + json.substr(end);
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
        ProcessOptions options;
        options.folder = folder_.path();
        result_ =
            run_fthsummary({"--input", "reports", "-o", "out/summary.html", "--json"}, options);
    }

    TempFolder folder_;
    ProcessResult result_;
};

TEST_F(BundledReports, GiveTheClosingLinesAndTheStatusOfAFailedSuite)
{
    EXPECT_EQ(result_.status, 1);
    EXPECT_EQ(result_.errors, "");
    EXPECT_EQ(result_.output, CLOSING_LINES);
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
