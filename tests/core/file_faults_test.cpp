// Whole-file reading and writing when the system's calls come back wrong.

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "core/files.h"
#include "support/call_faults.h"
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
    const CallFault fault(pread_call, 1, -1, EIO);
    EXPECT_EQ(read(), "(refused)");
    EXPECT_EQ(fault.failures(), 1U);
}

TEST_F(FileFaults, AFileThatGivesOneByteLessThanItsSizeIsRefused)
{
    const ShortTransfers transfers(11);
    const CallFault fault(pread_call, 2, 0, EIO);
    EXPECT_EQ(read(), "(refused)");
    EXPECT_EQ(fault.failures(), 1U);
}

TEST_F(FileFaults, AFileThatGivesNothingIsRefused)
{
    const CallFault fault(pread_call, 1, 0, EIO);
    EXPECT_EQ(read(), "(refused)");
    EXPECT_EQ(fault.failures(), 1U);
}

TEST_F(FileFaults, AnErrorAfterAShortReadRefusesTheFile)
{
    const ShortTransfers transfers(5);
    const CallFault fault(pread_call, 3, -1, EIO);
    EXPECT_EQ(read(), "(refused)");
    EXPECT_EQ(fault.failures(), 1U);
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
    const CallFault fault(lseek_call, 1, -1, EIO);
    const std::uint64_t allocations = allocation_count();
    EXPECT_EQ(read(), "(refused)");
    EXPECT_EQ(fault.failures(), 1U);
    EXPECT_EQ(allocation_count(), allocations);
}

TEST_F(FileFaults, ASizeToWhichNothingCanBeAddedRefusesTheFile)
{
    const CallFault fault(lseek_call, 1, INT64_MAX, EIO);
    const std::uint64_t allocations = allocation_count();
    EXPECT_EQ(read(), "(refused)");
    EXPECT_EQ(fault.failures(), 1U);
    EXPECT_EQ(allocation_count(), allocations);
}

// What is asked for beyond the size would land behind the block.
TEST_F(FileFaults, AFileThatGrowsMeanwhileGivesTheBytesOfTheSizeThatItHad)
{
    const CallFault fault(lseek_call, 1, 4, EIO);
    const ShortTransfers transfers(3);
    EXPECT_EQ(read(), "twel");
    EXPECT_EQ(fault.failures(), 1U);
}

TEST_F(FileFaults, AWriteThatFailsIsToldAndLeavesAnEmptyFile)
{
    const CallFault fault(write_call, 1, -1, EIO);
    EXPECT_FALSE(write("new text"));
    EXPECT_EQ(fault.failures(), 1U);
    EXPECT_EQ(folder_.read("file"), "");
}

TEST_F(FileFaults, AWriteThatStopsShortIsToldAndLeavesACutFile)
{
    const ShortTransfers transfers(7);
    const CallFault fault(write_call, 2, -1, EIO);
    EXPECT_FALSE(write("new text"));
    EXPECT_EQ(fault.failures(), 1U);
    EXPECT_EQ(folder_.read("file"), "new tex");
}

TEST_F(FileFaults, AWriteThatTakesNothingIsTold)
{
    const CallFault fault(write_call, 1, 0, EIO);
    EXPECT_FALSE(write("new text"));
    EXPECT_EQ(fault.failures(), 1U);
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
