#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/json_summary.h"
#include "summary/page_model.h"
#include "support/temp_folder.h"

namespace {

std::string json_of(const SummaryModel& model)
{
    const TempFolder folder;
    EXPECT_TRUE(write_json_summary(folder.path("s.json").c_str(), model));
    return folder.read("s.json");
}

std::string json_of(const std::vector<ReportEntry>& entries)
{
    return json_of(model_of(entries));
}

std::vector<ReportEntry> example_entries()
{
    ReportEntry failing = failed_report("album/track01.html");
    set_modes(failing, "Mode X", "Variant 1");
    set_failed_checks(failing, {"Check A", "Check B"});
    set_non_gating_checks(failing, {"Check C"});
    return {failing,
            errored_report("album/track02.html", "Input \"take 2.wav\" could not be opened"),
            unrelated_file("notes/readme.html")};
}

constexpr const char* EXAMPLE_DOCUMENT = R"({
    "scanned_directory": "reports",
    "total_reports": 2,
    "passed": 0,
    "failed": 1,
    "errored": 1,
    "reports": [
        {
            "relative_path": "album/track01.html",
            "verdict": "FAIL",
            "analysis_mode": "Mode X",
            "analysis_mode_sub": "Variant 1",
            "failed_checks": ["Check A", "Check B"],
            "non_gating_checks": ["Check C"],
            "error": ""
        },
        {
            "relative_path": "album/track02.html",
            "verdict": "ERROR",
            "analysis_mode": "",
            "analysis_mode_sub": "",
            "failed_checks": [],
            "non_gating_checks": [],
            "error": "Input \"take 2.wav\" could not be opened"
        }
    ],
    "other_files": [
        { "relative_path": "notes/readme.html", "reason": "not_analyze_report" }
    ]
}
)";

} // namespace

TEST(JsonSummary, ExampleWithTwoReportsAndOneOtherFileHasThese30Lines)
{
    const std::vector<ReportEntry> entries = example_entries();
    const std::string document = json_of(model_of(entries, "reports"));
    EXPECT_EQ(document, EXAMPLE_DOCUMENT);
    EXPECT_EQ(count_of("\n", document), 30);
}

TEST(JsonSummary, NoEntriesAtAllYieldsExactlyTheseElevenLines)
{
    EXPECT_EQ(json_of(std::vector<ReportEntry>()), "{\n"
                                                   "    \"scanned_directory\": \"x\",\n"
                                                   "    \"total_reports\": 0,\n"
                                                   "    \"passed\": 0,\n"
                                                   "    \"failed\": 0,\n"
                                                   "    \"errored\": 0,\n"
                                                   "    \"reports\": [\n"
                                                   "],\n"
                                                   "    \"other_files\": [\n"
                                                   "]\n"
                                                   "}\n");
}

TEST(JsonSummary, OnlyOtherFilesLeaveReportsEmptyAndAreListedInEntryOrder)
{
    EXPECT_EQ(
        json_of({unreadable_file("z.html"), unrelated_file("a.html"), unrelated_file("m/n.htm")}),
        R"({
    "scanned_directory": "x",
    "total_reports": 0,
    "passed": 0,
    "failed": 0,
    "errored": 0,
    "reports": [
],
    "other_files": [
        { "relative_path": "z.html", "reason": "unreadable" },
        { "relative_path": "a.html", "reason": "not_analyze_report" },
        { "relative_path": "m/n.htm", "reason": "not_analyze_report" }
    ]
}
)");
}

TEST(JsonSummary, OnlyReportsLeaveOtherFilesEmptyAndStandInEntryOrder)
{
    ReportEntry passed = passed_report("z.html");
    set_modes(passed, "Mode X", "");
    EXPECT_EQ(json_of({passed, failed_report("a.html")}), R"({
    "scanned_directory": "x",
    "total_reports": 2,
    "passed": 1,
    "failed": 1,
    "errored": 0,
    "reports": [
        {
            "relative_path": "z.html",
            "verdict": "PASS",
            "analysis_mode": "Mode X",
            "analysis_mode_sub": "",
            "failed_checks": [],
            "non_gating_checks": [],
            "error": ""
        },
        {
            "relative_path": "a.html",
            "verdict": "FAIL",
            "analysis_mode": "",
            "analysis_mode_sub": "",
            "failed_checks": [],
            "non_gating_checks": [],
            "error": ""
        }
    ],
    "other_files": [
]
}
)");
}

