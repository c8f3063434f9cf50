// The page as a whole: its head, its top, and the order of the pieces that others write.
// What stands in the pieces is tested with the functions that write them.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "report/html_escape.h"
#include "summary/page_fragments.h"
#include "summary/page_model.h"
#include "summary/report_tables.h"
#include "summary/summary_page.h"
#include "support/temp_folder.h"

namespace {

constexpr const char* OUTPUT_PATH = "out/summary.html";

// Written from the folder in which in/ and out/ lie, so that links are relative, and
// while the clock stands still.
class SummaryPage : public testing::Test
{
protected:
    SummaryPage()
    {
        folder_.make_folder("in");
        folder_.make_folder("out");
    }

    std::string page_of(const SummaryModel& model) const
    {
        EXPECT_TRUE(write_summary_page(OUTPUT_PATH, model));
        return folder_.read(OUTPUT_PATH);
    }

private:
    const TempFolder folder_;
    const CurrentFolder current_{folder_.path()};
    const StoppedClock clock_;
};

const std::string HEAD = R"(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Fathomix Summary</title>
)";

const std::string ERRORED_STYLES = R"(<style>
.kpi-grid.with-errored { grid-template-columns: repeat(4, minmax(120px, 1fr)) minmax(200px, 1.4fr); }
@media (max-width: 720px) { .kpi-grid.with-errored { grid-template-columns: repeat(auto-fit, minmax(150px, 1fr)); } }
</style>
)";

const std::string TOP = R"(</head>
<body>
<div class="dash">
<div class="topbar">
<div class="brand">
<span class="glyph"><svg viewBox="0 0 24 24" fill="none" xmlns="http://www.w3.org/2000/svg"><circle cx="10" cy="10" r="6.3" stroke="white" stroke-width="1.7"/><path d="M4.6,10 L6.4,10 L7.8,6.5 L9.6,13.5 L11.2,7 L12.6,12 L14.4,12" stroke="white" stroke-width="1.8" stroke-linecap="round" stroke-linejoin="round" fill="none"/><line x1="14.46" y1="14.46" x2="19.6" y2="19.6" stroke="white" stroke-width="2.2" stroke-linecap="round"/></svg></span>
<span class="name">Fathomix Summary</span>
</div>
<div class="right">
<div class="meta"><b>v)";

const std::string BELOW_TOGGLE = R"(</div>
</div>
<div class="signal-row">
<div class="signal-id single">
<span class="tag">Directory</span>
<span class="fname">)";

// The page that is due to the model, which these counts must be true of.
std::string expected_page(const SummaryModel& model, const SummaryTally& tally)
{
    const std::string directory = appended(
        [&](TextBuffer& buffer) { return html_append_escaped_path(buffer, model.input_dir); });
    return HEAD + appended(append_page_styles) + (tally.errored > 0 ? ERRORED_STYLES : "") + TOP +
           model.version + "</b></div>\n" + appended(append_theme_toggle) + BELOW_TOGGLE +
           directory + "</span>\n</div>\n</div>\n" + appended([&](TextBuffer& buffer) {
               return append_kpi_grid(buffer, tally.passed + tally.failed + tally.errored,
                                      tally.passed, tally.failed, tally.errored, tally.other) &&
                      append_results_section(buffer, model, OUTPUT_PATH, tally.failed, tally.passed,
                                             tally.errored) &&
                      append_other_files_section(buffer, model, tally.other) &&
                      append_page_footer(buffer, model);
           }) +
           "</div>\n" + appended(append_theme_script) + appended(append_pager_script) +
           "</body>\n</html>\n";
}

} // namespace

TEST_F(SummaryPage, WithoutEntriesHasZeroesAPassingVerdictAndNoErroredStyles)
{
    const SummaryModel model = model_of({}, "in");
    EXPECT_EQ(page_of(model), expected_page(model, {0, 0, 0, 0}));
}

TEST_F(SummaryPage, OfThreeUnrelatedFilesAloneFailsTheSuite)
{
    const std::vector<ReportEntry> entries = {unrelated_file("a.html"), unrelated_file("b.html"),
                                              unrelated_file("c.html")};
    const SummaryModel model = model_of(entries, "in");
    EXPECT_EQ(page_of(model), expected_page(model, {0, 0, 0, 3}));
}

TEST_F(SummaryPage, OfTenPassedReportsBesideOneUnreadableFileFailsTheSuite)
{
    const std::vector<std::string> paths = numbered_paths("", 10);
    const std::vector<ReportEntry> entries =
        together(entries_of(paths, passed_report), {unreadable_file("x.html")});
    const SummaryModel model = model_of(entries, "in");
    EXPECT_EQ(page_of(model), expected_page(model, {10, 0, 0, 1}));
}

TEST_F(SummaryPage, OfOneErroredRunHasItsStylesBehindTheSharedOnes)
{
    const std::vector<ReportEntry> entries = {errored_report("a.html")};
    const SummaryModel model = model_of(entries, "in");
    EXPECT_EQ(page_of(model), expected_page(model, {0, 0, 1, 0}));
}

// Each count differs, so that each table shows whether it was given its own.
TEST_F(SummaryPage, OfEveryKindHandsEachCountToWhereItBelongs)
{
    const std::vector<std::string> failed = numbered_paths("f/", 101);
    const std::vector<std::string> passed = numbered_paths("p/", 102);
    std::vector<ReportEntry> entries =
        together(entries_of(failed, failed_report), entries_of(passed, passed_report));
    entries = together(entries, {errored_report("e.html"), unrelated_file("u.html"),
                                 unreadable_file("v.html"), unrelated_file("w.html")});
    const SummaryModel model = model_of(entries, "in");
    EXPECT_EQ(page_of(model), expected_page(model, {102, 101, 1, 3}));
}

TEST_F(SummaryPage, ShowsTheDirectoryEscapedWithABreakAfterEachSlash)
{
    EXPECT_EQ(count_of("<span class=\"fname\">a/<wbr>b&amp;c/<wbr></span>\n",
                       page_of(model_of({}, "a/b&c/"))),
              1);
    const std::string bytes = all_bytes();
    const SummaryModel model = model_of({}, bytes.c_str());
    EXPECT_EQ(page_of(model), expected_page(model, {0, 0, 0, 0}));
}

TEST_F(SummaryPage, InsertsTheVersionAsItIs)
{
    SummaryModel model = model_of({}, "in");
    model.version = "1.0 & <i>%s%n</i>\xff";
    EXPECT_EQ(page_of(model), expected_page(model, {0, 0, 0, 0}));
}

TEST_F(SummaryPage, IsWrittenToThePathExactlyAsTypedInPlaceOfALongerFile)
{
    const TempFolder folder;
    const CurrentFolder current(folder.path());
    folder.write("a\\b %s.html", std::string(1000000, 'o'));
    ASSERT_TRUE(write_summary_page("a\\b %s.html", model_of({}, "in")));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a\\b %s.html"});
    EXPECT_EQ(folder.read("a\\b %s.html"), expected_page(model_of({}, "in"), {0, 0, 0, 0}));
}
