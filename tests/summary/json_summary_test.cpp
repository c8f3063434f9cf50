// The JSON summary: four documents to the byte, and what a reader of JSON finds in others.

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "summary/json_summary.h"
#include "summary/page_model.h"
#include "support/temp_folder.h"

namespace {

using Json = nlohmann::ordered_json;

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

Json read_back(const std::vector<ReportEntry>& entries)
{
    return read_json(json_of(entries));
}

// The paths of what is listed below a key.
std::vector<std::string> paths_below(const Json& summary, const char* key)
{
    std::vector<std::string> paths;
    for (const Json& element : summary.at(key)) {
        paths.push_back(element.at("relative_path"));
    }
    return paths;
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

TEST(JsonSummary, ExampleWithTwoReportsAndOneOtherFileHasTheseLines)
{
    const std::vector<ReportEntry> entries = example_entries();
    EXPECT_EQ(json_of(model_of(entries, "reports")), EXAMPLE_DOCUMENT);
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
    const std::string document =
        json_of({unreadable_file("z.html"), unrelated_file("a.html"), unrelated_file("m/n.htm")});
    EXPECT_TRUE(document.ends_with(R"(
    "reports": [
],
    "other_files": [
        { "relative_path": "z.html", "reason": "unreadable" },
        { "relative_path": "a.html", "reason": "not_analyze_report" },
        { "relative_path": "m/n.htm", "reason": "not_analyze_report" }
    ]
}
)")) << document;
}

TEST(JsonSummary, OnlyReportsLeaveOtherFilesEmptyAndStandInEntryOrder)
{
    const std::string document = json_of({passed_report("z.html"), failed_report("a.html")});
    EXPECT_TRUE(document.ends_with("\n        }\n    ],\n    \"other_files\": [\n]\n}\n"))
        << document;
    const Json summary = read_json(document);
    EXPECT_EQ(paths_below(summary, "reports"), (std::vector<std::string>{"z.html", "a.html"}));
    EXPECT_EQ(summary["reports"][0]["verdict"], "PASS");
    EXPECT_EQ(summary["reports"][1]["verdict"], "FAIL");
}

TEST(JsonSummary, OtherFilesBetweenReportsDoNotDisturbEitherList)
{
    const Json summary =
        read_back({unrelated_file("o1"), passed_report("r1"), unreadable_file("o2"),
                   errored_report("r2"), unrelated_file("o3"), failed_report("r3")});
    EXPECT_EQ(paths_below(summary, "reports"), (std::vector<std::string>{"r1", "r2", "r3"}));
    EXPECT_EQ(paths_below(summary, "other_files"), (std::vector<std::string>{"o1", "o2", "o3"}));
}

TEST(JsonSummary, UnreadableEntryGetsUnreadableAndAnyOtherFileNotAnalyzeReport)
{
    ReportEntry unknown = unrelated_file("c.html");
    unknown.kind = static_cast<ReportKind>(9);
    const Json files =
        read_back({unreadable_file("a.html"), unrelated_file("b.html"), unknown}).at("other_files");
    EXPECT_EQ(files[0]["reason"], "unreadable");
    EXPECT_EQ(files[1]["reason"], "not_analyze_report");
    EXPECT_EQ(files[2]["reason"], "not_analyze_report");
}

TEST(JsonSummary, ReportWithNoFailedChecksWritesAnEmptyArrayOnOneLine)
{
    EXPECT_EQ(count_of("            \"failed_checks\": [],\n", json_of({failed_report("a.html")})),
              1);
}

TEST(JsonSummary, PathWithATabAQuoteABackslashOrAControlByteHasThemEscaped)
{
    const std::string document =
        json_of({passed_report("a\tb\"c\\d\x01.html"), unrelated_file("e\tf\"g\\h\x01.html")});
    EXPECT_EQ(count_of(R"("relative_path": "a\tb\"c\\d\u0001.html")", document), 1);
    EXPECT_EQ(count_of(R"("relative_path": "e\tf\"g\\h\u0001.html")", document), 1);
}

TEST(JsonSummary, PassedReportStaysPassWhenItListsNonGatingChecks)
{
    ReportEntry entry = passed_report("a.html");
    set_non_gating_checks(entry, {"Noise floor"});
    const Json report = read_back({entry}).at("reports").at(0);
    EXPECT_EQ(report["verdict"], "PASS");
    EXPECT_EQ(report["failed_checks"], Json::array());
    EXPECT_EQ(report["non_gating_checks"], Json::array({"Noise floor"}));
}

TEST(JsonSummary, ErroredRunsCountInTotalAndErroredButNeitherInPassedNorInFailed)
{
    ReportEntry flagged = errored_report("b.html");
    flagged.passed = 1;
    const Json summary = read_back({errored_report("a.html"), flagged});
    EXPECT_EQ(summary["total_reports"], 2);
    EXPECT_EQ(summary["passed"], 0);
    EXPECT_EQ(summary["failed"], 0);
    EXPECT_EQ(summary["errored"], 2);
    EXPECT_EQ(summary["reports"][1]["verdict"], "ERROR");
}

TEST(JsonSummary, ASubModeWithoutAModeIsWrittenAllTheSame)
{
    ReportEntry entry = passed_report("a.html");
    set_modes(entry, "", "Variant 1");
    const Json report = read_back({entry}).at("reports").at(0);
    EXPECT_EQ(report["analysis_mode"], "");
    EXPECT_EQ(report["analysis_mode_sub"], "Variant 1");
}

TEST(JsonSummary, EveryTextOfAReportIsEscapedAndWrittenWhateverTheKind)
{
    const std::string bytes = all_bytes();
    ReportEntry entry = errored_report(bytes.c_str(), bytes);
    set_modes(entry, "m\\\xff", "s\x1b");
    set_failed_checks(entry, {"f\r", ""});
    set_non_gating_checks(entry, {"n\"\x80"});
    const Json report = read_back({entry}).at("reports").at(0);
    EXPECT_EQ(report["relative_path"], as_characters(bytes));
    EXPECT_EQ(report["analysis_mode"], as_characters("m\\\xff"));
    EXPECT_EQ(report["analysis_mode_sub"], "s\x1b");
    EXPECT_EQ(report["failed_checks"], Json::array({"f\r", ""}));
    EXPECT_EQ(report["non_gating_checks"], Json::array({as_characters("n\"\x80")}));
    EXPECT_EQ(report["error"], as_characters(bytes));
}

TEST(JsonSummary, ScannedDirectoryIsWrittenAsTypedAndEscaped)
{
    EXPECT_EQ(read_json(json_of(model_of({}, "../a//b\\\"c\"/./")))["scanned_directory"],
              "../a//b\\\"c\"/./");
    EXPECT_EQ(read_json(json_of(model_of({}, "")))["scanned_directory"], "");
}

TEST(JsonSummary, DoesNotUseTheVersion)
{
    SummaryModel model = model_of({});
    model.version = nullptr;
    EXPECT_EQ(json_of(model), json_of(std::vector<ReportEntry>()));
}