TEST(JsonSummary, OtherFilesBetweenReportsDoNotDisturbEitherList)
{
    const std::optional<JsonSummary> summary = read_json_summary(
        json_of({unrelated_file("o1"), passed_report("r1"), unreadable_file("o2"),
                 errored_report("r2"), unrelated_file("o3"), failed_report("r3")}));
    ASSERT_TRUE(summary);
    ASSERT_EQ(summary->reports.size(), 3U);
    EXPECT_EQ(summary->reports[0].relative_path, "r1");
    EXPECT_EQ(summary->reports[1].relative_path, "r2");
    EXPECT_EQ(summary->reports[2].relative_path, "r3");
    EXPECT_EQ(summary->other_files, (std::vector<JsonOtherFile>{{"o1", "not_analyze_report"},
                                                                {"o2", "unreadable"},
                                                                {"o3", "not_analyze_report"}}));
}

TEST(JsonSummary, UnreadableEntryGetsUnreadableAndAnUnrelatedFileNotAnalyzeReport)
{
    const std::string document = json_of({unreadable_file("a.html"), unrelated_file("b.html")});
    EXPECT_EQ(count_of("        { \"relative_path\": \"a.html\", \"reason\": \"unreadable\" },\n",
                       document),
              1);
    EXPECT_EQ(
        count_of("        { \"relative_path\": \"b.html\", \"reason\": \"not_analyze_report\" }\n",
                 document),
        1);
}

TEST(JsonSummary, EntryOfAnUnknownKindIsListedAsNotAnalyzeReport)
{
    ReportEntry entry = unrelated_file("a.html");
    entry.kind = static_cast<ReportKind>(9);
    EXPECT_EQ(count_of("\"reason\": \"not_analyze_report\"", json_of({entry})), 1);
}

TEST(JsonSummary, ReportWithNoFailedChecksWritesAnEmptyArrayOnOneLine)
{
    EXPECT_EQ(count_of("            \"failed_checks\": [],\n"
                       "            \"non_gating_checks\": [],\n",
                       json_of({failed_report("a.html")})),
              1);
}

TEST(JsonSummary, PathWithATabAQuoteABackslashOrAControlByteHasThemEscaped)
{
    const std::string document =
        json_of({passed_report("a\tb\"c\\d\x01.html"), unrelated_file("e\tf\"g\\h\x01.html")});
    EXPECT_EQ(count_of(R"("relative_path": "a\tb\"c\\d\u0001.html",)", document), 1);
    EXPECT_EQ(count_of(R"("relative_path": "e\tf\"g\\h\u0001.html", "reason")", document), 1);
}

TEST(JsonSummary, PassedReportStaysPassWhenItListsNonGatingChecks)
{
    ReportEntry entry = passed_report("a.html");
    set_non_gating_checks(entry, {"Noise floor"});
    EXPECT_EQ(count_of("            \"verdict\": \"PASS\",\n"
                       "            \"analysis_mode\": \"\",\n"
                       "            \"analysis_mode_sub\": \"\",\n"
                       "            \"failed_checks\": [],\n"
                       "            \"non_gating_checks\": [\"Noise floor\"],\n",
                       json_of({entry})),
              1);
}

TEST(JsonSummary, AnyPassedFlagButZeroIsPass)
{
    ReportEntry entry = passed_report("a.html");
    entry.passed = 2;
    const std::string document = json_of({entry});
    EXPECT_EQ(count_of("\"verdict\": \"PASS\"", document), 1);
    EXPECT_EQ(
        count_of("    \"total_reports\": 1,\n    \"passed\": 1,\n    \"failed\": 0,\n", document),
        1);
}

TEST(JsonSummary, ErroredRunsCountInTotalAndErroredButNeitherInPassedNorInFailed)
{
    ReportEntry flagged = errored_report("b.html");
    flagged.passed = 1;
    const std::string document = json_of({errored_report("a.html"), flagged});
    EXPECT_EQ(count_of("    \"total_reports\": 2,\n    \"passed\": 0,\n    \"failed\": 0,\n"
                       "    \"errored\": 2,\n",
                       document),
              1);
    EXPECT_EQ(count_of("\"verdict\": \"ERROR\"", document), 2);
}

TEST(JsonSummary, EveryTextOfAReportIsEscapedAndWrittenWhateverTheKind)
{
    ReportEntry entry = errored_report("p\"", "e\"\n");
    set_modes(entry, "m\\", "s\x1b");
    set_failed_checks(entry, {"f\r", ""});
    set_non_gating_checks(entry, {"n\""});
    EXPECT_EQ(count_of(R"(        {
            "relative_path": "p\"",
            "verdict": "ERROR",
            "analysis_mode": "m\\",
            "analysis_mode_sub": "s\u001b",
            "failed_checks": ["f\r", ""],
            "non_gating_checks": ["n\""],
            "error": "e\"\n"
        }
)",
                       json_of({entry})),
              1);
}

