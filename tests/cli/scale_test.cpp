// The built program on as many files as a suite may ever have. tools/deep/large does
// the same with a million names.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
#include "cli/listed_files.h"
#include "cli/process_limits.h"
#include "cli/sample_reports.h"

namespace {

// One folder of so many reports and as many other files, and links to it: as many files
// to the program, and a hundredth of the work to make and remove them.
constexpr unsigned FILES = 1000;
constexpr unsigned FOLDERS = 100;

// What a file is follows from its number alone: of 20, one ended in an error, one is
// no report, three failed and fifteen passed.
ListedFile file_of(unsigned number)
{
    const std::string name = "report-" + std::to_string(number) + ".html";
    switch (number % 20) {
    case 0:
    case 1:
    case 2:
        return {name, "FAIL", ""};
    case 7:
        return {name, "ERROR", "run " + std::to_string(number)};
    case 13:
        return {name, "not_analyze_report", ""};
    default:
        return {name, "PASS", ""};
    }
}

std::string contents_of(const ListedFile& file)
{
    return file.outcome == "PASS"    ? passed_report()
           : file.outcome == "FAIL"  ? failed_report()
           : file.outcome == "ERROR" ? errored_report(file.error)
                                     : std::string(OTHER_PAGE);
}

std::vector<ListedFile> sorted(std::vector<ListedFile> files)
{
    std::ranges::sort(files, {}, &ListedFile::path);
    return files;
}

// Where the rows of these files lead, in their order: a table for each outcome.
std::vector<std::string> rows_for(const std::vector<ListedFile>& files)
{
    std::vector<std::string> rows;
    for (const std::string_view outcome : {"ERROR", "FAIL", "PASS"}) {
        for (const ListedFile& file : files) {
            if (file.outcome == outcome) {
                rows.push_back("in/" + file.path);
            }
        }
    }
    return rows;
}

} // namespace

// What it needs of the stack does not grow with the number of reports.
TEST(Scale, AHundredThousandFilesAreReadAndListedEachByItsOwnVerdictOnASmallStack)
{
    const TempFolder temp;
    std::vector<ListedFile> expected;
    for (unsigned number = 0; number < FILES; ++number) {
        const ListedFile file = file_of(number);
        temp.write("in/f0/" + file.path, contents_of(file));
        temp.write("in/f0/" + file.path + "x", "");
        for (unsigned folder = 0; folder < FOLDERS; ++folder) {
            expected.push_back(file);
            expected.back().path.insert(0, "f" + std::to_string(folder) + "/");
        }
    }
    for (unsigned folder = 1; folder < FOLDERS; ++folder) {
        temp.link("f0", "in/f" + std::to_string(folder));
    }
    expected = sorted(expected);

    const ProcessResult result = run_fthsummary(
        {"--input", "in", "-o", "s.html", "--json"},
        {.folder = temp.path(), .before_exec = [] { limit(RLIMIT_STACK, SMALL_STACK); }});
    expect_run(
        result, 1,
        wrote_with_json("s.html", "s.json", {.passed = 75000, .failed = 15000, .errored = 5000}),
        "");
    EXPECT_TRUE(sorted(files_in(temp.read("s.json"))) == expected);
    const std::string page = temp.read("s.html");
    expect_whole_page(page);
    EXPECT_TRUE(links_in(page) == rows_for(expected));
}
