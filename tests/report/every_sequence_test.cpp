// The report reader on every sequence of a few fragments; tools/exhaust goes further.

#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "report/document_generator.h"
#include "report/entry_comparison.h"
#include "report/every_sequence.h"
#include "report/scraped_report.h"
#include "support/build_speed.h"

namespace {

constexpr int LENGTH = IS_FAST_BUILD ? 5 : 4;

std::unique_ptr<SequenceTally> judged(const Scope& scope, int length, Share share = {})
{
    auto tally = std::make_unique<SequenceTally>();
    judge_sequences(scope, length, share, *tally);
    return tally;
}

void expect_same(const SequenceTally& tally, const SequenceTally& other)
{
    EXPECT_EQ(std::memcmp(&tally, &other, sizeof tally), 0);
}

class EverySequence : public testing::TestWithParam<Scope>
{
};

// Changes of an entry, each of which makes it differ from what it was.
constexpr int CHANGES = 9;

void change(ReportEntry& entry, int number)
{
    const auto add_one = [](char& byte) { byte = static_cast<char>(byte ^ 1); };
    switch (number) {
    case 0:
        entry.kind =
            entry.kind == ReportKind::RunError ? ReportKind::Unreadable : ReportKind::RunError;
        break;
    case 1:
        entry.passed ^= 1;
        break;
    case 2:
        add_one(entry.analysis_mode[std::strlen(entry.analysis_mode)]);
        entry.analysis_mode[REPORT_TEXT_SIZE - 1] = '\0';
        break;
    case 3:
        add_one(entry.analysis_mode_sub[0]);
        entry.analysis_mode_sub[1] = '\0';
        break;
    case 4:
        entry.failed_check_count ^= 1;
        break;
    case 5:
        entry.non_gating_check_count ^= 1;
        break;
    case 6:
        add_one(entry.non_gating_checks[0][0]);
        break;
    case 7:
        add_one(entry.non_gating_checks[15][39]);
        break;
    default:
        add_one(entry.error[0]);
        entry.error[1] = '\0';
    }
}

} // namespace

TEST_P(EverySequence, BothReadingsAgreeInEveryField)
{
    const Scope& scope = GetParam();
    const int length = LENGTH + (scope.extra_length == 0 ? 0 : 1);
    const auto tally = judged(scope, length);
    EXPECT_STREQ(tally->first_difference, "");
    EXPECT_EQ(tally->differences, 0U);
    EXPECT_EQ(tally->documents, count_sequences(scope.fragments.size(), length));
    EXPECT_EQ(tally->passed + tally->failed + tally->errored + tally->not_reports,
              tally->documents);
    std::cout << scope.name << ": sequences of up to " << length << ", " << tally->documents
              << " documents\n";
}

INSTANTIATE_TEST_SUITE_P(Scopes, EverySequence, testing::ValuesIn(SCOPES));

TEST(EverySequenceOfAllFragments, HasAsManyOfEachKindAsThereAreOrders)
{
    const auto tally = judged(SCOPES[0], 4);
    EXPECT_EQ(tally->documents, 1U + 20 + 400 + 8000 + 160000);
    EXPECT_EQ(tally->not_reports, 1U + 19 + 361 + 6859 + 130321);
    // Label, value and word, alone or with any fragment behind the word, with one other
    // than the label before them or one other than the value behind the label.
    EXPECT_EQ(tally->passed, 1U + 20 + 19 + 19);
    EXPECT_EQ(tally->errored, 1U + 20 + 19 + 19);
    EXPECT_EQ(count_sequences(20, 4), tally->documents);
    EXPECT_EQ(count_not_reports(4), tally->not_reports);
    EXPECT_EQ(count_with_verdict(4), tally->passed);
}

TEST(EverySequenceInside, ReachesWhatItIsThereFor)
{
    EXPECT_GT(judged(SCOPES[1], 4)->gating, 0U);
    EXPECT_GT(judged(SCOPES[1], 5)->non_gating, 0U);
    EXPECT_GT(judged(SCOPES[2], 4)->non_gating, 0U);
    EXPECT_EQ(judged(SCOPES[2], 4)->gating, 0U);
    EXPECT_GT(judged(SCOPES[3], 5)->sub_modes, 0U);
    EXPECT_GT(judged(SCOPES[3], 5)->modes, judged(SCOPES[3], 5)->sub_modes);
    EXPECT_GT(judged(SCOPES[4], 2)->error_texts, 0U);
}

TEST(EverySequenceInShares, IsNoMoreAndNoLessThanInOnePiece)
{
    const auto whole = judged(SCOPES[0], 3);
    const auto sum = judged(SCOPES[0], 3, {0, 3});
    EXPECT_LT(sum->documents, whole->documents / 2);
    add_tally(*sum, *judged(SCOPES[0], 3, {1, 3}));
    add_tally(*sum, *judged(SCOPES[0], 3, {2, 3}));
    expect_same(*sum, *whole);
}

TEST(Agreement, IsToldForTheSameDocumentsAsTheAbsenceOfDifferences)
{
    Random random(12);
    int agreements = 0;
    int disagreements = 0;
    for (int number = 0; number < 1000; ++number) {
        const std::string document = generate_document(random);
        const NaiveEntry naive = naive_scrape(document);
        const ReportEntry entry = scrape(document);
        ASSERT_TRUE(agree(entry, naive)) << printable(document);
        ASSERT_EQ(differences(entry, naive), "");
        for (int each = 0; each < CHANGES; ++each) {
            ReportEntry changed = entry;
            change(changed, each);
            ASSERT_EQ(agree(changed, naive), differences(changed, naive).empty())
                << "change " << each << " of:\n"
                << printable(document);
            (agree(changed, naive) ? agreements : disagreements) += 1;
        }
    }
    EXPECT_GE(disagreements, 8000);
    // A change behind the end of a sixteenth name is none.
    EXPECT_LT(agreements, 200);
}
