// The report reader against the naive scraper, over many generated documents.

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "report/document_generator.h"
#include "report/entry_comparison.h"
#include "report/naive_scraper.h"
#include "report/read_analyze_report.h"
#include "report/scraped_report.h"
#include "support/temp_folder.h"

namespace {

constexpr int DOCUMENTS_PER_SEED = 10000;
constexpr int DOCUMENTS_THROUGH_FILES = 400;

// Once up to the first NUL alone, so that a sanitizer sees any read beyond it, and
// once with what follows, which must make no difference.
std::string differences_in_memory(const std::string& document, const NaiveEntry& naive)
{
    std::string found = differences(scrape(document.c_str()), naive);
    if (document.find('\0') != std::string::npos) {
        found += differences(scrape(document), naive);
    }
    return found;
}

// What a run of documents brought, so that a generator that has lost its way does
// not make the comparison an empty one.
struct Reached
{
    int passed, failed, not_reports, errored;
    int modes, sub_modes, modes_alone, full_modes;
    int gating, non_gating, both_lists, sixteen_gating, sixteen_non_gating, full_names, empty_names;
    int moved, moved_in_part;
    int errors, errors_without_text, full_errors;
    int with_nul, with_cr_lf;
};

bool has_name_of(const NaiveEntry& entry, std::size_t length)
{
    const auto matches = [length](const std::string& name) { return name.size() == length; };
    return std::any_of(entry.failed_checks.begin(), entry.failed_checks.end(), matches) ||
           std::any_of(entry.non_gating_checks.begin(), entry.non_gating_checks.end(), matches);
}

void count(Reached& reached, const std::string& document, const NaiveEntry& entry)
{
    const bool analyzed = entry.kind == ReportKind::Analyzed;
    const bool errored = entry.kind == ReportKind::RunError;
    const std::size_t gating = entry.failed_checks.size();
    const std::size_t non_gating = entry.non_gating_checks.size();
    reached.passed += entry.passed;
    reached.failed += analyzed && !entry.passed;
    reached.not_reports += entry.kind == ReportKind::NotAnalyzeReport;
    reached.errored += errored;
    reached.modes += !entry.analysis_mode.empty();
    reached.sub_modes += !entry.analysis_mode_sub.empty();
    reached.modes_alone += !entry.analysis_mode.empty() && entry.analysis_mode_sub.empty();
    reached.full_modes += entry.analysis_mode.size() == 39 || entry.analysis_mode_sub.size() == 39;
    reached.gating += gating > 0;
    reached.non_gating += non_gating > 0;
    reached.both_lists += gating > 0 && non_gating > 0;
    reached.sixteen_gating += gating == 16;
    reached.sixteen_non_gating += non_gating == 16;
    reached.full_names += has_name_of(entry, 39);
    reached.empty_names += has_name_of(entry, 0);
    reached.moved += entry.moved_names > 0;
    reached.moved_in_part += entry.moved_names > 0 && entry.dropped_names > 0;
    reached.errors += !entry.error.empty();
    reached.errors_without_text += errored && entry.error.empty();
    reached.full_errors += entry.error.size() == 639;
    reached.with_nul += document.find('\0') != std::string::npos;
    reached.with_cr_lf += document.find("\r\n") != std::string::npos;
}

void expect_enough(const Reached& reached)
{
    EXPECT_GE(reached.passed, 1200);
    EXPECT_GE(reached.failed, 3000);
    EXPECT_GE(reached.not_reports, 2000);
    EXPECT_GE(reached.errored, 1000);
    EXPECT_GE(reached.modes, 2500);
    EXPECT_GE(reached.sub_modes, 1000);
    EXPECT_GE(reached.modes_alone, 1000);
    EXPECT_GE(reached.full_modes, 1000);
    EXPECT_GE(reached.gating, 1200);
    EXPECT_GE(reached.non_gating, 1800);
    EXPECT_GE(reached.both_lists, 600);
    EXPECT_GE(reached.sixteen_gating, 50);
    EXPECT_GE(reached.sixteen_non_gating, 120);
    EXPECT_GE(reached.full_names, 1200);
    EXPECT_GE(reached.empty_names, 400);
    EXPECT_GE(reached.moved, 400);
    EXPECT_GE(reached.moved_in_part, 10);
    EXPECT_GE(reached.errors, 500);
    EXPECT_GE(reached.errors_without_text, 300);
    EXPECT_GE(reached.full_errors, 200);
    EXPECT_GE(reached.with_nul, 700);
    EXPECT_GE(reached.with_cr_lf, 2500);
}

class SecondReading : public testing::TestWithParam<std::uint64_t>
{
};

} // namespace

