#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/output_paths.h"
#include "core/paths.h"
#include "support/process.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

std::string json_path(std::string_view page_path)
{
    std::array<char, LONG_PATH_BUFFER_SIZE> buffer;
    buffer.fill('#');
    BoundedText path = {buffer.data(), buffer.size(), 0};
    EXPECT_TRUE(append_json_path(path, page_path));
    return buffer.data();
}

bool create_folders(std::string_view page_path)
{
    return create_page_folders(page_path);
}

// The same for a page path relative to the temporary folder, as an ordinary user
// who may write there.
bool create_folders_in(const TempFolder& temp, std::string_view page_path)
{
    temp.chmod("", 0777);
    const int status = run_unprivileged([&] {
        if (chdir(temp.path().c_str()) != 0) {
            return 2;
        }
        return create_folders(page_path) ? 1 : 0;
    });
    EXPECT_TRUE(status == 0 || status == 1) << "status " << status;
    return status == 1;
}

// A page path of exactly this length below folder: as many "./" as it takes.
std::string page_path_of_length(const std::string& folder, std::size_t length)
{
    std::string path = folder + "/";
    while (path.size() + 2 < length) {
        path += "./";
    }
    path.append(length - path.size(), 's');
    return path;
}

// ---- A second version of the folder creation, put together from whole texts ----

bool is_separator(char c)
{
    return c == '/' || c == '\\';
}

// Every folder that the page path asks for, outermost first.
Names folders_above(const std::string& page_path)
{
    const std::size_t last = page_path.find_last_of("/\\");
    Names folders;
    for (std::size_t i = 1; last != std::string::npos && i <= last; ++i) {
        const bool drive = i == 2 && i < last && page_path[1] == ':';
        if (is_separator(page_path[i]) && !drive) {
            folders.push_back(page_path.substr(0, i));
        }
    }
    return folders;
}

bool create_naively(const std::string& page_path)
{
    const Names folders = folders_above(page_path);
    return std::all_of(folders.begin(), folders.end(), [](const std::string& folder) {
        return mkdir(folder.c_str(), 0755) == 0 || errno == EEXIST;
    });
}

Names tree_below(const fs::path& folder)
{
    Names names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        names.push_back(entry.path().lexically_relative(folder).string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Every text of up to length characters of the alphabet.
Names all_texts(std::string_view alphabet, std::size_t length)
{
    Names texts = {""};
    for (std::size_t begin = 0; length > 0; --length) {
        const std::size_t end = texts.size();
        for (; begin < end; ++begin) {
            for (const char c : alphabet) {
                texts.push_back(texts[begin] + c);
            }
        }
    }
    return texts;
}

struct Trial
{
    bool created = false;
    Names made; // what stands below the root afterwards
};

// A root folder with an empty folder "nest" in it, from inside which folders are
// created: no text of five characters makes anything further up than beside it.
class Nest
{
public:
    explicit Nest(fs::path root) : root_(std::move(root))
    {
        fs::create_directories(root_ / "nest");
        listings_ = {opendir(root_.c_str()), opendir((root_ / "nest").c_str())};
    }

    ~Nest()
    {
        for (DIR* listing : listings_) {
            closedir(listing);
        }
    }

    Nest(const Nest&) = delete;
    Nest& operator=(const Nest&) = delete;

    // Tells what create made of the text and clears it away again.
    template <typename Create>
    Trial try_to(Create create, const std::string& page_path)
    {
        Trial trial;
        trial.created = create(page_path);
        if (entries(listings_[0]) == 3 && entries(listings_[1]) == 2) {
            return trial; // "." and ".." everywhere, and the nest
        }
        trial.made = tree_below(root_);
        std::erase(trial.made, "nest");
        for (auto name = trial.made.rbegin(); name != trial.made.rend(); ++name) {
            fs::remove(root_ / *name);
        }
        return trial;
    }

    bool enter() const
    {
        return chdir((root_ / "nest").c_str()) == 0;
    }

private:
    static int entries(DIR* listing)
    {
        int count = 0;
        for (rewinddir(listing); readdir(listing) != nullptr;) {
            ++count;
        }
        return count;
    }

    fs::path root_;
    std::array<DIR*, 2> listings_ = {};
};

// Every text's trial, in the order of all_texts.
template <typename Create>
std::vector<Trial> try_all(const fs::path& root, Create create)
{
    std::vector<Trial> trials;
    Nest nest(root);
    if (nest.enter()) {
        for (const std::string& text : all_texts("a./\\:", 5)) {
            trials.push_back(nest.try_to(create, text));
        }
    }
    return trials;
}

// Runs in a child as an ordinary user, so that paths that begin with "/" fail
// instead of making folders at the root. Writes what it saw to the file "seen".
int compare_all_texts(const fs::path& folder)
{
    std::ofstream seen(folder / "seen");
    const Names texts = all_texts("a./\\:", 5);
    const std::vector<Trial> real = try_all(folder / "real", create_folders);
    const std::vector<Trial> naive = try_all(folder / "naive", create_naively);
    int made_something = 0;
    int failed = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (real.at(i).created != naive.at(i).created || real.at(i).made != naive.at(i).made) {
            seen << "different for \"" << texts[i] << "\"";
            return 1;
        }
        made_something += real[i].made.empty() ? 0 : 1;
        failed += real[i].created ? 0 : 1;
    }
    seen << "same for " << texts.size() << " texts";
    // Both outcomes have to be among them, or the comparison says little.
    return made_something > 1000 && failed > 100 ? 0 : 2;
}

} // namespace

