#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/files.h"
#include "support/call_faults.h"
#include "support/process.h"
#include "support/temp_folder.h"

namespace {

constexpr unsigned HANG_SECONDS = 20;
const std::string TOO_LONG(256, 'n'); // for a name

// For the length of one test, since the process shares it.
class Umask
{
public:
    explicit Umask(mode_t mask) : before_(umask(mask)) {}
    ~Umask()
    {
        umask(before_);
    }
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;

private:
    mode_t before_;
};

unsigned mode_of(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

// Whether reading fails, leaves the result place untouched and no file open.
bool refuses_to_read(const std::string& path)
{
    char untouched = 'u';
    char* contents = &untouched;
    const std::size_t before = open_descriptors();
    const bool read = read_whole_file(path.c_str(), contents);
    const bool kept = contents == &untouched && untouched == 'u';
    if (contents != &untouched) {
        std::free(contents);
    }
    return !read && kept && open_descriptors() == before;
}

void expect_contents(const std::string& path, std::string_view bytes)
{
    char* contents = nullptr;
    const std::size_t before = open_descriptors();
    ASSERT_TRUE(read_whole_file(path.c_str(), contents)) << path;
    EXPECT_EQ(std::string_view(contents, bytes.size()), bytes);
    EXPECT_EQ(contents[bytes.size()], '\0');
    EXPECT_EQ(open_descriptors(), before);
    std::free(contents);
}

bool write_text(const std::string& path, std::string_view bytes)
{
    return write_whole_file(path.c_str(), bytes.data(), bytes.size());
}

std::string every_byte()
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

// A folder with what can be in the way of a path.
class Files : public testing::Test
{
protected:
    Files()
    {
        temp.write("file", "twelve bytes");
        temp.make_folder("folder");
        temp.make_fifo("fifo");
        temp.make_socket("socket");
        temp.link("file", "filelink");
        temp.link("folder", "link");
        temp.link("link", "second");
        temp.link("nowhere", "dangling");
        temp.link("loop", "loop");
        path = temp.path("file");
    }

    TempFolder temp;
    std::string path; // of the file of twelve bytes
};

using ReadWholeFile = Files;
using WriteWholeFile = Files;
using IsDirectory = Files;
using MakeFolder = Files;

} // namespace

TEST_F(ReadWholeFile, OfWhatIsNoFileThatCanBeReadFailsAndLeavesTheResultPlaceUntouched)
{
    for (const char* name : {"missing", "missing/below", "file/below", "dangling", "loop", "folder",
                             "link", "socket"}) {
        EXPECT_TRUE(refuses_to_read(temp.path(name))) << name;
    }
    const std::uint64_t closed = close_call.made;
    EXPECT_TRUE(refuses_to_read(temp.path("missing")));
    EXPECT_EQ(close_call.made, closed) << "what was not opened is not closed";
    // Folders of other file systems may report other sizes.
    for (const std::string& each :
         {temp.path(TOO_LONG), std::string(), std::string(5000, '/') + "etc/passwd",
          std::string("/"), std::string("/dev"), std::string("/proc")}) {
        EXPECT_TRUE(refuses_to_read(each)) << each;
    }
}

TEST_F(ReadWholeFile, WithoutReadPermissionFailsAndLeavesTheResultPlaceUntouched)
{
    temp.write("closed/readable", "x");
    temp.write("secret", "x");
    temp.chmod("secret", 0);
    temp.chmod("file", 0444);
    temp.chmod("closed", 0600);
    const int refused = run_unprivileged([&] {
        return (refuses_to_read(path) ? 1 : 0) + (refuses_to_read(temp.path("secret")) ? 2 : 0) +
               (refuses_to_read(temp.path("closed/readable")) ? 4 : 0);
    });
    EXPECT_EQ(refused, 6);
}

TEST_F(ReadWholeFile, GivesAllBytesAndANulBehindThem)
{
    std::string large(5000001, 'x');
    large.front() = 'f';
    large.back() = 'b';
    for (const std::string& bytes :
         {std::string(), std::string("x"), std::string("line\r\nline\n"), std::string("\0a\0\0", 4),
          every_byte(), std::string(4095, 'x'), std::string(4096, 'x'), large}) {
        temp.write("file", bytes);
        expect_contents(path, bytes);
        expect_contents(temp.path("filelink"), bytes);
    }
}

TEST_F(ReadWholeFile, AllocatesTheSizePlusOneByteOnce)
{
    std::vector<std::size_t> sizes;
    const Interception note(malloc_call, [&](const auto& next, std::size_t size) {
        sizes.push_back(size);
        return next(size);
    });
    expect_contents(path, "twelve bytes");
    EXPECT_EQ(sizes, std::vector<std::size_t>({13}));
}

// A file whose descriptor is 0 is open, and what an earlier call left in errno says
// nothing about this one.
TEST_F(ReadWholeFile, OpensTheFileOnceWhateverErrnoHolds)
{
    const int status = run_unprivileged([&] {
        close(STDIN_FILENO);
        char* contents = nullptr;
        for (const int left_over : {EWOULDBLOCK, 0}) {
            errno = left_over;
            if (!read_whole_file(path.c_str(), contents)) {
                return 2;
            }
            std::free(contents);
        }
        return open("/dev/null", O_RDONLY) == STDIN_FILENO ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
}

TEST_F(ReadWholeFile, OfAFifoFailsAtOnceWithAndWithoutAWriter)
{
    const int status = run_unprivileged([&] {
        alarm(HANG_SECONDS);
        return refuses_to_read(temp.path("fifo")) ? 0 : 1;
    });
    EXPECT_EQ(status, 0) << "128 + " << SIGALRM << " means that it waited";

    const int writer = open(temp.path("fifo").c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_GE(writer, 0);
    EXPECT_EQ(write(writer, "bytes", 5), 5);
    EXPECT_TRUE(refuses_to_read(temp.path("fifo")));
    close(writer);
}

// So is a file opened at first on which another program holds a lease.
TEST_F(ReadWholeFile, WaitsForAFileThatCannotBeHadAtOnce)
{
    std::vector<int> waiting_flags;
    const Interception note(open_call, [&](const auto& next, const char* name, int flags, mode_t) {
        EXPECT_NE(flags & O_NOCTTY, 0) << "a terminal would become ours";
        waiting_flags.push_back(flags & O_NONBLOCK);
        return next(name, flags, 0);
    });
    expect_contents(path, "twelve bytes");
    const CallFault lease(open_call, 1, -1, EWOULDBLOCK);
    expect_contents(path, "twelve bytes");
    EXPECT_EQ(waiting_flags, std::vector<int>({O_NONBLOCK, 0}));
}

TEST_F(ReadWholeFile, WithoutMemoryFailsAndLeavesTheResultPlaceUntouched)
{
    temp.write("empty", "");
    temp.write("sparse", "");
    ASSERT_EQ(truncate(temp.path("sparse").c_str(), off_t{1} << 30), 0);
    for (const char* name : {"empty", "file", "sparse"}) {
        const AllocationFault fault(1);
        EXPECT_TRUE(refuses_to_read(temp.path(name)));
        EXPECT_EQ(fault.failures(), 1U) << name;
    }
}

TEST_F(ReadWholeFile, RefusesAFileThatGivesLessThanItsSize)
{
    struct Row
    {
        std::size_t limit;  // bytes that one read gives
        std::uint64_t call; // the read that fails
        ssize_t result;
    };
    for (const Row& row : {Row{12, 1, -1}, Row{12, 1, 0}, Row{11, 2, 0}, Row{5, 3, -1}}) {
        const ShortTransfers transfers(row.limit);
        const CallFault fault(pread_call, row.call, row.result, EIO);
        EXPECT_TRUE(refuses_to_read(path)) << row.limit;
        EXPECT_EQ(fault.failures(), 1U);
    }
}

TEST_F(ReadWholeFile, AddsShortReadsUp)
{
    for (const std::size_t limit : {1U, 5U, 6U, 11U, 12U}) {
        const ShortTransfers transfers(limit);
        expect_contents(path, "twelve bytes");
    }
}

TEST_F(ReadWholeFile, RefusesASizeThatCannotBeToldOrToWhichNothingCanBeAdded)
{
    for (const off_t size : {off_t{-1}, off_t{INT64_MAX}}) {
        const CallFault fault(lseek_call, 1, size, EIO);
        const AllocationFault no_memory(1);
        EXPECT_TRUE(refuses_to_read(path));
        EXPECT_EQ(fault.failures(), 1U);
        EXPECT_EQ(no_memory.failures(), 0U);
    }
}

// What is asked for beyond the size would land behind the block.
TEST_F(ReadWholeFile, OfAFileThatGrowsMeanwhileGivesTheBytesOfTheSizeThatItHad)
{
    const CallFault fault(lseek_call, 1, 4, 0);
    const ShortTransfers transfers(3);
    expect_contents(path, "twel");
    EXPECT_EQ(fault.failures(), 1U);
}

TEST_F(WriteWholeFile, LeavesExactlyTheGivenBytesAndNoFileOpen)
{
    const std::size_t before = open_descriptors();
    for (const std::string& bytes : {std::string("longer than the next"), std::string("new"),
                                     std::string(), every_byte() + "\r\n\n"}) {
        ASSERT_TRUE(write_text(path, bytes));
        EXPECT_EQ(temp.read("file"), bytes);
    }
    ASSERT_TRUE(write_whole_file(path.c_str(), "abcdef", 3));
    EXPECT_EQ(temp.read("file"), "abc");
    EXPECT_FALSE(write_text("/dev/full", "x"));
    EXPECT_TRUE(write_text("/dev/full", "")) << "no byte was refused";
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(WriteWholeFile, HandsAllBytesToTheSystemInOneWrite)
{
    for (const std::size_t length : {1U, 4096U, 4097U, 5000003U}) {
        const std::string bytes(length, 'x');
        const std::uint64_t before = write_call.made;
        ASSERT_TRUE(write_text(path, bytes));
        EXPECT_EQ(write_call.made - before, 1U) << length;
        EXPECT_EQ(temp.read("file"), bytes);
    }
}

TEST_F(WriteWholeFile, GivesANewFileTheModeOfANewStreamFile)
{
    for (const mode_t mask : {0U, 022U}) {
        const std::string created = temp.path("mask" + std::to_string(mask));
        const Umask set(mask);
        ASSERT_TRUE(write_text(created, "x"));
        EXPECT_EQ(mode_of(created), 0666U & ~mask);
    }
}

TEST_F(WriteWholeFile, WritesThroughASymbolicLink)
{
    ASSERT_TRUE(write_text(temp.path("filelink"), "new"));
    ASSERT_TRUE(write_text(temp.path("dangling"), "made"));
    EXPECT_EQ(temp.read("file"), "new");
    EXPECT_EQ(temp.read("nowhere"), "made");
}

TEST_F(WriteWholeFile, IsToldOfAWriteThatFailsAndLeavesTheCutFile)
{
    struct Row
    {
        std::size_t limit;  // bytes that one write takes
        std::uint64_t call; // the write that fails
        ssize_t result;
        const char* left;
    };
    for (const Row& row : {Row{8, 1, -1, ""}, Row{8, 1, 0, ""}, Row{7, 2, -1, "new tex"}}) {
        const ShortTransfers transfers(row.limit);
        const CallFault fault(write_call, row.call, row.result, ENOSPC);
        EXPECT_FALSE(write_text(path, "new text"));
        EXPECT_EQ(fault.failures(), 1U);
        EXPECT_EQ(temp.read("file"), row.left);
    }
}

TEST_F(WriteWholeFile, AddsShortWritesUp)
{
    for (const std::size_t limit : {1U, 3U, 7U, 8U}) {
        const ShortTransfers transfers(limit);
        EXPECT_TRUE(write_text(path, "new text")) << limit;
        EXPECT_EQ(temp.read("file"), "new text") << limit;
    }
}

TEST_F(WriteWholeFile, ToAPathThatCannotBeOpenedFailsAndCreatesNothing)
{
    const std::vector<std::string> before = temp.names();
    for (const std::string& name : {std::string("missing/file"), std::string("file/below"),
                                    std::string("folder"), std::string("loop"), TOO_LONG}) {
        EXPECT_FALSE(write_text(temp.path(name), "x")) << name;
        EXPECT_FALSE(write_text(temp.path(name), "")) << name;
    }
    EXPECT_FALSE(write_text("", "x"));
    EXPECT_EQ(temp.names(), before);
    EXPECT_EQ(temp.read("file"), "twelve bytes");
}

TEST_F(IsDirectory, IsTrueForFoldersAndLinksToThemAlone)
{
    temp.chmod("file", 07777);
    for (const std::string& each :
         {temp.path(), temp.path("folder"), temp.path("folder/"), temp.path("link"),
          temp.path("second"), std::string("/"), std::string(".")}) {
        EXPECT_TRUE(is_directory(each.c_str())) << each;
    }
    for (const std::string& each :
         {temp.path("file"), temp.path("file/"), temp.path("fifo"), temp.path("missing"),
          temp.path("file/below"), temp.path("dangling"), temp.path("loop"), temp.path("filelink"),
          std::string("/dev/null"), std::string()}) {
        EXPECT_FALSE(is_directory(each.c_str())) << each;
    }
}

TEST_F(IsDirectory, TestsTheDirectoryBitAloneSoASocketAndABlockDeviceCount)
{
    const mode_t types[] = {S_IFDIR, S_IFSOCK, S_IFBLK, S_IFREG, S_IFCHR, S_IFIFO, S_IFLNK};
    std::vector<mode_t> directories;
    for (const mode_t type : types) {
        const Interception tell_type(stat_call, [=](const auto&, const char*, struct stat* status) {
            status->st_mode = type | 0777U;
            return 0;
        });
        if (is_directory("any")) {
            directories.push_back(type);
        }
    }
    EXPECT_EQ(directories, std::vector<mode_t>({S_IFDIR, S_IFSOCK, S_IFBLK}));
    EXPECT_TRUE(is_directory(temp.path("socket").c_str()));
}

TEST_F(MakeFolder, OnAnyEntrySucceedsAndLeavesIt)
{
    temp.chmod("folder", 0700);
    const std::vector<std::string> before = temp.names();
    for (const char* name : {"folder", "link", "file", "fifo", "socket", "dangling", "loop"}) {
        EXPECT_TRUE(make_folder(temp.path(name).c_str())) << name;
    }
    EXPECT_TRUE(make_folder("/"));
    EXPECT_EQ(temp.names(), before);
    EXPECT_EQ(mode_of(temp.path("folder")), 0700U);
    EXPECT_EQ(temp.read("file"), "twelve bytes");
}

TEST_F(MakeFolder, WhereNoneCanBeFailsAndCreatesNothing)
{
    const std::vector<std::string> before = temp.names();
    for (const std::string& name : {std::string("missing/folder"), std::string("file/folder"),
                                    std::string("dangling/folder"), TOO_LONG}) {
        EXPECT_FALSE(make_folder(temp.path(name).c_str())) << name;
    }
    EXPECT_FALSE(make_folder(""));
    EXPECT_EQ(temp.names(), before);
}

TEST_F(MakeFolder, CreatesOneFolderOfMode0755LessTheUmask)
{
    for (const mode_t mask : {0U, 022U, 002U, 027U, 077U, 0777U}) {
        const std::string made = temp.path("mask" + std::to_string(mask));
        {
            const Umask set(mask);
            ASSERT_TRUE(make_folder((made + "/").c_str()));
        }
        EXPECT_EQ(mode_of(made), 0755U & ~mask);
        EXPECT_TRUE(is_directory(made.c_str()));
    }
}
