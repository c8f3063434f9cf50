// The JSON summary read back by the tests' own reader, and that reader itself.

#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/json_summary.h"
#include "summary/page_model.h"
#include "support/temp_folder.h"

namespace {

constexpr const char* DOCUMENT_BEFORE_DIRECTORY = "{\n    \"scanned_directory\": \"";

constexpr const char* DOCUMENT_BEHIND_DIRECTORY = R"(",
    "total_reports": 2,
    "passed": 1,
    "failed": 0,
    "errored": 1,
    "reports": [
        {
            "relative_path": "a\\b.html",
            "verdict": "PASS",
            "analysis_mode": "Mode X",
            "analysis_mode_sub": "\u001b",
            "failed_checks": [],
            "non_gating_checks": ["Check A", "", "Check \tB"],
            "error": ""
        },
        {
            "relative_path": "c.html",
            "verdict": "ERROR",
            "analysis_mode": "",
            "analysis_mode_sub": "",
            "failed_checks": ["/"],
            "non_gating_checks": [],
            "error": "Input \"take 2.wav\"\r\n"
        }
    ],
    "other_files": [
        { "relative_path": "d.html", "reason": "unreadable" },
        { "relative_path": "e.html", "reason": "not_analyze_report" }
    ]
}
)";

std::string document_of(const std::string& escaped_directory)
{
    return DOCUMENT_BEFORE_DIRECTORY + escaped_directory + DOCUMENT_BEHIND_DIRECTORY;
}

// Random models with hostile texts, and what a reader must find in their JSON.
class RandomModel
{
public:
    explicit RandomModel(std::uint32_t seed) : random_(seed)
    {
        expected.scanned_directory = text(60);
        const std::size_t count = random_() % 40;
        paths_.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            paths_.push_back(text(90));
            add_entry(paths_.back());
        }
    }

    SummaryModel model() const
    {
        return model_of(entries_, expected.scanned_directory.c_str());
    }

    JsonSummary expected;

private:
    std::string text(std::size_t limit)
    {
        std::string result;
        for (std::size_t length = random_() % (limit + 1); length > 0; --length) {
            result += static_cast<char>(random_() % 255 + 1);
        }
        return result;
    }

    std::vector<std::string> names()
    {
        std::vector<std::string> result;
        for (std::size_t count = random_() % 17; count > 0; --count) {
            result.push_back(text(39));
        }
        return result;
    }

    void add_entry(const std::string& path)
    {
        switch (random_() % 5) {
        case 0:
            entries_.push_back(unrelated_file(path.c_str()));
            expected.other_files.push_back({path, "not_analyze_report"});
            break;
        case 1:
            entries_.push_back(unreadable_file(path.c_str()));
            expected.other_files.push_back({path, "unreadable"});
            break;
        case 2:
            add_errored(path);
            break;
        case 3:
            ++expected.passed;
            add_analyzed(passed_report(path.c_str()), path, "PASS");
            break;
        default:
            ++expected.failed;
            add_analyzed(failed_report(path.c_str()), path, "FAIL");
        }
    }

    void add_errored(const std::string& path)
    {
        const std::string error = text(639);
        entries_.push_back(errored_report(path.c_str(), error));
        ++expected.total_reports;
        ++expected.errored;
        expected.reports.push_back({path, "ERROR", "", "", {}, {}, error});
    }

    void add_analyzed(ReportEntry entry, const std::string& path, const char* verdict)
    {
        const JsonReport report = {path, verdict, text(39), text(39), names(), names(), ""};
        set_modes(entry, report.analysis_mode, report.analysis_mode_sub);
        set_failed_checks(entry, report.failed_checks);
        set_non_gating_checks(entry, report.non_gating_checks);
        entries_.push_back(entry);
        ++expected.total_reports;
        expected.reports.push_back(report);
    }

    std::mt19937 random_;
    std::vector<std::string> paths_;
    std::vector<ReportEntry> entries_;
};

} // namespace

TEST(JsonReadBack, ReaderReadsAWholeDocument)
{
    const JsonSummary expected = {
        "reports",
        2,
        1,
        0,
        1,
        {{"a\\b.html", "PASS", "Mode X", "\x1b", {}, {"Check A", "", "Check \tB"}, ""},
         {"c.html", "ERROR", "", "", {"/"}, {}, "Input \"take 2.wav\"\r\n"}},
        {{"d.html", "unreadable"}, {"e.html", "not_analyze_report"}}};
    const std::optional<JsonSummary> summary = read_json_summary(document_of("reports"));
    ASSERT_TRUE(summary);
    EXPECT_EQ(*summary, expected);
}

TEST(JsonReadBack, ReaderNoticesEveryLostDoubledOrChangedByte)
{
    const std::string document = document_of("reports");
    const std::optional<JsonSummary> whole = read_json_summary(document);
    ASSERT_TRUE(whole);
    for (std::size_t at = 0; at < document.size(); ++at) {
        std::string lost = document;
        lost.erase(at, 1);
        std::string doubled = document;
        doubled.insert(at, 1, document[at]);
        std::string changed = document;
        changed[at] = static_cast<char>(changed[at] ^ 1);
        EXPECT_NE(read_json_summary(lost), whole) << "at " << at;
        EXPECT_NE(read_json_summary(doubled), whole) << "at " << at;
        EXPECT_NE(read_json_summary(changed), whole) << "at " << at;
    }
}

TEST(JsonReadBack, ReaderRefusesEscapesThatAreNotTheDueOnes)
{
    EXPECT_TRUE(read_json_summary(document_of("\\u0001\\u001f\\t")));
    for (const char* text : {"\\u0009", "\\u0041", "\\u001F", "\\b", "\\f", "\\/", "\t", "\x01",
                             "\\", "\\u1", "\"", "\\u0000"}) {
        EXPECT_FALSE(read_json_summary(document_of(text))) << text;
    }
}

TEST(JsonReadBack, HundredRandomModelsComeBackUnchanged)
{
    const TempFolder folder;
    for (std::uint32_t seed = 1; seed <= 100; ++seed) {
        const RandomModel random(seed);
        ASSERT_TRUE(write_json_summary(folder.path("s.json").c_str(), random.model()));
        const std::string document = folder.read("s.json");
        const std::optional<JsonSummary> summary = read_json_summary(document);
        ASSERT_TRUE(summary) << "seed " << seed << "\n" << document;
        ASSERT_EQ(*summary, random.expected) << "seed " << seed << "\n" << document;
    }
}