TEST(JsonPath, TheFourEndingsAreReplaced)
{
    EXPECT_EQ(json_path("s.html"), "s.json");
    EXPECT_EQ(json_path("s.HTML"), "s.json");
    EXPECT_EQ(json_path("s.htm"), "s.json");
    EXPECT_EQ(json_path("s.HTM"), "s.json");
}

TEST(JsonPath, MixedCaseEndingsAreKept)
{
    EXPECT_EQ(json_path("s.Html"), "s.Html.json");
    EXPECT_EQ(json_path("x.hTm"), "x.hTm.json");
    EXPECT_EQ(json_path("x.HTMl"), "x.HTMl.json");
    EXPECT_EQ(json_path("x.htmL"), "x.htmL.json");
    EXPECT_EQ(json_path("x.Htm"), "x.Htm.json");
    EXPECT_EQ(json_path("x.htM"), "x.htM.json");
}

TEST(JsonPath, OtherNamesGetTheEndingAppended)
{
    EXPECT_EQ(json_path("s"), "s.json");
    EXPECT_EQ(json_path("summary"), "summary.json");
    EXPECT_EQ(json_path("s.txt"), "s.txt.json");
    EXPECT_EQ(json_path("s.json"), "s.json.json");
    EXPECT_EQ(json_path("s.htmlx"), "s.htmlx.json");
    EXPECT_EQ(json_path("s.xhtml"), "s.xhtml.json");
    EXPECT_EQ(json_path("s.html "), "s.html .json");
    EXPECT_EQ(json_path("s.htm."), "s.htm..json");
    EXPECT_EQ(json_path("shtml"), "shtml.json");
    EXPECT_EQ(json_path("shtm"), "shtm.json");
}

TEST(JsonPath, AnEndingWithoutItsDotIsNone)
{
    EXPECT_EQ(json_path("html"), "html.json");
    EXPECT_EQ(json_path("HTML"), "HTML.json");
    EXPECT_EQ(json_path("htm"), "htm.json");
    EXPECT_EQ(json_path("tml"), "tml.json");
}

TEST(JsonPath, APathThatIsOnlyTheEndingBecomesDotJson)
{
    EXPECT_EQ(json_path(".html"), ".json");
    EXPECT_EQ(json_path(".HTML"), ".json");
    EXPECT_EQ(json_path(".htm"), ".json");
    EXPECT_EQ(json_path(".HTM"), ".json");
    EXPECT_EQ(json_path("x.htm"), "x.json");
}

TEST(JsonPath, AnEmptyPathBecomesDotJson)
{
    EXPECT_EQ(json_path(""), ".json");
}

TEST(JsonPath, OnlyTheEndOfThePathCounts)
{
    EXPECT_EQ(json_path("a.html/b"), "a.html/b.json");
    EXPECT_EQ(json_path("a.html/b.htm"), "a.html/b.json");
    EXPECT_EQ(json_path("a.html/"), "a.html/.json");
    EXPECT_EQ(json_path("out/.html"), "out/.json");
}

TEST(JsonPath, OnlyOneEndingIsReplaced)
{
    EXPECT_EQ(json_path("s.html.html"), "s.html.json");
    EXPECT_EQ(json_path("s.htm.htm"), "s.htm.json");
    EXPECT_EQ(json_path("s.htm.html"), "s.htm.json");
    EXPECT_EQ(json_path("s.html.htm"), "s.html.json");
}

TEST(JsonPath, EveryOtherByteIsCopied)
{
    EXPECT_EQ(json_path("\x01%s\\\xff.html"), "\x01%s\\\xff.json");
}

