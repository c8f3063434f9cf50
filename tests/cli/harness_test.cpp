// What the tests themselves rely on: processes of another user, and temporary folders.

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/process.h"
#include "support/temp_folder.h"

TEST(RunUnprivileged, EndsTheChildAtAnExceptionWithAStatusOfItsOwn)
{
    const pid_t test = getpid();
    const int status = run_unprivileged([]() -> int { throw std::runtime_error("meant"); });
    ASSERT_EQ(getpid(), test) << "the child goes on with the tests";
    EXPECT_EQ(status, BODY_THREW);
    EXPECT_EQ(run_unprivileged([]() -> int { throw 1; }), BODY_THREW);
}

TEST(RunUnprivileged, ReturnsTheResultOfAnOrdinaryUser)
{
    EXPECT_EQ(run_unprivileged([] { return geteuid() == 0 ? 1 : 42; }), 42);
    EXPECT_EQ(run_unprivileged([]() -> int { std::abort(); }), 128 + SIGABRT);
}

TEST(Program, CanBeStartedByAnOrdinaryUser)
{
    EXPECT_EQ(run_fthsummary({"--version"}, {.folder = "/", .unprivileged = true}).status, 0);
}

TEST(TempFolder, IsOpenToOthersWhateverTheUmaskWas)
{
    umask(077);
    const TempFolder temp;
    temp.write("sub/file", "text");
    EXPECT_EQ(run_unprivileged([&] { return temp.read("sub/file") == "text" ? 0 : 1; }), 0);
}

TEST(TempFolder, HoldsASocketAlthoughItsPathIsLongerThanAnAddress)
{
    const TempFolder outer;
    const std::string parent = outer.path(std::string(150, 'p'));
    std::filesystem::create_directory(parent);
    const TempFolder temp(parent);
    temp.make_socket("sub/socket");
    EXPECT_TRUE(std::filesystem::is_socket(temp.path("sub/socket")));
}

TEST(TempFolder, IsRemovedWithClosedFoldersInItWhenATestThrows)
{
    std::string path;
    try {
        const TempFolder temp;
        path = temp.path();
        temp.write("closed/sub/file", "");
        temp.chmod("closed/sub", 0);
        temp.chmod("closed", 0);
        throw std::runtime_error("meant");
    } catch (const std::runtime_error&) {
        EXPECT_FALSE(std::filesystem::exists(path));
    }
}
