// A run over a tree that something else changes meanwhile: a file that has gone, or
// gives less than its size, is unreadable; nothing else is disturbed.

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "cli/run.h"
#include "cli/sample_reports.h"
#include "support/call_hooks.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace {

// "in" is a folder with the one report "r.html", which failed, unless the test says
// otherwise.
class ChangingTree : public testing::Test
{
protected:
    void SetUp() override
    {
        temp.write("in/r.html", failed_report());
    }

    std::string report() const
    {
        return temp.path("in/r.html");
    }

    int run() const
    {
        const std::string input = temp.path("in");
        const std::string page = temp.path("s.html");
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = run_summary({input.c_str(), page.c_str(), true});
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        lines_ = testing::internal::GetCapturedStdout();
        return status;
    }

    void expect_counts(const std::string& counts) const
    {
        EXPECT_EQ(lines_, "wrote " + temp.path("s.html") + " (" + counts + ") + json\nwrote " +
                              temp.path("s.json") + "\n");
    }

    // The change is made when the walk has seen all of the top folder, before any file
    // is opened. (Only for trees without sub-folders.)
    void expect_after_walk(const std::function<void()>& change, int status,
                           const std::string& counts, const std::string& other_files)
    {
        const AfterListing hook("", change);
        EXPECT_EQ(run(), status);
        EXPECT_TRUE(hook.happened());
        expect_counts(counts);
        expect_other_files(other_files);
    }

    // The change is made when the one file's size is known and nothing of it read.
    void expect_after_size(const std::function<void()>& change, int status,
                           const std::string& counts, const std::string& other_files)
    {
        const BeforeFileCall hook(FileCall::Read, 1, change);
        EXPECT_EQ(run(), status);
        EXPECT_TRUE(hook.happened());
        expect_counts(counts);
        expect_other_files(other_files);
    }

    void expect_other_files(const std::string& lines) const
    {
        const std::string end = lines.empty() ? "]\n}\n" : lines + "    ]\n}\n";
        EXPECT_TRUE(temp.read("s.json").ends_with("    \"other_files\": [\n" + end))
            << temp.read("s.json");
    }

    TempFolder temp;

private:
    mutable std::string lines_;
};

constexpr char NONE[] = "0 fathomix reports: 0 passed, 0 failed";
constexpr char ONE_PASSED[] = "1 fathomix reports: 1 passed, 0 failed";
constexpr char ONE_FAILED[] = "1 fathomix reports: 0 passed, 1 failed";
constexpr char UNREADABLE[] =
    "        { \"relative_path\": \"r.html\", \"reason\": \"unreadable\" }\n";
constexpr char NO_REPORT[] =
    "        { \"relative_path\": \"r.html\", \"reason\": \"not_analyze_report\" }\n";

} // namespace

// ---- Between the walk and the reading ----

TEST_F(ChangingTree, AFileThatVanishesAfterTheWalkIsUnreadable)
{
    expect_after_walk([&] { fs::remove(report()); }, 1, NONE, UNREADABLE);
}

TEST_F(ChangingTree, AFileThatBecomesAFolderAfterTheWalkIsUnreadable)
{
    expect_after_walk(
        [&] {
            fs::remove(report());
            temp.write("in/r.html/inner.html", passed_report());
        },
        1, NONE, UNREADABLE);
}

TEST_F(ChangingTree, AFileThatBecomesAnEmptyFolderAfterTheWalkIsUnreadable)
{
    expect_after_walk(
        [&] {
            fs::remove(report());
            fs::create_directory(report());
        },
        1, NONE, UNREADABLE);
}

TEST_F(ChangingTree, AFileThatBecomesADanglingOrCircularLinkAfterTheWalkIsUnreadable)
{
    for (const char* target : {"nowhere", "r.html"}) {
        expect_after_walk(
            [&] {
                fs::remove(report());
                temp.link(target, "in/r.html");
            },
            1, NONE, UNREADABLE);
        fs::remove(report());
        SetUp();
    }
}

TEST_F(ChangingTree, AFileThatBecomesAFifoAfterTheWalkIsUnreadableAndNotWaitedFor)
{
    expect_after_walk(
        [&] {
            fs::remove(report());
            EXPECT_EQ(mkfifo(report().c_str(), 0644), 0);
        },
        1, NONE, UNREADABLE);
}

TEST_F(ChangingTree, AFileThatIsReplacedAfterTheWalkIsReadAsItIsThen)
{
    expect_after_walk(
        [&] {
            temp.write("new", passed_report());
            fs::rename(temp.path("new"), report());
        },
        0, ONE_PASSED, "");
}

TEST_F(ChangingTree, AFileThatIsEmptiedAfterTheWalkIsNoReport)
{
    expect_after_walk([&] { fs::resize_file(report(), 0); }, 0, NONE, NO_REPORT);
}

TEST_F(ChangingTree, AFolderThatVanishesAfterTheWalkLeavesItsFilesUnreadable)
{
    temp.write("in/s.html", passed_report());
    const AfterListing hook("", [&] { fs::remove_all(temp.path("in")); });
    EXPECT_EQ(run(), 1);
    expect_counts(NONE);
    const std::string json = temp.read("s.json");
    EXPECT_NE(json.find("{ \"relative_path\": \"r.html\", \"reason\": \"unreadable\" }"),
              json.npos);
    EXPECT_NE(json.find("{ \"relative_path\": \"s.html\", \"reason\": \"unreadable\" }"),
              json.npos);
}