TEST(JsonPath, BytesBehindThePathAreNotLookedAt)
{
    EXPECT_EQ(json_path(std::string_view("s.htmlx").substr(0, 6)), "s.json");
    EXPECT_EQ(json_path(std::string_view("s.html").substr(0, 5)), "s.json");
    EXPECT_EQ(json_path(std::string_view("s.htm").substr(0, 4)), "s.ht.json");
}

TEST(JsonPath, TheLongestPagePathFits)
{
    EXPECT_EQ(json_path(std::string(4095, 'a')), std::string(4095, 'a') + ".json");
    EXPECT_EQ(json_path(std::string(4090, 'a') + ".html"), std::string(4090, 'a') + ".json");
    EXPECT_EQ(json_path(std::string(4091, 'a') + ".htm"), std::string(4091, 'a') + ".json");
}

TEST(PageFolders, MissingFoldersAreCreatedLevelByLevel)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "out/sub/s.html"));
    EXPECT_EQ(temp.names(), (Names{"out", "out/sub"}));
}

TEST(PageFolders, AnAbsolutePathCreatesItsMissingFolders)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders(temp.path("a/b/c/s.html")));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b", "a/b/c"}));
}

TEST(PageFolders, APageWithoutFolderCreatesNothing)
{
    const TempFolder temp;
    for (const char* page : {"s.html", "s", "", "C:", "C:s.html", "..", "."}) {
        EXPECT_TRUE(create_folders_in(temp, page)) << page;
    }
    EXPECT_EQ(temp.names(), Names{});
}

TEST(PageFolders, ASeparatorAtTheStartAloneCreatesNothing)
{
    const TempFolder temp;
    for (const char* page : {"/s.html", "\\s.html", "/", "\\"}) {
        EXPECT_TRUE(create_folders_in(temp, page)) << page;
    }
    EXPECT_EQ(temp.names(), Names{});
}

TEST(PageFolders, AFolderNameOfOneCharacterIsCreated)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "a/s"));
    EXPECT_TRUE(create_folders_in(temp, "b/"));
    EXPECT_TRUE(create_folders_in(temp, "c/d/e"));
    EXPECT_EQ(temp.names(), (Names{"a", "b", "c", "c/d"}));
}

TEST(PageFolders, ABackslashEndsALevelToo)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "a\\b\\s.html"));
    EXPECT_EQ(temp.names(), (Names{"a", "a\\b"}));
}

TEST(PageFolders, BothSeparatorsMayBeMixed)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "a/b\\s.html"));
    EXPECT_TRUE(create_folders_in(temp, "c\\d/s.html"));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b", "c", "c\\d"}));
}

TEST(PageFolders, ABackslashAtTheStartIsPartOfTheFolderName)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "\\a\\s.html"));
    EXPECT_EQ(temp.names(), Names{"\\a"});
}

TEST(PageFolders, DoubledSeparatorsAreHarmless)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "a//b///s.html"));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b"}));
}

TEST(PageFolders, DoubledBackslashesMakeAFolderForEach)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "a\\\\s.html"));
    EXPECT_EQ(temp.names(), (Names{"a", "a\\"}));
}

TEST(PageFolders, TrailingSeparatorsCreateTheWholePath)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "a/b/"));
    EXPECT_TRUE(create_folders_in(temp, "c//"));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b", "c"}));
}

TEST(PageFolders, ADrivePrefixIsNotCreatedOnTheWay)
{
    const TempFolder temp;
    EXPECT_FALSE(create_folders_in(temp, "C:/x/y.html"));
    EXPECT_EQ(temp.names(), Names{});
}

TEST(PageFolders, ADrivePrefixWithBackslashesIsOneFolderName)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "C:\\x\\s.html"));
    EXPECT_EQ(temp.names(), Names{"C:\\x"});
}

TEST(PageFolders, AnExistingFolderNamedLikeADrivePrefixIsUsed)
{
    const TempFolder temp;
    temp.make_folder("C:");
    temp.chmod("C:", 0777);
    EXPECT_TRUE(create_folders_in(temp, "C:/x/y.html"));
    EXPECT_EQ(temp.names(), (Names{"C:", "C:/x"}));
}

// The exception is for a cut on the way; the folder that holds the page is always
// created.
TEST(PageFolders, ADrivePrefixThatHoldsThePageItselfIsCreated)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "C:/y.html"));
    EXPECT_EQ(temp.names(), Names{"C:"});
}

TEST(PageFolders, AColonElsewhereIsNoDrivePrefix)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, "CC:/x/y.html"));
    EXPECT_TRUE(create_folders_in(temp, ":/x/y.html"));
    EXPECT_TRUE(create_folders_in(temp, "d/:/y.html"));
    EXPECT_EQ(temp.names(), (Names{":", ":/x", "CC:", "CC:/x", "d", "d/:"}));
}

