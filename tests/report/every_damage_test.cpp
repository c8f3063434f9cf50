// The report reader beside a naive one, on documents that are cut at any byte or have
// any byte replaced, left out or doubled. No list of plain cases is that complete: of the
// reader's mutants, some fall to nothing else.

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "report/naive_scraper.h"
#include "report/read_analyze_report.h"
#include "report/scraped_report.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace {

// Bundled reports are long, and each cut of one is read anew: so many bytes apart.
constexpr std::size_t CUT_STEP = 23;

std::vector<std::string> small_documents()
{
    return {verdict("PASS") + mode_figure("Loopback", "stereo") +
                bar(passing_tab("Level") + gating_tab("Noise") + non_gating_tab("Jitter")),
            bar(passing_tab("Level") + gating_tab("Noise &amp; Hum") + non_gating_tab("Jitter") +
                gating_tab("Clip")) +
                mode_figure("Loopback", "48 kHz") + verdict("FAIL"),
            "<!doctype html>\n" + verdict("ERROR") +
                run_error("a &lt;b&gt; &amp;amp; &quot;c&quot; isn&#39;t") +
                mode_figure("Loopback", "stereo") + bar(gating_tab("Noise"))};
}

std::vector<std::string> bundled_reports()
{
    std::vector<std::string> reports;
    const fs::path folder = fs::path(FTHSUMMARY_SOURCE_FOLDER) / "examples/reports";
    for (const fs::directory_entry& file : fs::recursive_directory_iterator(folder)) {
        if (file.is_regular_file()) {
            reports.push_back(read_file(file.path().string()));
        }
    }
    return reports;
}

// Judges documents one after another, and sees to it that they are of all kinds.
class Judge
{
public:
    ~Judge()
    {
        EXPECT_EQ(seen_.size(), 4U) << "passed, failed, errored and no reports";
    }

    void expect_agreement(const std::string& document)
    {
        const ReadReport naive = naive_scrape(document);
        std::memset(&entry_, OLD_BYTE, sizeof entry_);
        // In a block that ends with the NUL, for a sanitizer to see what is read behind it.
        const std::vector<char> block(document.c_str(), document.c_str() + document.size() + 1);
        scrape_analyze_report(block.data(), RELATIVE_PATH, entry_);
        seen_.emplace(naive.kind, naive.passed);
        ASSERT_EQ(visible_fields(entry_), naive) << document;
        ASSERT_EQ(faults_of(entry_), "") << document;
    }

private:
    ReportEntry entry_ = {};
    std::set<std::pair<ReportKind, bool>> seen_ = {};
};

} // namespace

// The naive reader must itself be right: what it makes of reports written by hand.
TEST(NaiveScraper, ReadsReportsWrittenByHand)
{
    EXPECT_EQ(naive_scrape(small_documents()[0]),
              (ReadReport{
                  ReportKind::Analyzed, true, "Loopback", "stereo", {}, {"Jitter", "Noise"}, ""}));
    EXPECT_EQ(naive_scrape(small_documents()[1]), (ReadReport{ReportKind::Analyzed,
                                                              false,
                                                              "Loopback",
                                                              "48 kHz",
                                                              {"Noise &amp; Hum", "Clip"},
                                                              {"Jitter"},
                                                              ""}));
    EXPECT_EQ(naive_scrape(small_documents()[2]),
              (ReadReport{ReportKind::RunError, false, "", "", {}, {}, "a <b> &amp; \"c\" isn't"}));
}

TEST(EveryCut, OfADocumentIsReadAlike)
{
    Judge judge;
    for (const std::string& document : small_documents()) {
        for (std::size_t cut = 0; cut <= document.size() && !HasFatalFailure(); ++cut) {
            judge.expect_agreement(document.substr(0, cut));
        }
    }
    const std::vector<std::string> reports = bundled_reports();
    ASSERT_GE(reports.size(), 18U);
    for (const std::string& report : reports) {
        for (std::size_t cut = 0; cut <= report.size() && !HasFatalFailure(); cut += CUT_STEP) {
            judge.expect_agreement(report.substr(0, cut));
        }
    }
}

TEST(EveryByte, ReplacedByEveryOtherIsReadAlike)
{
    Judge judge;
    for (const std::string& document : small_documents()) {
        std::string changed = document;
        for (std::size_t place = 0; place < document.size(); ++place) {
            for (int byte = 0; byte < 256 && !HasFatalFailure(); ++byte) {
                changed[place] = static_cast<char>(byte);
                judge.expect_agreement(changed);
            }
            changed[place] = document[place];
        }
    }
}

// And every stretch up to a marker's length, as a careless transfer may lose or turn it.
TEST(EveryByte, LeftOutDoubledTurnedRoundOrPrecededByANulIsReadAlike)
{
    constexpr std::size_t LONGEST = 40;
    Judge judge;
    for (const std::string& document : small_documents()) {
        for (std::size_t place = 0; place < document.size() && !HasFatalFailure(); ++place) {
            const std::string before = document.substr(0, place);
            const std::string behind = document.substr(place);
            judge.expect_agreement(before + '\0' + behind);
            for (std::size_t length = 1; length <= std::min(behind.size(), LONGEST); ++length) {
                const std::string stretch = behind.substr(0, length);
                const std::string rest = behind.substr(length);
                judge.expect_agreement(before + rest);
                judge.expect_agreement(before + stretch + behind);
                judge.expect_agreement(before + std::string(stretch.rbegin(), stretch.rend()) +
                                       rest);
            }
        }
    }
}
