// A run over a tree that something else changes meanwhile: a file that has gone, or
// gives less than its size, is unreadable; nothing else is disturbed.

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/expected_texts.h"
#include "cli/listed_files.h"
#include "cli/run.h"
#include "cli/sample_reports.h"
#include "support/call_faults.h"
#include "support/intercepted_calls.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace {

using Files = std::vector<ListedFile>;
using Change = std::function<void()>;

const Files NONE = {};
const Files PASSED = {{"r.html", "PASS", ""}};
const Files FAILED = {{"r.html", "FAIL", ""}};
const Files UNREADABLE = {{"r.html", "unreadable", ""}};
const Files NO_REPORT = {{"r.html", "not_analyze_report", ""}};

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

    // Runs with JSON and expects a complete run that takes these files for what they say.
    void expect_files(const Files& expected) const
    {
        const std::string input = temp.path("in");
        const std::string page = temp.path("s.html");
        Counts counts;
        int status = 0;
        for (const ListedFile& file : expected) {
            counts.passed += file.outcome == "PASS" ? 1U : 0U;
            counts.failed += file.outcome == "FAIL" ? 1U : 0U;
            status |= file.outcome == "FAIL" || file.outcome == "unreadable" ? 1 : 0;
        }
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        EXPECT_EQ(run_summary({input.c_str(), page.c_str(), true}), status);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  wrote_with_json(page, temp.path("s.json"), counts));
        EXPECT_EQ(files_in(temp.read("s.json")), expected);
    }

    // The change is made when the listing has given the entry of this name.
    void expect_after_entry(const std::string& name, const Change& change, const Files& expected)
    {
        const AfterListing hook(name, change);
        expect_files(expected);
        EXPECT_TRUE(hook.happened());
    }

    // The change is made when the walk has seen all of the top folder, before any file
    // is opened. (Only for trees without sub-folders.)
    void expect_after_walk(const Change& change, const Files& expected)
    {
        expect_after_entry("", change, expected);
    }

    // The change is made when the one file's size is known and nothing of it read.
    void expect_after_size(const Change& change, const Files& expected)
    {
        const BeforeCall hook(pread_call, 1, change);
        expect_files(expected);
        EXPECT_TRUE(hook.happened());
    }

    void replace_report(std::string_view contents) const
    {
        temp.write("new", contents);
        fs::rename(temp.path("new"), report());
    }

    TempFolder temp;
};

} // namespace

// ---- Between the walk and the reading ----

TEST_F(ChangingTree, AFileThatVanishesAfterTheWalkIsUnreadable)
{
    expect_after_walk([&] { fs::remove(report()); }, UNREADABLE);
}

TEST_F(ChangingTree, AFileThatBecomesAFolderALinkOrAFifoAfterTheWalkIsUnreadable)
{
    for (const Change& become : {Change([&] { fs::create_directory(report()); }), Change([&] {
                                     temp.write("in/r.html/inner.html", passed_report());
                                 }),
                                 Change([&] { temp.link("nowhere", "in/r.html"); }),
                                 Change([&] { temp.link("r.html", "in/r.html"); }),
                                 Change([&] { temp.make_fifo("in/r.html"); })}) {
        expect_after_walk(
            [&] {
                fs::remove(report());
                become();
            },
            UNREADABLE);
        fs::remove_all(report());
        SetUp();
    }
}

TEST_F(ChangingTree, AFileThatIsReplacedOrEmptiedAfterTheWalkIsReadAsItIsThen)
{
    expect_after_walk([&] { replace_report(passed_report()); }, PASSED);
    expect_after_walk([&] { fs::resize_file(report(), 0); }, NO_REPORT);
}

TEST_F(ChangingTree, AFolderThatVanishesAfterTheWalkLeavesItsFilesUnreadable)
{
    expect_after_walk([&] { fs::remove_all(temp.path("in")); }, UNREADABLE);
}

TEST_F(ChangingTree, AFileThatAppearsAfterTheWalkIsNotRead)
{
    expect_after_walk([&] { temp.write("in/late.html", errored_report("late")); }, FAILED);
}