TEST_P(SecondReading, BothReadingsOfTenThousandDocumentsAgreeInEveryField)
{
    Random random(GetParam());
    Reached reached = {};
    for (int number = 0; number < DOCUMENTS_PER_SEED; ++number) {
        const std::string document = generate_document(random);
        const NaiveEntry naive = naive_scrape(document);
        ASSERT_EQ(differences_in_memory(document, naive), "")
            << "document " << number << " of seed " << GetParam() << ":\n"
            << printable(document);
        count(reached, document, naive);
    }
    expect_enough(reached);
}

INSTANTIATE_TEST_SUITE_P(Seeds, SecondReading, testing::Range<std::uint64_t>(1, 11));

TEST(SecondReadingOfFiles, BothReadingsOfFourHundredFilesAgreeInEveryField)
{
    const TempFolder folder;
    Random random(11);
    Reached reached = {};
    for (int number = 0; number < DOCUMENTS_THROUGH_FILES; ++number) {
        const std::string document = generate_document(random);
        folder.write("a.html", document);
        const NaiveEntry naive = naive_scrape(document);
        ASSERT_EQ(differences(read_report(folder.path("a.html")), naive), "")
            << "document " << number << ":\n"
            << printable(document);
        count(reached, document, naive);
    }
    EXPECT_GE(reached.passed, 30);
    EXPECT_GE(reached.failed, 80);
    EXPECT_GE(reached.not_reports, 50);
    EXPECT_GE(reached.errored, 30);
    EXPECT_GE(reached.with_nul, 20);
}

// The naive scraper must itself be right: what it makes of a report written out by
// hand.
TEST(NaiveScraper, ReadsTheFieldsOfAReportWrittenByHand)
{
    const NaiveEntry entry =
        naive_scrape(verdict("PASS") + mode_figure("Loopback", "stereo") +
                     bar(passing_tab("a") + gating_tab("b") + non_gating_tab("c")));
    EXPECT_EQ(entry.kind, ReportKind::Analyzed);
    EXPECT_TRUE(entry.passed);
    EXPECT_EQ(entry.analysis_mode, "Loopback");
    EXPECT_EQ(entry.analysis_mode_sub, "stereo");
    EXPECT_EQ(entry.failed_checks, Names());
    EXPECT_EQ(entry.non_gating_checks, Names({"c", "b"}));
    EXPECT_EQ(entry.moved_names, 1U);
    EXPECT_EQ(entry.dropped_names, 0U);
}

TEST(NaiveScraper, ReadsTheErrorOfAReportWrittenByHand)
{
    const NaiveEntry entry = naive_scrape(verdict("ERROR") + run_error("a &amp;lt; b"));
    EXPECT_EQ(entry.kind, ReportKind::RunError);
    EXPECT_EQ(entry.error, "a &lt; b");
}

TEST(DocumentGenerator, GivesTheSameDocumentsForTheSameSeedAndOthersForAnother)
{
    Random one(1);
    Random same(1);
    Random other(2);
    int different = 0;
    for (int number = 0; number < 100; ++number) {
        const std::string document = generate_document(one);
        EXPECT_EQ(document, generate_document(same));
        different += document != generate_document(other);
    }
    EXPECT_GE(different, 90);
}

TEST(DocumentGenerator, PrintsADocumentWithEveryByteReadable)
{
    EXPECT_EQ(printable("a\"\\\n\t" + std::string(1, '\0') + "\xff~"),
              "a\\\"\\\\\\n\n\\011\\000\\377~");
}
