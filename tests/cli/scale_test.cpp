// The built program on as many files as a suite may ever have. tools/deep/large does
// the same with a million names.

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "cli/process_limits.h"
#include "cli/program_run.h"
#include "cli/sample_reports.h"
#include "cli/small_files.h"

namespace {

constexpr unsigned FILES = 100000;
constexpr unsigned FOLDERS = 100;

// What a file is follows from its number alone: of 20, one ended in an error, one is
// no report, three failed and fifteen passed.
enum class Outcome
{
    Passed,
    Failed,
    Errored,
    Other
};

Outcome outcome_of(unsigned number)
{
    const unsigned turn = number % 20;
    return turn == 7    ? Outcome::Errored
           : turn == 13 ? Outcome::Other
           : turn < 3   ? Outcome::Failed
                        : Outcome::Passed;
}

std::string contents_of(unsigned number)
{
    switch (outcome_of(number)) {
    case Outcome::Passed:
        return passed_report();
    case Outcome::Failed:
        return failed_report();
    case Outcome::Errored:
        return errored_report("run " + std::to_string(number));
    case Outcome::Other:
        break;
    }
    return std::string(OTHER_PAGE);
}

std::string path_of(unsigned number)
{
    return "f" + std::to_string(number % FOLDERS) + "/report-" + std::to_string(number) + ".html";
}

std::string expected_line(unsigned number)
{
    switch (outcome_of(number)) {
    case Outcome::Passed:
        return "PASS";
    case Outcome::Failed:
        return "FAIL";
    case Outcome::Errored:
        return "ERROR run " + std::to_string(number);
    case Outcome::Other:
        break;
    }
    return "not_analyze_report";
}

// The text between two marks on a line, or nothing.
std::string_view between(std::string_view line, std::string_view start, std::string_view end)
{
    const std::size_t at = line.find(start);
    if (at == std::string_view::npos) {
        return {};
    }
    line.remove_prefix(at + start.size());
    return line.substr(0, line.find(end));
}

unsigned number_in(std::string_view path)
{
    unsigned number = FILES;
    const std::string_view digits = between(path, "/report-", ".html");
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

std::vector<std::string_view> lines_of(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        lines.push_back(text.substr(0, text.find('\n')));
        text.remove_prefix(std::min(lines.back().size() + 1, text.size()));
    }
    return lines;
}

// What the JSON says of each file, by its number; a file that it names twice, or that
// is not there, is a failure of its own.
std::vector<std::string> read_back(std::string_view json)
{
    std::vector<std::string> found(FILES);
    std::string* current = nullptr;
    for (const std::string_view line : lines_of(json)) {
        const std::string_view path = between(line, "\"relative_path\": \"", "\"");
        if (!path.empty()) {
            const unsigned number = number_in(path);
            if (number >= FILES || path != path_of(number) || !found[number].empty()) {
                ADD_FAILURE() << "a wrong or second " << path;
                break;
            }
            current = &found[number];
            *current = between(line, "\"reason\": \"", "\"");
        } else if (current != nullptr) {
            *current += between(line, "\"verdict\": \"", "\"");
            const std::string_view error = between(line, "\"error\": \"", "\"");
            *current += error.empty() ? "" : " " + std::string(error);
        }
    }
    return found;
}

// The rows of the page's three tables, in their order: number, path as linked, badge.
struct Row
{
    std::uint64_t number;
    std::string_view link;
    std::string_view badge;
};

std::vector<Row> rows_of(std::string_view page)
{
    std::vector<Row> rows;
    for (const std::string_view line : lines_of(page)) {
        const std::string_view link = between(line, "<a href=\"in/", "\"");
        if (line.starts_with("<tr><td>") && !link.empty()) {
            const std::string_view digits = between(line, "<tr><td>", "<");
            Row row = {0, link, between(line, "<span class=\"badge ", "<")};
            std::from_chars(digits.data(), digits.data() + digits.size(), row.number);
            rows.push_back(row);
        }
    }
    return rows;
}

void expect_rows(const std::vector<Row>& rows)
{
    ASSERT_EQ(rows.size(), 95000U);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ASSERT_EQ(rows[i].number, i + 1);
        const Outcome outcome = outcome_of(number_in(rows[i].link));
        ASSERT_EQ(rows[i].badge, i < 5000    ? "fail\">ERROR"
                                 : i < 20000 ? "fail\">FAIL"
                                             : "pass\">PASS");
        ASSERT_EQ(outcome, i < 5000    ? Outcome::Errored
                           : i < 20000 ? Outcome::Failed
                                       : Outcome::Passed);
        const bool first_of_its_table = i == 0 || i == 5000 || i == 20000;
        ASSERT_TRUE(first_of_its_table || rows[i - 1].link < rows[i].link) << i;
    }
}

