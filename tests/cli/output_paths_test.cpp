#include <array>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/output_paths.h"
#include "core/paths.h"
#include "support/process.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

void expect_json_paths(
    std::initializer_list<std::pair<std::string_view, std::string_view>> expected)
{
    for (const auto& [page, json] : expected) {
        std::array<char, LONG_PATH_BUFFER_SIZE> buffer;
        buffer.fill('#');
        BoundedText path = {buffer.data(), buffer.size(), 0};
        EXPECT_TRUE(append_json_path(path, page));
        EXPECT_EQ(std::string(buffer.data()), json) << page;
        EXPECT_EQ(buffer.at(json.size() + 1), '#') << "a byte behind the path of " << page;
    }
}

// The same for a page path relative to the temporary folder, as an ordinary user
// who may write there.
bool create_folders_in(const TempFolder& temp, std::string_view page)
{
    temp.chmod("", 0777);
    const int status = run_unprivileged([&] {
        if (chdir(temp.path().c_str()) != 0) {
            return CHILD_SETUP_FAILED;
        }
        return create_page_folders(page) ? 1 : 0;
    });
    EXPECT_TRUE(status == 0 || status == 1) << "status " << status;
    return status == 1;
}

// What is made for the page in an empty folder, where all its folders can be made.
Names made_for(std::string_view page)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, page)) << page;
    return temp.names();
}

} // namespace

TEST(JsonPath, TheFourEndingsAreReplaced)
{
    expect_json_paths(
        {{"s.html", "s.json"}, {"s.HTML", "s.json"}, {"s.htm", "s.json"}, {"s.HTM", "s.json"}});
}

TEST(JsonPath, MixedCaseEndingsAreKept)
{
    for (const std::string page :
         {"s.Html", "x.hTm", "x.HTMl", "x.htmL", "x.Htm", "x.htM", "x.hTML", "x.HtML"}) {
        expect_json_paths({{page, page + ".json"}});
    }
}

TEST(JsonPath, OtherNamesGetTheEndingAppended)
{
    for (const std::string page :
         {"s", "summary", "s.txt", "s.json", "s.htmlx", "s.xhtml", "s.html ", "s.htm.", "shtml",
          "shtm", "html", "HTML", "htm", "HTM", "tml", "", "a.html/b", "a.html/", "a.htm/b"}) {
        expect_json_paths({{page, page + ".json"}});
    }
}

TEST(JsonPath, APathThatIsOnlyTheEndingBecomesDotJson)
{
    expect_json_paths({{".html", ".json"},
                       {".HTML", ".json"},
                       {".htm", ".json"},
                       {".HTM", ".json"},
                       {"out/.html", "out/.json"}});
}

TEST(JsonPath, OnlyOneEndingIsReplaced)
{
    expect_json_paths({{"s.html.html", "s.html.json"},
                       {"s.htm.htm", "s.htm.json"},
                       {"s.htm.html", "s.htm.json"},
                       {"s.html.htm", "s.html.json"},
                       {"a.html/b.htm", "a.html/b.json"}});
}

TEST(JsonPath, EveryOtherByteIsCopiedAndNoneBehindThePathIsLookedAt)
{
    expect_json_paths({{"\x01%s\\\xff.html", "\x01%s\\\xff.json"},
                       {std::string_view("s.htmlx").substr(0, 6), "s.json"},
                       {std::string_view("s.html").substr(0, 5), "s.json"},
                       {std::string_view("s.htm").substr(0, 4), "s.ht.json"}});
}

TEST(JsonPath, TheLongestPagePathFits)
{
    const std::string name(4095, 'a');
    const std::string stem = name.substr(0, 4090);
    expect_json_paths({{name, name + ".json"}, {stem + ".html", stem + ".json"}});
}

TEST(PageFolders, MissingFoldersAreCreatedLevelByLevel)
{
    EXPECT_EQ(made_for("out/sub/s.html"), (Names{"out", "out/sub"}));
    EXPECT_EQ(made_for("a/s"), Names{"a"});
    EXPECT_EQ(made_for("a/b/"), (Names{"a", "a/b"}));
}

