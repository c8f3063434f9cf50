#include <array>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "cli/progress_text.h"

namespace {

std::string text_of(const RunPosition& position, std::uint64_t columns = 100)
{
    std::array<char, 128> bytes = {};
    BoundedText text = {bytes.data(), columns + 1, 0};
    append_progress_text(text, position);
    EXPECT_EQ(text.length, std::string(bytes.data()).size());
    return bytes.data();
}

// Of what is left when 1 of total is read after so many milliseconds.
std::string time_left(std::uint64_t total, std::uint64_t age)
{
    const std::string text = text_of({Stage::Reading, 1, total, age});
    return text.substr(text.find(')') + 1);
}

} // namespace

TEST(ProgressText, CountsFilesInGroupsOfThreeDigits)
{
    EXPECT_EQ(text_of({Stage::Listing, 0, 0, 0}), "listing: 0 files");
    EXPECT_EQ(text_of({Stage::Listing, 1, 0, 0}), "listing: 1 file");
    EXPECT_EQ(text_of({Stage::Listing, 999, 0, 0}), "listing: 999 files");
    EXPECT_EQ(text_of({Stage::Listing, 1000, 0, 0}), "listing: 1,000 files");
    EXPECT_EQ(text_of({Stage::Reading, 0, 3, 9000}), "reading: 0 of 3 (0 %)");
    EXPECT_EQ(text_of({Stage::Reading, 2, 3, 0}), "reading: 2 of 3 (66 %)");
    EXPECT_EQ(text_of({Stage::Reading, UINT64_MAX, UINT64_MAX, UINT64_MAX}),
              "reading: 18,446,744,073,709,551,615 of 18,446,744,073,709,551,615 (100 %), "
              "about 1 s left");
    EXPECT_EQ(text_of({Stage::Writing, 7, 9, 5000}), "writing");
}

TEST(ProgressText, GuessesTheTimeThatIsLeft)
{
    EXPECT_EQ(time_left(41, 999), "");
    EXPECT_EQ(time_left(41, 1000), ", about 40 s left");
    EXPECT_EQ(time_left(1, 1000), ", about 1 s left");
    EXPECT_EQ(time_left(2, 1499), ", about 1 s left");
    EXPECT_EQ(time_left(2, 1500), ", about 2 s left");
    EXPECT_EQ(time_left(2, 89'999), ", about 90 s left");
    EXPECT_EQ(time_left(2, 90'000), ", about 2 min left");
    EXPECT_EQ(time_left(2, 90 * 60'000 - 1), ", about 90 min left");
    EXPECT_EQ(time_left(2, 90 * 60'000), ", about 2 h left");
    EXPECT_EQ(time_left(2, 48 * 3'600'000), ", about 48 h left");
    EXPECT_EQ(time_left(2, 48 * 3'600'000 + 1), "");
    EXPECT_EQ(time_left(UINT64_MAX, UINT64_MAX), "");
}

TEST(ProgressText, LeavesOutWholePiecesThatHaveNoRoom)
{
    const RunPosition reading = {Stage::Reading, 3120, 20'000, 7000};
    EXPECT_EQ(text_of(reading, 48), "reading: 3,120 of 20,000 (15 %), about 38 s left");
    EXPECT_EQ(text_of(reading, 47), "reading: 3,120 of 20,000 (15 %)");
    EXPECT_EQ(text_of(reading, 30), "reading: 3,120 of 20,000");
    EXPECT_EQ(text_of(reading, 23), "reading (15 %)");
    EXPECT_EQ(text_of(reading, 6), "");
    const RunPosition listing = {Stage::Listing, 12'345, 0, 7000};
    EXPECT_EQ(text_of(listing, 20), "listing: 12,345");
    EXPECT_EQ(text_of(listing, 14), "listing files");
    EXPECT_EQ(text_of(listing, 12), "listing");
}