TEST(JsonSummary, ScannedDirectoryIsWrittenAsTypedAndEscaped)
{
    EXPECT_TRUE(json_of(model_of({}, "../a//b\\\"c\"/./"))
                    .starts_with("{\n"
                                 R"(    "scanned_directory": "../a//b\\\"c\"/./",)"
                                 "\n    \"total_reports\": 0,\n"));
    EXPECT_TRUE(json_of(model_of({}, ""))
                    .starts_with("{\n    \"scanned_directory\": \"\",\n    \"total_reports\""));
}

TEST(JsonSummary, DoesNotUseTheVersion)
{
    SummaryModel model = model_of({});
    model.version = nullptr;
    EXPECT_EQ(json_of(model), json_of(std::vector<ReportEntry>()));
}

TEST(JsonSummary, UsesNothingOfAnOtherFileButItsPathAndKind)
{
    ReportEntry entry = unrelated_file("a.html");
    entry.analysis_mode[0] = 'M';
    entry.error[0] = 'E';
    entry.failed_check_count = 0xAAAAAAAAAAAAAAAA;
    entry.non_gating_check_count = 0xAAAAAAAAAAAAAAAA;
    EXPECT_EQ(json_of({entry}), json_of({unrelated_file("a.html")}));
}

TEST(JsonSummary, FullFieldsAreWrittenWholeAndNothingBehindThem)
{
    ReportEntry entry = errored_report("a.html", std::string(639, 'e'));
    set_modes(entry, std::string(39, 'm'), std::string(39, 's'));
    set_failed_checks(entry, std::vector<std::string>(16, std::string(39, 'f')));
    set_non_gating_checks(entry, std::vector<std::string>(16, std::string(39, 'n')));
    const std::optional<JsonSummary> summary = read_json_summary(json_of({entry}));
    ASSERT_TRUE(summary);
    ASSERT_EQ(summary->reports.size(), 1U);
    const JsonReport& report = summary->reports[0];
    EXPECT_EQ(report.analysis_mode, std::string(39, 'm'));
    EXPECT_EQ(report.analysis_mode_sub, std::string(39, 's'));
    EXPECT_EQ(report.failed_checks, std::vector<std::string>(16, std::string(39, 'f')));
    EXPECT_EQ(report.non_gating_checks, std::vector<std::string>(16, std::string(39, 'n')));
    EXPECT_EQ(report.error, std::string(639, 'e'));
}

TEST(JsonSummary, ReplacesALongerFileOfThatName)
{
    const TempFolder folder;
    folder.write("s.json", std::string(100000, 'o'));
    const std::vector<ReportEntry> entries = example_entries();
    ASSERT_TRUE(write_json_summary(folder.path("s.json").c_str(), model_of(entries, "reports")));
    EXPECT_EQ(folder.read("s.json"), EXAMPLE_DOCUMENT);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"s.json"});
}
