#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <unistd.h>

#include "core/read_ahead.h"
#include "support/call_faults.h"
#include "support/process.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;
using ::testing::ElementsAre;

namespace {

constexpr std::size_t FILES = 200;
const std::string UNREADABLE = "(unreadable)";

// Files of which each holds its own name, and a system that says how long reading takes.
class ReadAheadFile : public testing::Test
{
protected:
    ReadAheadFile()
        : temp(folder_in_memory()), usage_(getrusage_call,
                                           [this](const auto&, int, rusage* usage) {
                                               *usage = {};
                                               usage->ru_inblock = blocks;
                                               return 0;
                                           }),
          open_(open_call,
                [this](const auto& next, const char* path, int flags, mode_t mode) {
                    const std::string name = fs::path(path).filename();
                    opened[name].push_back(read.size());
                    const int file = next(path, flags, mode);
                    most = std::max(most, open_descriptors() - before);
                    return file;
                }),
          advise_(posix_fadvise_call,
                  [this](const auto&, int, off_t offset, off_t length, int advice) {
                      EXPECT_EQ(offset, 0);
                      EXPECT_EQ(advice, POSIX_FADV_WILLNEED);
                      asked.push_back(length);
                      return EINVAL;
                  })
    {
        for (std::size_t i = 0; i < FILES; ++i) {
            names.push_back(std::to_string(i) + ".html");
            temp.write(names[i], names[i]);
        }
    }

    // Reads all files, or the first ones, each after at, if any, has been told its index. All but
    // these must hold what they did.
    void read_files(const std::map<std::size_t, std::string>& others = {},
                    const std::function<void(std::size_t)>& at = {}, std::size_t count = FILES)
    {
        std::vector<const char*> paths;
        for (const std::string& name : names) {
            paths.push_back(name.c_str());
        }
        const std::string folder = temp.path();
        before = open_descriptors();
        ReadAhead ahead;
        read_ahead_init(ahead, folder.c_str(), paths.data(), paths.size());
        while (read.size() < count) {
            if (at) {
                at(read.size());
            }
            char* contents = nullptr;
            const bool complete =
                read_ahead_file(ahead, temp.path(names[read.size()]).c_str(), contents);
            read.emplace_back(complete ? contents : UNREADABLE);
            std::free(contents);
            blocks += blocks_a_file;
        }
        read_ahead_free(ahead);
        EXPECT_EQ(open_descriptors(), before);
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(read[i], others.count(i) > 0 ? others.at(i) : names[i]) << i;
        }
    }

    // How many files were opened before their turn.
    std::size_t ahead() const
    {
        return static_cast<std::size_t>(std::ranges::count_if(
            opened, [&](const auto& each) { return names[each.second.front()] != each.first; }));
    }

    TempFolder temp;
    std::vector<std::string> names;
    long blocks_a_file = READ_AHEAD_FEW + 1;
    long blocks = 0;                                        // that were brought in so far
    std::vector<std::string> read;                          // contents so far
    std::map<std::string, std::vector<std::size_t>> opened; // when: files read until then
    std::vector<off_t> asked;
    std::size_t before = 0; // descriptors in use
    std::size_t most = 0;   // that reading used at a time

private:
    Interception<int, int, rusage*> usage_;
    Interception<int, const char*, int, mode_t> open_;
    Interception<int, int, off_t, off_t, int> advise_;
};

} // namespace

TEST_F(ReadAheadFile, OpensNothingAheadAndSeldomLooksWhileNothingIsWaitedFor)
{
    blocks_a_file = READ_AHEAD_FEW;
    const std::uint64_t calls = stat_call.made + fstat_call.made;
    const std::uint64_t looks = getrusage_call.made;
    read_files();
    EXPECT_EQ(ahead(), 0U);
    EXPECT_EQ(most, 1U);
    EXPECT_EQ(stat_call.made + fstat_call.made, calls);
    EXPECT_EQ(getrusage_call.made - looks, 2 + FILES / READ_AHEAD_LOOK_EVERY);
}

