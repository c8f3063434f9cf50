// Whole-file reading and writing when the system's calls come back wrong.

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "core/files.h"
#include "support/allocation_faults.h"
#include "support/file_faults.h"
#include "support/temp_folder.h"

namespace {

char untouched[] = "untouched";

class FileFaults : public testing::Test
{
protected:
    void SetUp() override
    {
        folder_.write("file", "twelve bytes");
        path_ = folder_.path("file");
    }

    // Reads the file; its text, or what tells that the read failed as it should.
    std::string read() const
    {
        char* contents = untouched;
        if (!read_whole_file(path_.c_str(), contents)) {
            return contents == untouched ? "(refused)" : "(refused, place touched)";
        }
        std::string text = contents;
        std::free(contents);
        return text;
    }

    bool write(const std::string& text) const
    {
        return write_whole_file(path_.c_str(), text.data(), text.size());
    }

    TempFolder folder_;
    std::string path_;
};

TEST_F(FileFaults, AReadThatFailsRefusesTheFile)
{
    const FileFault fault(FileCall::Read, 1, -1);
    EXPECT_EQ(read(), "(refused)");
    EXPECT_TRUE(fault.happened());
}

TEST_F(FileFaults, AFileThatGivesOneByteLessThanItsSizeIsRefused)
{
    const ShortTransfers transfers(11);
    const FileFault fault(FileCall::Read, 2, 0);
    EXPECT_EQ(read(), "(refused)");
    EXPECT_TRUE(fault.happened());
}

TEST_F(FileFaults, AFileThatGivesNothingIsRefused)
{
    const FileFault fault(FileCall::Read, 1, 0);
    EXPECT_EQ(read(), "(refused)");
    EXPECT_TRUE(fault.happened());
}

TEST_F(FileFaults, AnErrorAfterAShortReadRefusesTheFile)
{
    const ShortTransfers transfers(5);
    const FileFault fault(FileCall::Read, 3, -1);
    EXPECT_EQ(read(), "(refused)");
    EXPECT_TRUE(fault.happened());
}

TEST_F(FileFaults, ShortReadsAddUpToTheWholeFile)
{
    for (const std::size_t limit : {1U, 5U, 6U, 11U, 12U}) {
        const ShortTransfers transfers(limit);
        EXPECT_EQ(read(), "twelve bytes") << limit;
    }
}

TEST_F(FileFaults, ASeekToTheEndThatFailsRefusesTheFile)
{
    const FileFault fault(FileCall::Seek, 1, -1);
    const std::uint64_t allocations = allocation_count();
    EXPECT_EQ(read(), "(refused)");
    EXPECT_TRUE(fault.happened());
    EXPECT_EQ(allocation_count(), allocations);
}

TEST_F(FileFaults, ASizeToWhichNothingCanBeAddedRefusesTheFile)
{
    const FileFault fault(FileCall::Seek, 1, INT64_MAX);
    const std::uint64_t allocations = allocation_count();
    EXPECT_EQ(read(), "(refused)");
    EXPECT_TRUE(fault.happened());
    EXPECT_EQ(allocation_count(), allocations);
}

// What is asked for beyond the size would land behind the block.
TEST_F(FileFaults, AFileThatGrowsMeanwhileGivesTheBytesOfTheSizeThatItHad)
{
    const FileFault fault(FileCall::Seek, 1, 4);
    const ShortTransfers transfers(3);
    EXPECT_EQ(read(), "twel");
    EXPECT_TRUE(fault.happened());
}

TEST_F(FileFaults, AWriteThatFailsIsToldAndLeavesAnEmptyFile)
{
    const FileFault fault(FileCall::Write, 1, -1);
    EXPECT_FALSE(write("new text"));
    EXPECT_TRUE(fault.happened());
    EXPECT_EQ(folder_.read("file"), "");
}

TEST_F(FileFaults, AWriteThatStopsShortIsToldAndLeavesACutFile)
{
    const ShortTransfers transfers(7);
    const FileFault fault(FileCall::Write, 2, -1);
    EXPECT_FALSE(write("new text"));
    EXPECT_TRUE(fault.happened());
    EXPECT_EQ(folder_.read("file"), "new tex");
}

TEST_F(FileFaults, AWriteThatTakesNothingIsTold)
{
    const FileFault fault(FileCall::Write, 1, 0);
    EXPECT_FALSE(write("new text"));
    EXPECT_TRUE(fault.happened());
}

TEST_F(FileFaults, ShortWritesAddUpToTheWholeText)
{
    for (const std::size_t limit : {1U, 3U, 7U, 8U}) {
        const ShortTransfers transfers(limit);
        EXPECT_TRUE(write("new text")) << limit;
        EXPECT_EQ(folder_.read("file"), "new text") << limit;
    }
}

} // namespace