TEST(PageFolders, APageWithoutFolderCreatesNothing)
{
    for (const char* page : {"s.html", "s", "", "C:", "C:s.html", "..", "."}) {
        EXPECT_EQ(made_for(page), Names{});
    }
}

TEST(PageFolders, ASeparatorAtTheStartAloneCreatesNothing)
{
    for (const char* page : {"/s.html", "\\s.html", "/", "\\"}) {
        EXPECT_EQ(made_for(page), Names{});
    }
}

TEST(PageFolders, AnAbsolutePathCreatesItsMissingFolders)
{
    const TempFolder temp;
    EXPECT_TRUE(create_page_folders(temp.path("a/b/c/s.html")));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b", "a/b/c"}));
}

TEST(PageFolders, ABackslashEndsALevelToo)
{
    EXPECT_EQ(made_for("a\\b\\s.html"), (Names{"a", "a\\b"}));
    EXPECT_EQ(made_for("a/b\\s.html"), (Names{"a", "a/b"}));
    EXPECT_EQ(made_for("c\\d/s.html"), (Names{"c", "c\\d"}));
    EXPECT_EQ(made_for("\\a\\s.html"), Names{"\\a"}) << "at the start it is part of the name";
}

TEST(PageFolders, DoubledSeparatorsAreHarmless)
{
    EXPECT_EQ(made_for("a//b///s.html"), (Names{"a", "a/b"}));
    EXPECT_EQ(made_for("c//"), Names{"c"});
    EXPECT_EQ(made_for("a\\\\s.html"), (Names{"a", "a\\"})) << "but each backslash is a level";
}

TEST(PageFolders, ADrivePrefixIsNotCreatedOnTheWay)
{
    const TempFolder temp;
    EXPECT_FALSE(create_folders_in(temp, "C:/x/y.html"));
    EXPECT_EQ(temp.names(), Names{});
    temp.make_folder("C:");
    temp.chmod("C:", 0777);
    EXPECT_TRUE(create_folders_in(temp, "C:/x/y.html")) << "one that is there is used";
    EXPECT_EQ(temp.names(), (Names{"C:", "C:/x"}));
}

// The exception is for a cut on the way; the folder that holds the page is always
// created.
TEST(PageFolders, ADrivePrefixThatHoldsThePageItselfIsCreated)
{
    EXPECT_EQ(made_for("C:/y.html"), Names{"C:"});
    EXPECT_EQ(made_for("C:\\x\\s.html"), Names{"C:\\x"});
}

TEST(PageFolders, AColonElsewhereIsNoDrivePrefix)
{
    EXPECT_EQ(made_for("CC:/x/y.html"), (Names{"CC:", "CC:/x"}));
    EXPECT_EQ(made_for(":/x/y.html"), (Names{":", ":/x"}));
    EXPECT_EQ(made_for("C:d/x/y.html"), (Names{"C:d", "C:d/x"}));
    EXPECT_EQ(made_for("CD/x/y.html"), (Names{"CD", "CD/x"}));
    EXPECT_EQ(made_for("d/:/y.html"), (Names{"d", "d/:"}));
}

// Only in a root folder of our own can it be seen what is made there.
TEST(PageFolders, AColonBehindTheRootIsADrivePrefixOnTheWayOnly)
{
    const TempFolder temp;
    temp.chmod("", 0777);
    const int status = run_with_root(temp.path(), [] {
        return !create_page_folders("/:/sub/x") && create_page_folders("/:/x") &&
                       create_page_folders("/s.html")
                   ? 0
                   : 1;
    });
    if (status == CHILD_SETUP_FAILED) {
        GTEST_SKIP() << "this machine lets no test have a root folder of its own";
    }
    EXPECT_EQ(status, 0);
    EXPECT_EQ(temp.names(), Names{":"});
}

