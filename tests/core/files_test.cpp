#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include "core/files.h"
#include "support/allocation_faults.h"
#include "support/process.h"
#include "support/temp_folder.h"

namespace {

constexpr unsigned HANG_SECONDS = 20;

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

int open_descriptors()
{
    int count = 0;
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        count += fcntl(descriptor, F_GETFD) != -1 ? 1 : 0;
    }
    return count;
}

unsigned mode_of(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

// Whether reading fails, leaves the result place untouched and no file open.
bool refuses_to_read(const char* path)
{
    char untouched = 'u';
    char* contents = &untouched;
    const int before = open_descriptors();
    const bool read = read_whole_file(path, contents);
    const bool kept = contents == &untouched && untouched == 'u';
    if (contents != &untouched) {
        std::free(contents);
    }
    return !read && kept && open_descriptors() == before;
}

void expect_refused(const std::string& path)
{
    EXPECT_TRUE(refuses_to_read(path.c_str())) << path;
}

void expect_contents(const std::string& path, std::string_view bytes)
{
    char* contents = nullptr;
    const int before = open_descriptors();
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

void make_fifo(const std::string& path)
{
    ASSERT_EQ(mkfifo(path.c_str(), 0644), 0);
    ASSERT_EQ(chmod(path.c_str(), 0644), 0);
}

void make_socket(const std::string& path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(descriptor);
}

// The path of a block device: a fresh one where we may make one, else any of the
// machine's; empty if there is none.
std::string find_block_device(const TempFolder& temp)
{
    const std::string made = temp.path("block");
    if (mknod(made.c_str(), S_IFBLK | 0600, makedev(7, 0)) == 0) {
        return made;
    }
    std::string found;
    DIR* listing = opendir("/dev");
    while (const dirent* entry = listing == nullptr ? nullptr : readdir(listing)) {
        const std::string path = std::string("/dev/") + entry->d_name;
        struct stat status = {};
        if (stat(path.c_str(), &status) == 0 && S_ISBLK(status.st_mode)) {
            found = path;
            break;
        }
    }
    if (listing != nullptr) {
        closedir(listing);
    }
    return found;
}

// Write system calls of this process so far; -1 if the system does not tell. Read
// without streams, whose virtual calls some sanitizers check by means of writes.
long write_calls()
{
    char counters[1024] = {};
    const int file = open("/proc/self/io", O_RDONLY);
    if (file < 0) {
        return -1;
    }
    const ssize_t count = read(file, counters, sizeof counters - 1);
    close(file);
    const char* value = count < 0 ? nullptr : std::strstr(counters, "syscw: ");
    return value == nullptr ? -1 : std::strtol(value + std::strlen("syscw: "), nullptr, 10);
}

std::string every_byte()
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

} // namespace

TEST(ReadWholeFile, OfAMissingFileFailsAndLeavesTheResultPlaceUntouched)
{
    const TempFolder temp;
    temp.write("file", "x");
    temp.link("nowhere", "dangling");
    temp.link("loop", "loop");
    expect_refused(temp.path("missing"));
    expect_refused(temp.path("missing/below"));
    expect_refused(temp.path("file/below"));
    expect_refused(temp.path("dangling"));
    expect_refused(temp.path("loop"));
    expect_refused(temp.path(std::string(256, 'n')));
    expect_refused(std::string(5000, '/') + "etc/passwd");
    expect_refused("");
}

TEST(ReadWholeFile, WithoutReadPermissionFailsAndLeavesTheResultPlaceUntouched)
{
    const TempFolder temp;
    temp.write("secret", "x");
    temp.write("readable", "x");
    temp.write("closed/readable", "x");
    temp.chmod("secret", 0);
    temp.chmod("readable", 0444);
    temp.chmod("closed", 0600);
    const int seen = run_unprivileged([&] {
        char* contents = nullptr;
        const bool read = read_whole_file(temp.path("readable").c_str(), contents);
        std::free(contents);
        return (read ? 1 : 0) + (refuses_to_read(temp.path("secret").c_str()) ? 2 : 0) +
               (refuses_to_read(temp.path("closed/readable").c_str()) ? 4 : 0);
    });
    EXPECT_EQ(seen, 7);
}

TEST(ReadWholeFile, OfAnEmptyFileSucceedsWithABlockOfOneNul)
{
    const TempFolder temp;
    temp.write("empty", "");
    expect_contents(temp.path("empty"), "");
}

TEST(ReadWholeFile, GivesTheBytesAndANulBehindThem)
{
    const TempFolder temp;
    temp.write("one", "x");
    temp.write("text", "line\r\nline\n");
    temp.link("text", "link");
    expect_contents(temp.path("one"), "x");
    expect_contents(temp.path("text"), "line\r\nline\n");
    expect_contents(temp.path("link"), "line\r\nline\n");
}

TEST(ReadWholeFile, KeepsNulsAndEveryOtherByte)
{
    const TempFolder temp;
    const std::string_view nuls("\0a\0\0b\0", 6);
    temp.write("nuls", nuls);
    temp.write("bytes", every_byte());
    expect_contents(temp.path("nuls"), nuls);
    expect_contents(temp.path("bytes"), every_byte());
}

TEST(ReadWholeFile, ReadsSizesAroundTheUsualBlockSizesWhole)
{
    const TempFolder temp;
    for (const std::size_t size : {4095U, 4096U, 4097U, 65536U, 5000001U}) {
        std::string bytes(size, 'x');
        bytes.front() = 'f';
        bytes.back() = 'b';
        temp.write("file", bytes);
        expect_contents(temp.path("file"), bytes);
    }
}

TEST(ReadWholeFile, AllocatesTheSizePlusOneByteOnce)
{
    const TempFolder temp;
    temp.write("file", "12345");
    const std::uint64_t before = allocation_count();
    expect_contents(temp.path("file"), "12345");
    EXPECT_EQ(allocation_count(), before + 1);
}

// Blocks of 24 bytes are the largest of their class: one byte more would show.
TEST(ReadWholeFile, AllocatesNoByteMoreThanTheSizePlusOne)
{
    const TempFolder temp;
    temp.write("file", std::string(23, 'x'));
    char* contents = nullptr;
    ASSERT_TRUE(read_whole_file(temp.path("file").c_str(), contents));
    void* const block = std::malloc(24);
    EXPECT_EQ(malloc_usable_size(contents), malloc_usable_size(block));
    std::free(block);
    std::free(contents);
}

// A file whose descriptor is 0 is open, and what an earlier call left in errno says
// nothing about this one.
TEST(ReadWholeFile, OpensTheFileOnceWhateverErrnoHolds)
{
    const TempFolder temp;
    temp.write("file", "x");
    const int status = run_unprivileged([&] {
        close(STDIN_FILENO);
        char* contents = nullptr;
        for (const int left_over : {EWOULDBLOCK, 0}) {
            errno = left_over;
            if (!read_whole_file(temp.path("file").c_str(), contents)) {
                return 2;
            }
            std::free(contents);
        }
        return open("/dev/null", O_RDONLY) == STDIN_FILENO ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
}

TEST(ReadWholeFile, OfAFifoFailsAtOnceWithAndWithoutAWriter)
{
    const TempFolder temp;
    make_fifo(temp.path("fifo"));
    temp.link("fifo", "link");
    const int status = run_unprivileged([&] {
        alarm(HANG_SECONDS);
        return refuses_to_read(temp.path("fifo").c_str()) &&
                       refuses_to_read(temp.path("link").c_str())
                   ? 0
                   : 1;
    });
    EXPECT_EQ(status, 0) << "128 + " << SIGALRM << " means that it waited";

    const int writer = open(temp.path("fifo").c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_GE(writer, 0);
    EXPECT_EQ(write(writer, "bytes", 5), 5);
    expect_refused(temp.path("fifo"));
    close(writer);
}

TEST(ReadWholeFile, OfADirectoryFails)
{
    const TempFolder temp;
    temp.make_folder("folder");
    temp.link("folder", "link");
    expect_refused(temp.path("folder"));
    expect_refused(temp.path("link"));
    expect_refused("/");
    expect_refused("/dev"); // another file system, which may report another size
}

TEST(ReadWholeFile, OfADirectoryThatReportsSizeZeroFails)
{
    struct stat status = {};
    ASSERT_EQ(stat("/proc", &status), 0);
    ASSERT_EQ(status.st_size, 0);
    expect_refused("/proc");
}

namespace {

// What a file server does that is asked to let go of a lease.
int leased_file = -1;

void release_lease(int /*signal*/)
{
    fcntl(leased_file, F_SETLEASE, F_UNLCK);
}

} // namespace

TEST(ReadWholeFile, OfAFileThatAnotherHoldsALeaseOnReadsItOnceItIsReleased)
{
    const TempFolder temp;
    temp.write("file", "leased");
    leased_file = open(temp.path("file").c_str(), O_RDWR);
    ASSERT_GE(leased_file, 0);
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = release_lease;
    action.sa_flags = SA_RESTART;
    ASSERT_EQ(sigaction(SIGIO, &action, &before), 0);
    ASSERT_EQ(fcntl(leased_file, F_SETLEASE, F_WRLCK), 0);
    char* contents = nullptr;
    EXPECT_TRUE(read_whole_file(temp.path("file").c_str(), contents));
    EXPECT_STREQ(contents, "leased");
    std::free(contents);
    close(leased_file);
    sigaction(SIGIO, &before, nullptr);
}

TEST(ReadWholeFile, OfASocketFails)
{
    const TempFolder temp;
    make_socket(temp.path("socket"));
    expect_refused(temp.path("socket"));
}

TEST(ReadWholeFile, OfAFileThatGivesFewerBytesThanItsSizeFails)
{
    // The kernel's attribute files claim a page and hold a few bytes.
    const char* const path = "/sys/kernel/uevent_seqnum";
    struct stat status = {};
    ASSERT_EQ(stat(path, &status), 0);
    ASSERT_GT(status.st_size, static_cast<off_t>(read_file(path).size()));
    expect_refused(path);
}

TEST(ReadWholeFile, WithoutMemoryFailsAndLeavesTheResultPlaceUntouched)
{
    const TempFolder temp;
    temp.write("empty", "");
    temp.write("small", "x");
    temp.write("sparse", "");
    ASSERT_EQ(truncate(temp.path("sparse").c_str(), off_t{1} << 33), 0);
    for (const char* name : {"empty", "small", "sparse"}) {
        const AllocationFault fault(1);
        expect_refused(temp.path(name));
        EXPECT_EQ(fault.failures(), 1U) << name;
    }
}

TEST(ReadWholeFile, WithoutAFreeDescriptorFails)
{
    const TempFolder temp;
    temp.write("file", "x");
    const int status = run_unprivileged([&] {
        rlimit limit = {};
        getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = 0;
        if (setrlimit(RLIMIT_NOFILE, &limit) != 0) {
            return 2;
        }
        return refuses_to_read(temp.path("file").c_str()) ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
}

// A process that leads a session takes the first terminal that it opens as its own.
TEST(ReadWholeFile, DoesNotTakeATerminalAsItsOwn)
{
    const int status = run_unprivileged([] {
        const int master = posix_openpt(O_RDWR | O_NOCTTY);
        if (setsid() < 0 || master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) {
            return 2;
        }
        char* contents = nullptr;
        if (read_whole_file(ptsname(master), contents)) {
            return 3;
        }
        return open("/dev/tty", O_RDWR) >= 0 || errno != ENXIO ? 1 : 0;
    });
    EXPECT_EQ(status, 0);
}

TEST(WriteWholeFile, WithLengthZeroCreatesAnEmptyFileAndSucceeds)
{
    const TempFolder temp;
    ASSERT_TRUE(write_text(temp.path("empty"), ""));
    EXPECT_EQ(temp.read("empty"), "");
    temp.write("longer", "old bytes");
    ASSERT_TRUE(write_whole_file(temp.path("longer").c_str(), "unused", 0));
    EXPECT_EQ(temp.read("longer"), "");
}

TEST(WriteWholeFile, WritesExactlyTheGivenBytes)
{
    const TempFolder temp;
    ASSERT_TRUE(write_text(temp.path("bytes"), every_byte() + "\r\n\n"));
    EXPECT_EQ(temp.read("bytes"), every_byte() + "\r\n\n");
    ASSERT_TRUE(write_whole_file(temp.path("cut").c_str(), "abcdef", 3));
    EXPECT_EQ(temp.read("cut"), "abc");
    const std::string large(5000001, 'l');
    ASSERT_TRUE(write_text(temp.path("large"), large));
    EXPECT_EQ(temp.read("large"), large);
}

TEST(WriteWholeFile, OverLongerContentLeavesNoneOfIt)
{
    const TempFolder temp;
    temp.write("page", "a much longer older page");
    ASSERT_TRUE(write_text(temp.path("page"), "new"));
    EXPECT_EQ(temp.read("page"), "new");
}

TEST(WriteWholeFile, HandsAllBytesToTheSystemInOneWrite)
{
    const TempFolder temp;
    const std::string path = temp.path("page");
    for (const std::size_t length : {1U, 4096U, 4097U, 1000003U}) {
        const std::string bytes(length, 'x');
        const long before = write_calls();
        ASSERT_GE(before, 0) << "the system does not count writes";
        const bool written = write_text(path, bytes);
        const long after = write_calls();
        ASSERT_TRUE(written);
        EXPECT_EQ(after - before, 1) << length;
    }
}

TEST(WriteWholeFile, LeavesNoFileOpen)
{
    const TempFolder temp;
    const int before = open_descriptors();
    EXPECT_TRUE(write_text(temp.path("file"), "x"));
    EXPECT_FALSE(write_text("/dev/full", "x"));
    EXPECT_FALSE(write_text(temp.path(), "x"));
    EXPECT_EQ(open_descriptors(), before);
}

TEST(WriteWholeFile, GivesANewFileTheModeOfANewStreamFile)
{
    const TempFolder temp;
    {
        const Umask none(0);
        ASSERT_TRUE(write_text(temp.path("open"), "x"));
    }
    {
        const Umask usual(022);
        ASSERT_TRUE(write_text(temp.path("usual"), "x"));
    }
    EXPECT_EQ(mode_of(temp.path("open")), 0666U);
    EXPECT_EQ(mode_of(temp.path("usual")), 0644U);
}

TEST(WriteWholeFile, WritesThroughASymbolicLink)
{
    const TempFolder temp;
    temp.write("target", "old");
    temp.link("target", "link");
    temp.link("created", "dangling");
    ASSERT_TRUE(write_text(temp.path("link"), "new"));
    ASSERT_TRUE(write_text(temp.path("dangling"), "made"));
    EXPECT_EQ(temp.read("target"), "new");
    EXPECT_EQ(temp.read("created"), "made");
}

TEST(WriteWholeFile, ToAFullDeviceFailsEvenForOneByte)
{
    EXPECT_FALSE(write_text("/dev/full", "x"));
    EXPECT_FALSE(write_text("/dev/full", std::string(4096, 'x')));
    EXPECT_FALSE(write_text("/dev/full", std::string(1000003, 'x')));
    EXPECT_TRUE(write_text("/dev/full", "")) << "no byte was refused";
}

TEST(WriteWholeFile, CutShortByTheSystemFailsAndLeavesTheCutFile)
{
    const TempFolder temp;
    temp.write("cut", "");
    temp.chmod("cut", 0666);
    const int status = run_unprivileged([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {10, 10};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) {
            return 2;
        }
        const bool fits = write_text(temp.path("cut"), "0123456789");
        const bool exceeds = write_text(temp.path("cut"), "abcdefghijk");
        return fits && !exceeds ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(temp.read("cut"), "abcdefghij");
}

TEST(WriteWholeFile, ToAPathThatCannotBeOpenedFailsAndCreatesNothing)
{
    const TempFolder temp;
    temp.make_folder("folder");
    temp.write("file", "kept");
    temp.link("loop", "loop");
    const std::vector<std::string> before = temp.names();
    EXPECT_FALSE(write_text(temp.path("missing/file"), "x"));
    EXPECT_FALSE(write_text(temp.path("file/below"), "x"));
    EXPECT_FALSE(write_text(temp.path("folder"), "x"));
    EXPECT_FALSE(write_text(temp.path("folder"), ""));
    EXPECT_FALSE(write_text(temp.path("loop"), "x"));
    EXPECT_FALSE(write_text(temp.path(std::string(256, 'n')), "x"));
    EXPECT_FALSE(write_text("", "x"));
    EXPECT_EQ(temp.names(), before);
    EXPECT_EQ(temp.read("file"), "kept");
}

TEST(WriteWholeFile, WithoutPermissionFailsAndLeavesTheOldFile)
{
    const TempFolder temp;
    temp.write("readonly", "old bytes");
    temp.chmod("readonly", 0444);
    temp.make_folder("folder");
    temp.chmod("folder", 0555);
    const int status = run_unprivileged([&] {
        return (write_text(temp.path("readonly"), "x") ? 1 : 0) +
               (write_text(temp.path("folder/new"), "x") ? 2 : 0);
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(temp.read("readonly"), "old bytes");
    EXPECT_FALSE(temp.exists("folder/new"));
}

TEST(IsDirectory, OnASymbolicLinkToADirectoryIsTrueAndOnADanglingLinkFalse)
{
    const TempFolder temp;
    temp.make_folder("folder");
    temp.write("file", "");
    temp.link("folder", "link");
    temp.link("link", "second");
    temp.link("nowhere", "dangling");
    temp.link("loop", "loop");
    temp.link("file", "filelink");
    EXPECT_TRUE(is_directory(temp.path("link").c_str()));
    EXPECT_TRUE(is_directory(temp.path("second").c_str()));
    EXPECT_FALSE(is_directory(temp.path("dangling").c_str()));
    EXPECT_FALSE(is_directory(temp.path("loop").c_str()));
    EXPECT_FALSE(is_directory(temp.path("filelink").c_str()));
}

TEST(IsDirectory, IsTrueForFoldersAndFalseForFilesAndMissingPaths)
{
    const TempFolder temp;
    temp.make_folder("folder");
    temp.write("file", "");
    make_fifo(temp.path("fifo"));
    for (const std::string& path : {temp.path(), temp.path("folder"), temp.path("folder/"),
                                    std::string("/"), std::string(".")}) {
        EXPECT_TRUE(is_directory(path.c_str())) << path;
    }
    for (const std::string& path :
         {temp.path("file"), temp.path("file/"), temp.path("fifo"), temp.path("missing"),
          temp.path("file/below"), std::string("/dev/null"), std::string()}) {
        EXPECT_FALSE(is_directory(path.c_str())) << path;
    }
}

TEST(IsDirectory, IsFalseForAFileWithEveryPermission)
{
    const TempFolder temp;
    temp.write("file", "");
    temp.chmod("file", 07777);
    EXPECT_FALSE(is_directory(temp.path("file").c_str()));
}

TEST(IsDirectory, TestsTheDirectoryBitAloneSoASocketCounts)
{
    const TempFolder temp;
    make_socket(temp.path("socket"));
    EXPECT_TRUE(is_directory(temp.path("socket").c_str()));
}

TEST(IsDirectory, TestsTheDirectoryBitAloneSoABlockDeviceCounts)
{
    const TempFolder temp;
    const std::string device = find_block_device(temp);
    if (device.empty()) {
        std::cout << "no block device on this machine: a socket stands in for it\n";
        make_socket(temp.path("socket"));
        EXPECT_TRUE(is_directory(temp.path("socket").c_str()));
    } else {
        EXPECT_TRUE(is_directory(device.c_str())) << device;
    }
}

TEST(IsDirectory, IsFalseWhereThePathMayNotBeExamined)
{
    const TempFolder temp;
    temp.make_folder("closed/inner");
    temp.make_folder("unreadable");
    temp.chmod("closed", 0600);
    temp.chmod("unreadable", 0);
    const int seen = run_unprivileged([&] {
        return (is_directory(temp.path("closed/inner").c_str()) ? 1 : 0) +
               (is_directory(temp.path("unreadable").c_str()) ? 2 : 0);
    });
    EXPECT_EQ(seen, 2);
}

TEST(MakeFolder, OnAnExistingDirectorySucceedsWithoutCreatingAnything)
{
    const TempFolder temp;
    temp.make_folder("folder");
    temp.chmod("folder", 0700);
    temp.link("folder", "link");
    const std::vector<std::string> before = temp.names();
    EXPECT_TRUE(make_folder(temp.path("folder").c_str()));
    EXPECT_TRUE(make_folder(temp.path("link").c_str()));
    EXPECT_TRUE(make_folder("/"));
    EXPECT_EQ(temp.names(), before);
    EXPECT_EQ(mode_of(temp.path("folder")), 0700U);
}

TEST(MakeFolder, OnAnExistingRegularFileSucceedsAndLeavesIt)
{
    const TempFolder temp;
    temp.write("file", "kept");
    EXPECT_TRUE(make_folder(temp.path("file").c_str()));
    EXPECT_EQ(temp.read("file"), "kept");
    EXPECT_FALSE(is_directory(temp.path("file").c_str()));
}

TEST(MakeFolder, OnAnyOtherExistingEntrySucceedsAndLeavesIt)
{
    const TempFolder temp;
    make_fifo(temp.path("fifo"));
    make_socket(temp.path("socket"));
    temp.link("nowhere", "dangling");
    temp.link("loop", "loop");
    const std::vector<std::string> before = temp.names();
    for (const char* name : {"fifo", "socket", "dangling", "loop"}) {
        EXPECT_TRUE(make_folder(temp.path(name).c_str())) << name;
    }
    EXPECT_EQ(temp.names(), before);
}

TEST(MakeFolder, BelowAMissingParentFailsAndCreatesNothing)
{
    const TempFolder temp;
    temp.write("file", "kept");
    temp.link("nowhere", "dangling");
    const std::vector<std::string> before = temp.names();
    EXPECT_FALSE(make_folder(temp.path("missing/folder").c_str()));
    EXPECT_FALSE(make_folder(temp.path("file/folder").c_str()));
    EXPECT_FALSE(make_folder(temp.path("dangling/folder").c_str()));
    EXPECT_FALSE(make_folder(temp.path(std::string(256, 'n')).c_str()));
    EXPECT_FALSE(make_folder(""));
    EXPECT_EQ(temp.names(), before);
}

TEST(MakeFolder, CreatesOneFolderOfMode0755LessTheUmask)
{
    struct Row
    {
        mode_t mask;
        unsigned mode;
    };
    const Row rows[] = {{0, 0755}, {022, 0755}, {002, 0755}, {027, 0750}, {077, 0700}, {0777, 0}};
    const TempFolder temp;
    for (const Row& row : rows) {
        const std::string path = temp.path("mask" + std::to_string(row.mask));
        {
            const Umask mask(row.mask);
            ASSERT_TRUE(make_folder(path.c_str()));
        }
        EXPECT_EQ(mode_of(path), row.mode) << row.mask;
        EXPECT_TRUE(is_directory(path.c_str()));
    }
}

TEST(MakeFolder, CreatesAFolderWhosePathEndsInASlash)
{
    const TempFolder temp;
    EXPECT_TRUE(make_folder(temp.path("folder/").c_str()));
    EXPECT_TRUE(is_directory(temp.path("folder").c_str()));
}

TEST(MakeFolder, WithoutPermissionFails)
{
    const TempFolder temp;
    temp.make_folder("readonly");
    temp.make_folder("closed/existing");
    temp.chmod("readonly", 0555);
    temp.chmod("closed", 0600);
    const int made = run_unprivileged([&] {
        return (make_folder(temp.path("readonly/new").c_str()) ? 1 : 0) +
               (make_folder(temp.path("closed/existing").c_str()) ? 2 : 0);
    });
    EXPECT_EQ(made, 0);
    EXPECT_FALSE(temp.exists("readonly/new"));
}