class Scale : public testing::Test
{
protected:
    // Writes the file of this number, or gives another name to one of the same contents.
    void write_or_name(unsigned number)
    {
        const Outcome outcome = outcome_of(number);
        const std::string path = temp.path("in/" + path_of(number));
        std::string& same = latest_[static_cast<unsigned>(outcome)];
        if (outcome == Outcome::Errored || number % 1000 < 20) {
            same = path;
            write_small_file(path, contents_of(number));
        } else {
            name_again(same, path);
        }
    }

    TempFolder temp;

private:
    std::array<std::string, 4> latest_; // the last file written, by its outcome
};

} // namespace

TEST_F(Scale, AHundredThousandReportsAreCountedShownAndWrittenAsJsonEachByItsOwnVerdict)
{
    for (unsigned folder = 0; folder < FOLDERS; ++folder) {
        temp.make_folder("in/f" + std::to_string(folder));
    }
    for (unsigned number = 0; number < FILES; ++number) {
        write_or_name(number);
    }

    expect_run(run_in(temp, {"--input", "in", "-o", "s.html", "--json"}), 1,
               "wrote s.html (95000 fathomix reports: 75000 passed, 15000 failed, 5000 errored) + "
               "json\nwrote s.json\n",
               "");

    const std::string json = temp.read("s.json");
    EXPECT_TRUE(json.starts_with("{\n"
                                 "    \"scanned_directory\": \"in\",\n"
                                 "    \"total_reports\": 95000,\n"
                                 "    \"passed\": 75000,\n"
                                 "    \"failed\": 15000,\n"
                                 "    \"errored\": 5000,\n"));
    const std::vector<std::string> found = read_back(json);
    for (unsigned number = 0; number < FILES; ++number) {
        ASSERT_EQ(found[number], expected_line(number)) << path_of(number);
    }

    // What it needs of the stack does not grow with the number of reports.
    const ProcessOptions small_stack = {
        .folder = temp.path(), .before_exec = [] { limit(RLIMIT_STACK, rlim_t{256} * 1024); }};
    EXPECT_EQ(run_fthsummary({"--input", "in", "-o", "small.html", "--json"}, small_stack).status,
              1);
    EXPECT_TRUE(temp.read("small.json") == json);

    const std::string page = temp.read("s.html");
    expect_whole_page(page);
    expect_rows(rows_of(page));
    EXPECT_NE(page.find("<div class=\"k\">Total Reports</div>\n<div class=\"v\">95000</div>"),
              page.npos);
}

// Most folders hold more than reports: what is none by its name must cost nothing but
// its place in the listing.
TEST_F(Scale, AFolderOfAHundredThousandNamesIsSearchedForItsFewReports)
{
    temp.make_folder("in");
    std::string plain;
    for (unsigned number = 0; number < FILES; ++number) {
        const std::string name = temp.path("in/" + std::to_string(number));
        if (number % 1000 == 999) {
            write_small_file(name + ".html", number == 54999 ? failed_report() : passed_report());
        } else if (number % 1000 == 0) {
            write_small_file(plain = name + ".wav", "");
        } else {
            name_again(plain, name + (number % 2 == 0 ? ".htmlx" : ".wav"));
        }
    }
    expect_run(run_in(temp, {"--input", "in", "-o", "s.html", "--json"}), 1,
               "wrote s.html (100 fathomix reports: 99 passed, 1 failed) + json\nwrote s.json\n",
               "");
    const std::string page = temp.read("s.html");
    expect_whole_page(page);
    EXPECT_NE(page.find("<p class=\"compare-table-title\">Failed</p>\n"), page.npos);
    EXPECT_NE(page.find("<tr><td>1</td><td><a href=\"in/54999.html\">54999</a></td>"), page.npos);
    EXPECT_EQ(rows_of(page).size(), 100U);
}
