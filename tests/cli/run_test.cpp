// One file of the list; whole runs are tested with the built program.

#include <cstring>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "cli/run.h"
#include "cli/sample_reports.h"
#include "core/paths.h"
#include "support/temp_folder.h"

namespace {

bool all_bytes_are(const void* begin, std::size_t size, unsigned char value)
{
    const std::string_view bytes(static_cast<const char*>(begin), size);
    return bytes.find_first_not_of(static_cast<char>(value)) == std::string_view::npos;
}

// Reads into a record of which every byte is set, so that what a call leaves alone can be
// told.
class ReadEntry : public testing::Test
{
protected:
    ReadEntry()
    {
        std::memset(&entry, 0xAB, sizeof entry);
    }

    void read(const std::string& input, const std::string& relative)
    {
        read_entry(input.c_str(), relative.c_str(), entry);
        EXPECT_EQ(static_cast<const void*>(entry.relative_path),
                  static_cast<const void*>(relative.c_str()));
    }

    TempFolder temp;
    ReportEntry entry;
};

} // namespace

TEST_F(ReadEntry, ReadsTheFileBelowTheInputDirectoryAsTyped)
{
    temp.write("in/a/r.html", FULL_FAILED_REPORT);
    const std::string input = temp.path("in//./");
    read(input, "a/r.html");
    EXPECT_EQ(entry.kind, ReportKind::Analyzed);
    EXPECT_EQ(entry.failed_check_count, 2U);
}

TEST_F(ReadEntry, OfAMissingFileIsUnreadable)
{
    read(temp.path(), "gone.html");
    EXPECT_EQ(entry.kind, ReportKind::Unreadable);
    EXPECT_EQ(entry.passed, 0);
}

// The reader gets the longest path that fits (the system refuses it) and leaves
// the unused name slots alone, which is how this differs from a cleared entry.
TEST_F(ReadEntry, HandsAPathOf8191CharactersToTheReader)
{
    const std::string input(4096, 'i');
    const std::string relative(4094, 'r');
    read(input, relative);
    EXPECT_EQ(entry.kind, ReportKind::Unreadable);
    EXPECT_TRUE(all_bytes_are(entry.failed_checks, sizeof entry.failed_checks, 0xAB));
}

TEST_F(ReadEntry, WithAnOverLongPathLeavesAClearedUnreadableEntry)
{
    for (const std::size_t length : {std::size_t{4095}, std::size_t{4096}, std::size_t{100000}}) {
        std::memset(&entry, 0xAB, sizeof entry);
        read(std::string(4096, 'i'), std::string(length, 'r'));
        EXPECT_EQ(entry.kind, ReportKind::Unreadable);
        entry.kind = ReportKind{};
        entry.relative_path = nullptr;
        EXPECT_TRUE(all_bytes_are(&entry, sizeof entry, 0)) << "but for these two";
    }
}
