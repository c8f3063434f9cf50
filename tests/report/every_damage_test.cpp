// The report reader on documents that are cut at any byte, or have any one byte
// replaced, left out or doubled.

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "report/document_generator.h"
#include "report/entry_comparison.h"
#include "report/guarded_text.h"
#include "report/naive_scraper.h"
#include "report/read_analyze_report.h"
#include "report/scraped_report.h"
#include "support/build_speed.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

// Bundled reports are long, and each cut of one is read anew. In a slow build only the
// cuts that are this near to what the reader looks for are made.
constexpr std::size_t NEAR = 32;

// Every so many cuts of a small document, one goes through a file.
constexpr std::size_t FILE_STEP = 7;

std::string passed_document()
{
    return verdict("PASS") + mode_figure("Loopback", "stereo") +
           bar(passing_tab("Level") + gating_tab("Noise") + non_gating_tab("Jitter"));
}

std::string failed_document()
{
    return bar(passing_tab("Level") + gating_tab("Noise &amp; Hum") + non_gating_tab("Jitter") +
               gating_tab("Clip")) +
           mode_figure("Loopback", "48 kHz") + verdict("FAIL");
}

std::string errored_document()
{
    return "<!doctype html>\n" + verdict("ERROR") +
           run_error("a &lt;b&gt; &amp;amp; &quot;c&quot; isn&#39;t") +
           mode_figure("Loopback", "stereo") + bar(gating_tab("Noise"));
}

std::vector<std::string> small_documents()
{
    return {passed_document(), failed_document(), errored_document()};
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

// Judges documents one after another; the entry and the memory serve them all.
class Judge
{
public:
    explicit Judge(std::size_t capacity) : memory_(capacity) {}

    // A document may hold NUL bytes: read is what stands before the first.
    void expect_agreement(const std::string& document)
    {
        const NaiveEntry naive = naive_scrape(document);
        std::memset(&entry_, OLD_BYTE, sizeof entry_);
        scrape_analyze_report(memory_.place(document.c_str()), RELATIVE_PATH, entry_);
        ++documents_;
        seen_.insert(static_cast<int>(naive.kind) * 2 + (naive.passed ? 1 : 0));
        if (!agree(entry_, naive)) {
            FAIL() << differences(entry_, naive) << "of:\n" << printable(document);
        }
    }

    std::uint64_t documents() const
    {
        return documents_;
    }

    // Passed, failed, errored, no report.
    std::size_t kinds() const
    {
        return seen_.size();
    }

private:
    GuardedText memory_;
    ReportEntry entry_ = {};
    std::uint64_t documents_ = 0;
    std::set<int> seen_ = {};
};

bool is_near_marker(const std::string& document, std::size_t cut)
{
    const std::string around = document.substr(cut - std::min(cut, NEAR), 2 * NEAR);
    for (const char* marker : {"Overall Verdict", "Analysis Mode", "kpi-sub", "nav-tabs", "</nav>",
                               "run-error", " data-fail", " data-nongating"}) {
        if (around.find(marker) != std::string::npos) {
            return true;
        }
    }
    return false;
}

} // namespace

TEST(EveryCut, OfASmallDocumentIsReadAlikeInMemoryAndThroughFiles)
{
    const TempFolder folder;
    Judge judge(1000);
    std::uint64_t cuts = 0;
    std::uint64_t files = 0;
    for (const std::string& document : small_documents()) {
        cuts += document.size() + 1;
        for (std::size_t cut = 0; cut <= document.size(); ++cut) {
            judge.expect_agreement(document.substr(0, cut));
            if (cut % FILE_STEP != 0) {
                continue;
            }
            ++files;
            folder.write("a.html", document.substr(0, cut));
            ASSERT_EQ(differences(read_report(folder.path("a.html")),
                                  naive_scrape(document.substr(0, cut))),
                      "")
                << "cut at " << cut << ":\n"
                << printable(document);
        }
    }
    EXPECT_EQ(judge.documents(), cuts);
    EXPECT_EQ(judge.kinds(), 4U);
    std::cout << judge.documents() << " cuts, " << files << " of them through files\n";
}

TEST(EveryCut, OfABundledReportIsReadAlike)
{
    const std::vector<std::string> reports = bundled_reports();
    ASSERT_GE(reports.size(), 18U);
    Judge judge(100000);
    std::uint64_t left_out = 0;
    std::uint64_t bytes = 0;
    for (const std::string& report : reports) {
        bytes += report.size() + 1;
        for (std::size_t cut = 0; cut <= report.size() && !HasFatalFailure(); ++cut) {
            if (IS_FAST_BUILD || is_near_marker(report, cut)) {
                judge.expect_agreement(report.substr(0, cut));
            } else {
                ++left_out;
            }
        }
    }
    EXPECT_EQ(judge.documents() + left_out, bytes);
    EXPECT_EQ(judge.kinds(), 4U);
    std::cout << judge.documents() << " cuts of " << reports.size() << " reports; " << left_out
              << " cuts far from any marker left out\n";
}

TEST(EveryByte, ReplacedByEveryOtherIsReadAlike)
{
    Judge judge(1000);
    std::uint64_t bytes = 0;
    for (const std::string& document : small_documents()) {
        bytes += document.size();
        std::string changed = document;
        for (std::size_t place = 0; place < document.size(); ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                changed[place] = static_cast<char>(byte);
                judge.expect_agreement(changed);
            }
            changed[place] = document[place];
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    EXPECT_EQ(judge.documents(), 256 * bytes);
    EXPECT_EQ(judge.kinds(), 4U);
    std::cout << judge.documents() << " documents\n";
}

TEST(EveryByte, LeftOutDoubledOrPrecededByANulIsReadAlike)
{
    Judge judge(1000);
    std::uint64_t bytes = 0;
    for (const std::string& document : small_documents()) {
        bytes += document.size();
        for (std::size_t place = 0; place < document.size(); ++place) {
            const std::string before = document.substr(0, place);
            const std::string behind = document.substr(place + 1);
            judge.expect_agreement(before + behind);
            judge.expect_agreement(before + document[place] + document[place] + behind);
            judge.expect_agreement(before + '\0' + document[place] + behind);
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    EXPECT_EQ(judge.documents(), 3 * bytes);
    EXPECT_EQ(judge.kinds(), 4U);
    std::cout << judge.documents() << " documents\n";
}

// Two neighbours in the other order, and every stretch of up to a marker's length left
// out: what a careless transfer does.
TEST(EveryStretch, LeftOutOrTurnedRoundIsReadAlike)
{
    Judge judge(1000);
    for (const std::string& document : small_documents()) {
        for (std::size_t place = 0; place < document.size(); ++place) {
            for (std::size_t length = 2; place + length <= document.size() && length <= 40;
                 ++length) {
                std::string changed = document;
                judge.expect_agreement(changed.erase(place, length));
                changed = document;
                const auto start = changed.begin() + static_cast<std::ptrdiff_t>(place);
                std::reverse(start, start + static_cast<std::ptrdiff_t>(length));
                judge.expect_agreement(changed);
            }
            ASSERT_FALSE(HasFatalFailure());
        }
    }
    EXPECT_GE(judge.documents(), 50000U);
    EXPECT_EQ(judge.kinds(), 4U);
    std::cout << judge.documents() << " documents\n";
}