TEST_F(ReadAheadFile, OpensWhatComesNextOnceAndAheadWhileFilesAreBroughtIn)
{
    read_files({}, [&](std::size_t index) { blocks_a_file = index < FILES / 4 ? 2 : 0; });
    for (std::size_t i = 2; i < FILES; ++i) {
        const std::uint64_t first_ahead =
            std::max<std::uint64_t>(i, READ_AHEAD_FILES + 1) - READ_AHEAD_FILES;
        const bool quick = i >= 2 * READ_AHEAD_LOOK_EVERY + READ_AHEAD_FILES + 1;
        EXPECT_THAT(opened[names[i]], ElementsAre(quick ? i : first_ahead)) << i;
    }
    EXPECT_EQ(most, READ_AHEAD_FILES + 1);
    EXPECT_EQ(asked.size(), ahead());
    EXPECT_THAT(std::vector(asked.begin(), asked.begin() + 1), ElementsAre(names[2].size()));
}

TEST_F(ReadAheadFile, OpensAheadOnAShareWhoseFilesTakeLong)
{
    const Interception share(statfs_call, [](const auto&, const char*, struct statfs* status) {
        status->f_type = FUSE_SUPER_MAGIC;
        return 0;
    });
    std::size_t slow = 0;   // that many files take long,
    std::int64_t taken = 0; // each so many nanoseconds
    const Interception clock(clock_gettime_call, [&](const auto&, clockid_t, timespec* now) {
        // A second begins while the first file is read.
        const std::int64_t time =
            3'999'999'999 + static_cast<std::int64_t>(std::min(read.size(), slow)) * taken;
        *now = {time / 1'000'000'000, time % 1'000'000'000};
        return 0;
    });
    const auto files_ahead = [&](std::size_t files, std::int64_t nanoseconds) {
        slow = files;
        taken = nanoseconds;
        read.clear();
        opened.clear();
        read_files();
        return ahead();
    };
    EXPECT_EQ(files_ahead(FILES, READ_AHEAD_SLOW), 0U);
    EXPECT_EQ(files_ahead(FILES, READ_AHEAD_SLOW + 1), FILES - 2);
    EXPECT_EQ(files_ahead(1, READ_AHEAD_SLOW + 1), FILES - 2) << "though quick since then";
}

// What it held, what it is, whether it may be read, and where its path leads.
TEST_F(ReadAheadFile, GivesWhatAFileThatChangesMeanwhileHoldsInItsTurn)
{
    temp.write("one/x.html", "one");
    temp.write("two/x.html", "two");
    temp.link("one", "now");
    names[80] = "now/x.html";
    const auto change = [&](std::size_t index) {
        if (index != 50) {
            return;
        }
        fs::remove(temp.path(names[70]));
        temp.write("new", "new");
        fs::rename(temp.path("new"), temp.path(names[71]));
        temp.write(names[72], "longer than before");
        fs::resize_file(temp.path(names[73]), 0);
        fs::remove(temp.path(names[74]));
        temp.make_fifo(names[74]);
        temp.chmod(names[75], 0400);
        fs::remove(temp.path("now"));
        temp.link("two", "now");
    };
    read_files({{70, UNREADABLE},
                {71, "new"},
                {72, "longer than before"},
                {73, ""},
                {74, UNREADABLE},
                {80, "two"}},
               change);
    EXPECT_THAT(opened[names[75]], ElementsAre(43, 75)) << "its rights may have gone";
}

TEST_F(ReadAheadFile, OpensAnewWhateverIsOtherThanItWas)
{
    const std::vector<std::function<void(struct stat&)>> changes = {
        [](struct stat& status) { ++status.st_dev; },
        [](struct stat& status) { ++status.st_ino; },
        [](struct stat& status) { ++status.st_ctim.tv_sec; },
        [](struct stat& status) { --status.st_ctim.tv_nsec; },
    };
    const Interception later(stat_call, [&](const auto& next, const char* path, auto* status) {
        const int result = next(path, status);
        const std::size_t index = read.size() - 70;
        if (index < changes.size() && path == temp.path(names[read.size()])) {
            changes[index](*status);
        }
        return result;
    });
    read_files();
    for (std::size_t i = 69; i < 75; ++i) {
        EXPECT_EQ(opened[names[i]].size(), i > 69 && i < 74 ? 2U : 1U) << i;
    }
}