TEST(PageFolders, ExistingFoldersAreLeftAsTheyAre)
{
    const TempFolder temp;
    temp.write("a/b/kept.txt", "kept");
    temp.chmod("a/b", 0700);
    EXPECT_TRUE(create_page_folders(temp.path("a/b/s.html")));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b", "a/b/kept.txt"}));
    EXPECT_EQ(fs::status(temp.path("a/b")).permissions(), fs::perms::owner_all);
}

TEST(PageFolders, SymbolicLinksToFoldersAreFollowed)
{
    const TempFolder temp;
    temp.make_folder("real");
    temp.link("real", "link");
    EXPECT_TRUE(create_page_folders(temp.path("link/x/s.html")));
    EXPECT_EQ(temp.names(), (Names{"link", "real", "real/x"}));
}

// What cannot hold the page is left to its writer, what cannot hold a folder is not.
TEST(PageFolders, AFileOrDanglingLinkCannotHoldFolders)
{
    const TempFolder temp;
    temp.write("file", "kept");
    temp.link("nowhere", "link");
    for (const std::string name : {"file", "link"}) {
        EXPECT_TRUE(create_page_folders(temp.path(name + "/s.html")));
        EXPECT_FALSE(create_page_folders(temp.path(name + "/sub/s.html")));
    }
    EXPECT_EQ(temp.names(), (Names{"file", "link"}));
    EXPECT_EQ(temp.read("file"), "kept");
}

TEST(PageFolders, FoldersAboveTheFailingOneStay)
{
    const TempFolder temp;
    const std::string longest(255, 'x');
    EXPECT_FALSE(create_page_folders(temp.path("a/b/x" + longest + "/c/s.html")));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b"}));
    EXPECT_FALSE(create_page_folders(temp.path("a/x" + longest + "/s.html")));
    EXPECT_TRUE(create_page_folders(temp.path("a/" + longest + "/s.html")));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b", "a/" + longest}));
}

TEST(PageFolders, APathOf4096CharactersFailsBeforeAnythingIsCreated)
{
    EXPECT_TRUE(create_page_folders(std::string(4095, 's')));
    EXPECT_FALSE(create_page_folders(std::string(4096, 's')));
    const TempFolder temp;
    EXPECT_FALSE(create_page_folders(temp.path("new/") + std::string(100000, 's')));
    EXPECT_EQ(temp.names(), Names{});
}

TEST(PageFolders, BytesBehindThePathAreNotLookedAt)
{
    EXPECT_EQ(made_for(std::string_view("a/s.html/b/c").substr(0, 8)), Names{"a"});
}

TEST(PageFolders, WithoutPermissionNothingIsCreated)
{
    const TempFolder temp;
    temp.make_folder("closed");
    temp.chmod("closed", 0555);
    EXPECT_FALSE(create_folders_in(temp, "closed/new/s.html"));
    EXPECT_FALSE(create_folders_in(temp, "closed/new/newer/s.html"));
    EXPECT_TRUE(create_folders_in(temp, "closed/s.html"));
    EXPECT_EQ(temp.names(), Names{"closed"});
}

// A backslash ends a level, so the folder "a" is asked for although "a\\b" is all that
// the page needs.
TEST(PageFolders, AFolderOnTheWayThatCannotBeCreatedFailsAlthoughTheLastOneExists)
{
    const TempFolder temp;
    temp.make_folder("closed/a\\b");
    temp.chmod("closed", 0555);
    EXPECT_FALSE(create_folders_in(temp, "closed/a\\b/s.html"));
    EXPECT_EQ(temp.names(), (Names{"closed", "closed/a\\b"}));
}

TEST(PageFolders, WithoutPermissionToLookInsideNothingIsCreated)
{
    const TempFolder temp;
    temp.make_folder("closed/there");
    temp.chmod("closed", 0000);
    EXPECT_FALSE(create_folders_in(temp, "closed/there/s.html"));
}