TEST(PageFolders, ExistingFoldersAreLeftAsTheyAre)
{
    const TempFolder temp;
    temp.write("a/b/kept.txt", "kept");
    temp.chmod("a/b", 0700);
    EXPECT_TRUE(create_folders(temp.path("a/b/s.html")));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b", "a/b/kept.txt"}));
    EXPECT_EQ(fs::status(temp.path("a/b")).permissions(), fs::perms::owner_all);
}

TEST(PageFolders, SymbolicLinksToFoldersAreFollowed)
{
    const TempFolder temp;
    temp.make_folder("real");
    temp.link("real", "link");
    EXPECT_TRUE(create_folders(temp.path("link/x/s.html")));
    EXPECT_EQ(temp.names(), (Names{"link", "real", "real/x"}));
}

TEST(PageFolders, AFileWhereTheFolderShouldBeIsLeftToTheWriter)
{
    const TempFolder temp;
    temp.write("file", "kept");
    EXPECT_TRUE(create_folders(temp.path("file/s.html")));
    EXPECT_EQ(temp.read("file"), "kept");
}

TEST(PageFolders, AFileFurtherUpCannotHoldFolders)
{
    const TempFolder temp;
    temp.write("file", "kept");
    EXPECT_FALSE(create_folders(temp.path("file/sub/s.html")));
    EXPECT_EQ(temp.names(), Names{"file"});
}

TEST(PageFolders, ADanglingLinkWhereTheFolderShouldBeIsLeftToTheWriter)
{
    const TempFolder temp;
    temp.link("nowhere", "link");
    EXPECT_TRUE(create_folders(temp.path("link/s.html")));
    EXPECT_FALSE(create_folders(temp.path("link/sub/s.html")));
    EXPECT_FALSE(temp.exists("nowhere"));
}

TEST(PageFolders, FoldersAboveTheFailingOneStay)
{
    const TempFolder temp;
    EXPECT_FALSE(create_folders(temp.path("a/b/" + std::string(256, 'x') + "/c/s.html")));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b"}));
    EXPECT_FALSE(create_folders(temp.path("a/" + std::string(256, 'x') + "/s.html")));
    EXPECT_TRUE(create_folders(temp.path("a/" + std::string(255, 'x') + "/s.html")));
    EXPECT_EQ(temp.names(), (Names{"a", "a/b", "a/" + std::string(255, 'x')}));
}

TEST(PageFolders, APathOf4095CharactersIsAccepted)
{
    const TempFolder temp;
    const std::string page = page_path_of_length(temp.path("new"), 4095);
    ASSERT_EQ(page.size(), 4095U);
    EXPECT_TRUE(create_folders(page));
    EXPECT_EQ(temp.names(), Names{"new"});
}

TEST(PageFolders, APathOf4096CharactersFailsBeforeAnythingIsCreated)
{
    const TempFolder temp;
    const std::string page = page_path_of_length(temp.path("new"), 4096);
    ASSERT_EQ(page.size(), 4096U);
    EXPECT_FALSE(create_folders(page));
    EXPECT_FALSE(create_folders(std::string(4096, 's')));
    EXPECT_FALSE(create_folders(std::string(100000, 's')));
    EXPECT_EQ(temp.names(), Names{});
}

TEST(PageFolders, ANameOf4095CharactersWithoutFolderIsAccepted)
{
    EXPECT_TRUE(create_folders(std::string(4095, 's')));
}

TEST(PageFolders, BytesBehindThePathAreNotLookedAt)
{
    const TempFolder temp;
    EXPECT_TRUE(create_folders_in(temp, std::string_view("a/s.html/b/c").substr(0, 8)));
    EXPECT_EQ(temp.names(), Names{"a"});
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
    EXPECT_TRUE(create_folders_in(temp, "closed/s.html"));
    EXPECT_EQ(temp.names(), (Names{"closed", "closed/a\\b"}));
}

TEST(PageFolders, WithoutPermissionToLookInsideNothingIsCreated)
{
    const TempFolder temp;
    temp.make_folder("closed/there");
    temp.chmod("closed", 0000);
    EXPECT_FALSE(create_folders_in(temp, "closed/there/s.html"));
}

TEST(PageFolders, ASecondVersionAgreesOnEveryTextOfUpToFiveCharacters)
{
    const TempFolder temp;
    temp.chmod("", 0777);
    const int status = run_unprivileged([&] { return compare_all_texts(temp.path()); });
    EXPECT_EQ(status, 0) << temp.read("seen");
    EXPECT_EQ(temp.read("seen"), "same for 3906 texts");
}