TEST_F(ReadAheadFile, OpensNothingAheadThatIsNoPlainFile)
{
    for (const std::size_t index : {60U, 61U, 62U}) {
        fs::remove(temp.path(names[index]));
    }
    temp.make_fifo(names[60]);
    temp.link("/dev/null", names[61]);
    temp.make_folder(names[62]);
    // It becomes one when it has been examined.
    const Interception examined(stat_call, [&](const auto& next, const char* path, auto* status) {
        const int result = next(path, status);
        if (path == temp.path(names[63]) && read.size() < 60) {
            fs::remove(path);
            temp.make_fifo(names[63]);
        }
        return result;
    });
    read_files({{60, UNREADABLE}, {61, ""}, {62, UNREADABLE}, {63, UNREADABLE}});
    for (const std::size_t index : {60U, 61U, 62U}) {
        EXPECT_THAT(opened[names[index]], ElementsAre(index));
    }
    EXPECT_THAT(opened[names[63]], ElementsAre(31, 63));
}

TEST_F(ReadAheadFile, DoesNotWaitForAFileThatCannotBeHadAtOnce)
{
    const CallFault lease(open_call, 10, -1, EWOULDBLOCK);
    read_files();
    EXPECT_EQ(lease.failures(), 1U);
    EXPECT_EQ(ahead(), FILES - 3);
}

// The files ahead hold the last descriptors; a file that was not there then needs one.
TEST_F(ReadAheadFile, ClosesWhatIsAheadBeforeAFileIsUnreadableForWantOfDescriptors)
{
    for (const int error : {EMFILE, ENFILE, EACCES}) {
        read.clear();
        fs::remove(temp.path(names[100]));
        std::optional<CallFault<int, const char*, int, mode_t>> fault;
        const std::string expected = error == EACCES ? UNREADABLE : names[100];
        read_files({{100, expected}}, [&](std::size_t index) {
            if (index == 100) {
                temp.write(names[100], names[100]);
                fault.emplace(open_call, 1, -1, error);
            }
        });
        EXPECT_EQ(fault->failures(), 1U);
    }
}

TEST_F(ReadAheadFile, ReadsAllWithOneDescriptorAndWithFew)
{
    for (const rlim_t more : {1U, 2U, 5U}) {
        const int status = run_unprivileged([&] {
            close_range(3, ~0U, 0);
            const rlimit files = {3 + more, 3 + more};
            setrlimit(RLIMIT_NOFILE, &files);
            read_files();
            return read == names && most == more ? 0 : 1;
        });
        EXPECT_EQ(status, 0) << more;
    }
}

TEST_F(ReadAheadFile, HasSoManyBytesOnTheirWayAtMost)
{
    constexpr off_t HUGE_SIZE = off_t{3} << 30;
    const Interception sizes(fstat_call, [&](const auto& next, int file, struct stat* status) {
        const int result = next(file, status);
        status->st_size = asked.size() % 2 == 0 ? HUGE_SIZE : READ_AHEAD_BYTES / 2;
        return result;
    });
    read_files();
    EXPECT_EQ(most, 3U) << "the one that is read, and two ahead";
    EXPECT_LE(*std::ranges::max_element(asked), off_t{READ_AHEAD_BYTES});
}

TEST_F(ReadAheadFile, AsksForWhatIsLeftOfTheseBytes)
{
    constexpr off_t LARGE = READ_AHEAD_BYTES / 8 * 5;
    const Interception sizes(fstat_call, [&](const auto& next, int file, struct stat* status) {
        const int result = next(file, status);
        status->st_size = asked.size() == 4 ? 0 : LARGE;
        return result;
    });
    std::optional<CallFault<int, const char*, int, mode_t>> fault;
    read_files({}, [&](std::size_t index) {
        if (index == 100) { // which was read ahead, and is to be opened anew
            fs::remove(temp.path(names[100]));
            temp.write(names[100], names[100]);
            fault.emplace(open_call, 1, -1, EMFILE);
            asked.clear();
        }
    });
    constexpr off_t REST = READ_AHEAD_BYTES - LARGE;
    EXPECT_THAT(asked, ElementsAre(LARGE, REST, LARGE, REST)) << "nothing of what is empty";
}

TEST_F(ReadAheadFile, IsClosedWhenReadingEndsEarly)
{
    read_files({}, {}, 40);
    EXPECT_GT(most, 1U);
}