// Only the file that changes is affected: its neighbour is read, whichever comes first.
TEST_F(ChangingTree, AFileThatVanishesWhileAnotherIsReadLeavesThatOneAlone)
{
    temp.write("in/s.html", failed_report());
    const std::string first = fs::directory_iterator(temp.path("in"))->path().filename();
    const std::string second = first == "r.html" ? "s.html" : "r.html";
    const BeforeCall hook(lseek_call, 1, [&] { fs::remove_all(temp.path("in")); });
    expect_files({{first, "FAIL", ""}, {second, "unreadable", ""}});
    EXPECT_TRUE(hook.happened());
}

// ---- While a file is read ----

TEST_F(ChangingTree, AFileThatShrinksBeforeItIsReadIsUnreadable)
{
    expect_after_size([&] { fs::resize_file(report(), fs::file_size(report()) - 1); }, UNREADABLE);
    SetUp();
    expect_after_size([&] { fs::resize_file(report(), 0); }, UNREADABLE);
}

TEST_F(ChangingTree, AFileThatShrinksBetweenTwoReadsIsUnreadable)
{
    const ShortTransfers transfers(20);
    const BeforeCall hook(pread_call, 2, [&] { fs::resize_file(report(), 20); });
    expect_files(UNREADABLE);
    EXPECT_TRUE(hook.happened());
}

// What is added, here the whole verdict, is not looked at.
TEST_F(ChangingTree, AFileThatGrowsIsReadAsFarAsItsFirstSize)
{
    temp.write("in/r.html", OTHER_PAGE);
    const auto grow = [&] { std::ofstream(report(), std::ios::app) << failed_report(); };
    expect_after_size(grow, NO_REPORT);
    temp.write("in/r.html", "");
    expect_after_size(grow, NO_REPORT);
}

// In place, at the same size: what is read is what stands there at that time.
TEST_F(ChangingTree, AFileThatIsRewrittenBeforeItIsReadIsReadAsItIsThen)
{
    expect_after_size([&] { temp.write("in/r.html", passed_report()); }, PASSED);
}

TEST_F(ChangingTree, AnOpenFileIsReadToItsEndAlthoughItsNameIsGoneOrTaken)
{
    expect_after_size([&] { fs::remove(report()); }, FAILED);
    SetUp();
    expect_after_size([&] { replace_report(passed_report()); }, FAILED);
}

// ---- During the walk ----

TEST_F(ChangingTree, AFolderOrALinkToOneThatVanishesBeforeItIsEnteredIsSkipped)
{
    temp.write("in/sub/x.html", errored_report("x"));
    const auto remove_folder = [&] { fs::remove_all(temp.path("in/sub")); };
    expect_after_entry("sub", remove_folder, FAILED);
    temp.write("elsewhere/x.html", errored_report("x"));
    temp.link("../elsewhere", "in/link");
    const auto remove_target = [&] { fs::remove_all(temp.path("elsewhere")); };
    expect_after_entry("link", remove_target, FAILED);
}

TEST_F(ChangingTree, AFolderThatVanishesWhileItIsOpenEndsItsListing)
{
    fs::remove(report());
    temp.write("in/sub/x.html", errored_report("x"));
    const auto remove_input = [&] { fs::remove_all(temp.path("in")); };
    expect_after_entry("x.html", remove_input, NONE);
}

TEST_F(ChangingTree, AFolderThatTakesAFilesPlaceBeforeTheFileIsExaminedIsEntered)
{
    const auto become_folder = [&] {
        fs::remove(report());
        temp.write("in/r.html/inner.html", passed_report());
    };
    expect_after_entry("r.html", become_folder, {{"r.html/inner.html", "PASS", ""}});
}

// ---- During the writing ----

TEST_F(ChangingTree, APageThatIsRemovedWhileItIsWrittenLeavesTheJsonAlone)
{
    const BeforeCall hook(write_call, 1, [&] { fs::remove(temp.path("s.html")); });
    expect_files(FAILED);
    EXPECT_TRUE(hook.happened());
    EXPECT_FALSE(temp.exists("s.html"));
}