TEST_F(ChangingTree, AFileThatAppearsAfterTheWalkIsNotRead)
{
    expect_after_walk([&] { temp.write("in/late.html", errored_report("late")); }, 1, ONE_FAILED,
                      "");
}

// Only the file that changes is affected: its neighbour is read, whichever comes first.
TEST_F(ChangingTree, AFileThatVanishesWhileAnotherIsReadLeavesThatOneAlone)
{
    fs::remove(report());
    temp.write("in/a.html", passed_report());
    temp.write("in/b.html", passed_report());
    const BeforeFileCall hook(FileCall::Seek, 1, [&] { fs::remove_all(temp.path("in")); });
    EXPECT_EQ(run(), 1);
    EXPECT_TRUE(hook.happened());
    expect_counts(ONE_PASSED);
    const std::string json = temp.read("s.json");
    EXPECT_NE(json.find(".html\", \"reason\": \"unreadable\" }\n    ]\n"), json.npos);
}

// ---- While a file is read ----

TEST_F(ChangingTree, AFileThatLosesItsLastByteBeforeItIsReadIsUnreadable)
{
    expect_after_size([&] { fs::resize_file(report(), fs::file_size(report()) - 1); }, 1, NONE,
                      UNREADABLE);
}

TEST_F(ChangingTree, AFileThatIsEmptiedBeforeItIsReadIsUnreadable)
{
    expect_after_size([&] { fs::resize_file(report(), 0); }, 1, NONE, UNREADABLE);
}

TEST_F(ChangingTree, AFileThatShrinksBetweenTwoReadsIsUnreadable)
{
    const ShortTransfers transfers(20);
    const BeforeFileCall hook(FileCall::Read, 2, [&] { fs::resize_file(report(), 20); });
    EXPECT_EQ(run(), 1);
    EXPECT_TRUE(hook.happened());
    expect_counts(NONE);
    expect_other_files(UNREADABLE);
}

// What is added, here the whole verdict, is not looked at.
TEST_F(ChangingTree, AFileThatGrowsIsReadAsFarAsItsFirstSize)
{
    temp.write("in/r.html", OTHER_PAGE);
    expect_after_size(
        [&] { std::ofstream(report(), std::ios::app | std::ios::binary) << failed_report(); }, 0,
        NONE, NO_REPORT);
}

TEST_F(ChangingTree, AnEmptyFileThatGrowsIsNoReport)
{
    temp.write("in/r.html", "");
    expect_after_size([&] { temp.write("in/r.html", failed_report()); }, 0, NONE, NO_REPORT);
}

// In place, at the same size: what is read is what stands there at that time.
TEST_F(ChangingTree, AFileThatIsRewrittenBeforeItIsReadIsReadAsItIsThen)
{
    expect_after_size([&] { temp.write("in/r.html", passed_report()); }, 0, ONE_PASSED, "");
}

TEST_F(ChangingTree, AnOpenFileIsReadToItsEndAlthoughItsNameIsGoneOrTaken)
{
    expect_after_size([&] { fs::remove(report()); }, 1, ONE_FAILED, "");
    SetUp();
    expect_after_size(
        [&] {
            temp.write("new", passed_report());
            fs::rename(temp.path("new"), report());
        },
        1, ONE_FAILED, "");
}

// ---- During the walk ----

TEST_F(ChangingTree, AFolderThatVanishesBeforeItIsEnteredIsSkipped)
{
    temp.write("in/sub/x.html", errored_report("x"));
    const AfterListing hook("sub", [&] { fs::remove_all(temp.path("in/sub")); });
    EXPECT_EQ(run(), 1);
    EXPECT_TRUE(hook.happened());
    expect_counts(ONE_FAILED);
    expect_other_files("");
}

TEST_F(ChangingTree, ALinkToAFolderThatDanglesBeforeItIsEnteredIsSkipped)
{
    temp.write("elsewhere/x.html", errored_report("x"));
    temp.link("../elsewhere", "in/link");
    const AfterListing hook("link", [&] { fs::remove_all(temp.path("elsewhere")); });
    EXPECT_EQ(run(), 1);
    EXPECT_TRUE(hook.happened());
    expect_counts(ONE_FAILED);
}

TEST_F(ChangingTree, AFolderThatVanishesWhileItIsOpenEndsItsListing)
{
    fs::remove(report());
    temp.write("in/sub/x.html", errored_report("x"));
    const AfterListing hook("x.html", [&] { fs::remove_all(temp.path("in")); });
    EXPECT_EQ(run(), 0);
    EXPECT_TRUE(hook.happened());
    expect_counts(NONE);
    expect_other_files("");
}

TEST_F(ChangingTree, AFolderThatTakesAFilesPlaceBeforeTheFileIsExaminedIsEntered)
{
    const AfterListing hook("r.html", [&] {
        fs::remove(report());
        temp.write("in/r.html/inner.html", passed_report());
    });
    EXPECT_EQ(run(), 0);
    EXPECT_TRUE(hook.happened());
    expect_counts(ONE_PASSED);
    expect_other_files("");
}

// ---- During the writing ----

TEST_F(ChangingTree, APageThatIsReplacedWhileItIsWrittenLeavesTheJsonAlone)
{
    const BeforeFileCall hook(FileCall::Write, 1, [&] { fs::remove(temp.path("s.html")); });
    EXPECT_EQ(run(), 1);
    EXPECT_TRUE(hook.happened());
    expect_counts(ONE_FAILED);
    EXPECT_FALSE(temp.exists("s.html"));
    EXPECT_TRUE(temp.read("s.json").ends_with("    \"other_files\": [\n]\n}\n"));
}
