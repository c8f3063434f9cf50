#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "scan/scan_reports.h"
#include "support/call_faults.h"
#include "support/deep_tree.h"
#include "support/process.h"
#include "support/temp_folder.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using ::testing::UnorderedElementsAreArray;

namespace {

constexpr unsigned HANG_SECONDS = 60;
constexpr std::size_t DEEP_LEVELS = 2040;     // "./d/d/.../d/r.html": 4088 characters
constexpr std::size_t LISTABLE_LEVELS = 2043; // with "r.html" 4094 characters
constexpr rlim_t DEEP_DESCRIPTORS = 2200;
constexpr rlim_t STACK_BYTES = 8U << 20;

using Paths = std::vector<std::string>;

struct Walk
{
    bool result;
    Paths paths;
};

// What the list holds; the list is released.
Walk finished(bool result, FileList& list)
{
    Walk walk = {result, Paths(list.paths, list.paths + list.count)};
    file_list_free(list);
    return walk;
}

Walk walk_of(const std::string& folder, const char* page = nullptr)
{
    FileList list;
    file_list_init(list);
    return finished(scan_reports(folder.c_str(), page, list), list);
}

Walk walk_below(const std::string& folder, const std::string& prefix,
                const char* canonical_page = nullptr)
{
    FileList list;
    file_list_init(list);
    return finished(scan_directory(folder.c_str(), prefix.c_str(), canonical_page, list), list);
}

// The paths of a walk that succeeds.
Paths listed(const std::string& folder, const std::string& page = "")
{
    const Walk walk = walk_of(folder, page.empty() ? nullptr : page.c_str());
    EXPECT_TRUE(walk.result) << folder;
    return walk.paths;
}

Paths sorted(Paths paths)
{
    std::sort(paths.begin(), paths.end());
    return paths;
}

// The names of a folder in the order of its listing, "." and ".." left out.
Paths listing_of(const std::string& folder)
{
    Paths names;
    DIR* listing = opendir(folder.c_str());
    EXPECT_NE(listing, nullptr) << folder;
    while (const dirent* entry = listing == nullptr ? nullptr : readdir(listing)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    if (listing != nullptr) {
        closedir(listing);
    }
    return names;
}

// A plain walk over the names that the order test makes: folders begin with "d",
// reports end in ".html".
void plain_walk(const std::string& folder, const std::string& prefix, Paths& paths)
{
    for (const std::string& name : listing_of(folder)) {
        if (name.front() == 'd') {
            plain_walk(folder + "/" + name, prefix + name + "/", paths);
        } else if (name.ends_with(".html")) {
            paths.push_back(prefix + name);
        }
    }
}

// Turns every listing round, while it lives.
class ReversedListings
{
public:
    ReversedListings()
        : readdir_(readdir_call, [this](const auto& next, DIR* listing) -> dirent* {
              std::vector<dirent>& entries = entries_[listing];
              while (const dirent* entry = next(listing)) {
                  entries.push_back(*entry);
              }
              if (entries.empty()) {
                  entries_.erase(listing);
                  return nullptr;
              }
              given_ = entries.back();
              entries.pop_back();
              return &given_;
          })
    {
    }

private:
    std::map<DIR*, std::vector<dirent>> entries_;
    dirent given_ = {};
    Interception<dirent*, DIR*> readdir_;
};

// Files whose path may be longer than a system call takes.
void make_files_in(const std::string& folder, const Paths& names)
{
    const int parent = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_GE(parent, 0);
    for (const std::string& name : names) {
        const int file = openat(parent, name.c_str(), O_WRONLY | O_CREAT, 0644);
        EXPECT_GE(file, 0) << name;
        close(file);
    }
    close(parent);
}

// "r.html", "d/r.html", "d/d/r.html" and so on, folders of them.
Paths deep_paths(std::size_t folders)
{
    Paths paths;
    std::string prefix;
    for (std::size_t i = 0; i < folders; ++i) {
        paths.push_back(prefix + "r.html");
        prefix += "d/";
    }
    return paths;
}

// Walks a tree of so many levels as an ordinary user with so many descriptors and an
// 8 MiB stack. 0: it listed what as many folders hold as can be open at once.
int walk_deep_tree(std::size_t levels, rlim_t descriptors)
{
    const TempFolder temp(folder_in_memory());
    const DeepTree tree(temp.path(), static_cast<int>(levels), "r.html");
    rlimit files = {};
    getrlimit(RLIMIT_NOFILE, &files);
    if (files.rlim_max < descriptors) {
        std::cout << "only " << files.rlim_max
                  << " descriptors may be open: the tree is listed as deep as they reach\n";
    }
    files.rlim_cur = std::min(descriptors, files.rlim_max);
    return run_unprivileged([&] {
        alarm(HANG_SECONDS);
        const rlimit stack = {STACK_BYTES, STACK_BYTES};
        if (setrlimit(RLIMIT_STACK, &stack) != 0 || setrlimit(RLIMIT_NOFILE, &files) != 0 ||
            chdir(temp.path().c_str()) != 0) {
            return 2;
        }
        const std::size_t free =
            static_cast<std::size_t>(files.rlim_cur) - open_descriptors(files.rlim_cur);
        const Walk walk = walk_of(".");
        if (!walk.result) {
            return 3;
        }
        const std::size_t folders = std::min({levels, LISTABLE_LEVELS, free - 1}) + 1;
        return sorted(walk.paths) == sorted(deep_paths(folders)) ? 0 : 4;
    });
}

} // namespace

TEST(ScanReports, OfAnInputThatIsARegularFileOrDoesNotExistFails)
{
    const TempFolder temp;
    temp.write("file.html", "");
    temp.link("nowhere", "dangling");
    temp.link("loop", "loop");
    temp.link("file.html", "filelink");
    temp.make_fifo("fifo");
    temp.make_socket("socket");
    for (const std::string& path :
         {temp.path("file.html"), temp.path("missing"), temp.path("missing/below"),
          temp.path("file.html/"), temp.path("dangling"), temp.path("loop"), temp.path("filelink"),
          temp.path("fifo"), temp.path("socket"), std::string("/dev/null"), std::string(),
          temp.path() + std::string(5000, '/')}) {
        const Walk walk = walk_of(path);
        EXPECT_FALSE(walk.result) << path;
        EXPECT_THAT(walk.paths, IsEmpty()) << path;
    }
}

TEST(ScanReports, OfAnEmptyInputYieldsAnEmptyListAndSuccess)
{
    const TempFolder temp;
    EXPECT_THAT(listed(temp.path()), IsEmpty());
    temp.make_folder("only/empty/folders.html");
    EXPECT_THAT(listed(temp.path()), IsEmpty());
}

TEST(ScanReports, ListsNamesThatEndInHtmlOrHtmAndNoOthers)
{
    const TempFolder temp;
    const Paths reports = {"Report.HTML", "x.Htm", ".hidden.html", ".htm",   ".html",
                           "x.htm",       "..htm", "x.html",       "xx.htm", "..html"};
    make_files_in(temp.path(), reports);
    make_files_in(temp.path(),
                  {"a.xhtml", "page.html.bak", "notes.txt",  "htm",     ".ht",     "x.h",
                   "html",    "xhtm",          ".hml",       "xhtml",   ".htmx",   "x.htl",
                   ".htmlx",  "x.hhtm",        "h.tml",      ".html.",  "x.html ", "x.html\n",
                   "x.htm~",  "x.htmll",       "x.html\x80", "x.shtml", "x.htm1"});
    EXPECT_THAT(listed(temp.path()), UnorderedElementsAreArray(reports));
}

TEST(ScanReports, FoldsAToZAloneInEachPositionOfTheEnding)
{
    const TempFolder temp(folder_in_memory());
    Paths names;
    Paths expected = {"x.htm",  "x.html", "x.Htm",  "x.hTm", "x.htM",
                      "x.Html", "x.hTml", "x.htMl", "x.htmL"};
    for (const std::string ending : {".html", ".htm"}) {
        for (std::size_t position = 0; position < ending.size(); ++position) {
            for (int byte = 1; byte < 256; ++byte) {
                std::string name = "x" + ending;
                name[position + 1] = static_cast<char>(byte);
                if (byte != '/') {
                    names.push_back(name);
                }
            }
        }
    }
    make_files_in(temp.path(), names);
    EXPECT_EQ(sorted(listed(temp.path())), sorted(expected));
}

TEST(ScanReports, ListsNamesOfEveryByteAsTheyAre)
{
    const TempFolder temp;
    Paths expected;
    std::string low;
    std::string high;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/') {
            (byte < 128 ? low : high) += static_cast<char>(byte);
            expected.push_back(std::string("r") + static_cast<char>(byte) + ".html");
        }
    }
    make_files_in(temp.path(), expected);
    for (const std::string& path : {low + "/" + high + ".html", high + "/" + low + ".htm"}) {
        temp.write(path, "");
        expected.push_back(path);
    }
    ASSERT_EQ(expected.size(), 256U);
    EXPECT_EQ(sorted(listed(temp.path())), sorted(expected));
}

TEST(ScanReports, ListsFilesInFoldersWhateverTheirNames)
{
    const TempFolder temp;
    temp.write(".hidden/r.html", "");
    temp.write(".a/.b/.c.htm", "");
    temp.write("...", "");
    temp.write("..x/r.html", "");
    temp.write("..../r.html", "");
    temp.write("old.html/new.html", "");
    temp.make_folder("empty.htm");
    EXPECT_THAT(listed(temp.path()),
                UnorderedElementsAre(".hidden/r.html", ".a/.b/.c.htm", "..x/r.html", "..../r.html",
                                     "old.html/new.html"));
}

TEST(ScanReports, ListsInTheOrderOfTheDirectoryListingDepthFirst)
{
    const TempFolder temp;
    for (int i = 0; i < 50; ++i) {
        const std::string number = std::to_string(i * 7919 % 50);
        temp.write("r" + number + ".html", "");
        temp.write("n" + number + ".txt", "");
        temp.write("d" + number + "/r.html", "");
        temp.write("d" + number + "/d/r" + number + ".html", "");
        temp.write("d" + number + "/d/s.html", "");
        temp.write("d" + number + "/s.html", "");
    }
    const auto expect_order_of_listing = [&] {
        Paths expected;
        plain_walk(temp.path(), "", expected);
        EXPECT_EQ(expected.size(), 250U);
        EXPECT_EQ(listed(temp.path()), expected);
        return expected;
    };
    const Paths forward = expect_order_of_listing();
    const ReversedListings reversed;
    EXPECT_NE(expect_order_of_listing(), forward);
}

TEST(ScanReports, PutsNothingBeforeTheRelativePathHoweverTheInputIsTyped)
{
    const TempFolder temp;
    temp.write("in/a/b/r.html", "");
    for (const std::string typed : {"in", "in/", "in//", "./in", "in/.", "in/a/.."}) {
        EXPECT_THAT(listed(temp.path() + "/" + typed), ElementsAre("a/b/r.html")) << typed;
    }
}

TEST(ScanReports, AppendsToWhatTheListHolds)
{
    const TempFolder temp;
    temp.write("r.html", "");
    FileList list;
    file_list_init(list);
    ASSERT_TRUE(file_list_append(list, "earlier"));
    EXPECT_TRUE(scan_reports(temp.path().c_str(), nullptr, list));
    EXPECT_FALSE(scan_reports(temp.path("missing").c_str(), nullptr, list));
    EXPECT_THAT(finished(true, list).paths, ElementsAre("earlier", "r.html"));
}

TEST(ScanReports, ListsALinkToAnHtmlFileUnderItsOwnNameAndSkipsADanglingLink)
{
    const TempFolder temp;
    temp.write("in/r.html", "");
    temp.write("elsewhere/page.html", "");
    temp.write("elsewhere/data.txt", "");
    temp.link("r.html", "in/inner.htm");
    temp.link("../elsewhere/page.html", "in/outer.html");
    temp.link("../elsewhere/data.txt", "in/data.html");
    temp.link("outer.html", "in/twice.html");
    temp.link("r.html", "in/noending");
    temp.link("nowhere.html", "in/dangling.html");
    temp.link("self.html", "in/self.html");
    temp.link("r.html/below.html", "in/notafolder.html");
    EXPECT_THAT(listed(temp.path("in")), UnorderedElementsAre("r.html", "inner.htm", "outer.html",
                                                              "data.html", "twice.html"));
}

TEST(ScanReports, WalksIntoALinkToAFolder)
{
    const TempFolder temp;
    temp.write("elsewhere/sub/r.html", "");
    temp.make_folder("in");
    temp.link("../elsewhere", "in/link");
    temp.link(temp.path("elsewhere/sub"), "in/page.html");
    temp.link("in", "input");
    EXPECT_THAT(listed(temp.path("input")),
                UnorderedElementsAre("link/sub/r.html", "page.html/r.html"));
}

TEST(ScanReports, SkipsThePageHoweverItsPathAndTheInputAreTyped)
{
    const TempFolder temp;
    temp.write("in/sub/page.html", "");
    temp.write("in/r.html", "");
    temp.link("in", "input");
    temp.link("in/sub/page.html", "pagelink");
    for (const char* input : {"in", "in/", "input", "./input/.", "in/sub/.."}) {
        for (const char* page : {"in/sub/page.html", "input/sub/page.html",
                                 "in//sub/../sub/./page.html", "pagelink"}) {
            EXPECT_THAT(listed(temp.path() + "/" + input, temp.path() + "/" + page),
                        ElementsAre("r.html"))
                << input << " " << page;
        }
    }
    const int status = run_unprivileged([&] {
        return chdir(temp.path().c_str()) == 0 &&
                       listed("in", "in/sub/page.html") == Paths{"r.html"}
                   ? 0
                   : 1;
    });
    EXPECT_EQ(status, 0) << "relative to the current folder";
}

TEST(ScanReports, SkipsThePageUnderEveryNameOfItsOwnAHardLinkExcepted)
{
    const TempFolder temp;
    for (const char* name :
         {"page.html", "r.html", "sub/PAGE.html", "sub/a-page.html", "elsewhere/page.html"}) {
        temp.write(name, "");
    }
    temp.link("page.html", "other.html");
    temp.link("other.html", "third.htm");
    temp.link("../page.html", "sub/page.html");
    for (const char* name : {"hard.html", "elsewhere/hard.html"}) {
        ASSERT_EQ(link(temp.path("page.html").c_str(), temp.path(name).c_str()), 0);
    }
    EXPECT_THAT(listed(temp.path(), temp.path("page.html")),
                UnorderedElementsAre("r.html", "sub/PAGE.html", "sub/a-page.html",
                                     "elsewhere/page.html", "hard.html", "elsewhere/hard.html"));
}

TEST(ScanReports, SkipsAPageOutsideThatALinkLeadsTo)
{
    const TempFolder temp;
    temp.write("out/page.html", "");
    temp.write("out/page.txt", "");
    temp.write("out/r.html", "");
    temp.write("in/r.html", "");
    temp.link("../out", "in/link");
    temp.link("../out/page.txt", "in/text.html");
    EXPECT_THAT(listed(temp.path("in"), temp.path("out/page.html")),
                UnorderedElementsAre("r.html", "link/r.html", "text.html"));
    EXPECT_THAT(listed(temp.path("in"), temp.path("out/page.txt")),
                UnorderedElementsAre("r.html", "link/r.html", "link/page.html"));
}

TEST(ScanReports, SkipsNothingForAPageThatIsAFolderOrCannotBeResolved)
{
    const TempFolder temp;
    temp.write("page.html/r.html", "");
    temp.link("nowhere.html", "dangling.html");
    for (const std::string& page :
         {temp.path("page.html"), temp.path("dangling.html"), temp.path("missing/page.html"),
          temp.path("page.html/r.html/"), std::string("/")}) {
        EXPECT_THAT(listed(temp.path(), page), ElementsAre("page.html/r.html")) << page;
    }
    EXPECT_TRUE(walk_of(temp.path(), "").result);
    EXPECT_THAT(walk_of(temp.path(), "").paths, ElementsAre("page.html/r.html"));
}

TEST(ScanReports, SkipsASubFolderWithoutReadPermissionAndStillSucceeds)
{
    const TempFolder temp;
    temp.write("r.html", "");
    temp.write("closed/r.html", "");
    temp.write("searchable/r.html", "");
    temp.write("open/r.html", "");
    temp.write("open/secret.html", "");
    temp.chmod("closed", 0);
    temp.chmod("searchable", 0111);
    temp.chmod("open/secret.html", 0);
    const Paths expected = {"open/r.html", "open/secret.html", "r.html"};
    const int status =
        run_unprivileged([&] { return sorted(listed(temp.path())) == expected ? 0 : 1; });
    EXPECT_EQ(status, 0);
}

TEST(ScanReports, ListsNothingOfAFolderThatMayBeListedButNotSearched)
{
    const TempFolder temp;
    // Enough of each kind that the listing mixes them.
    for (int i = 0; i < 20; ++i) {
        const std::string number = std::to_string(i);
        temp.write("in/r" + number + ".html", "");
        temp.write("in/sub" + number + "/r.html", "");
        temp.link("r0.html", "in/link" + number + ".html");
    }
    temp.link("/", "in/rootlink");
    temp.write("r.html", "");
    temp.chmod("in", 0444);
    const int status = run_unprivileged([&] {
        const Walk as_input = walk_of(temp.path("in"));
        const Walk as_folder = walk_of(temp.path());
        return (as_input.result && as_input.paths.empty() ? 1 : 0) +
               (as_folder.result && as_folder.paths == Paths{"r.html"} ? 2 : 0);
    });
    EXPECT_EQ(status, 3);
}

TEST(ScanReports, ListsFifosSocketsAndDevicesOfAReportsName)
{
    const TempFolder temp;
    temp.make_fifo("fifo.html");
    temp.make_fifo("fifo");
    temp.make_socket("socket.htm");
    temp.make_socket("socket");
    // Alone in its folder, and as a link, nothing else tells what it is.
    temp.make_folder("alone");
    temp.make_socket("alone/socket.html");
    temp.link("socket", "socketlink.html");
    temp.link("/dev/null", "device.html");
    temp.link("fifo", "link.html");
    Paths expected = {"fifo.html",       "socket.htm",  "alone/socket.html",
                      "socketlink.html", "device.html", "link.html"};
    EXPECT_EQ(sorted(listed(temp.path())), sorted(expected));
}

TEST(ScanReports, ListsAPathOf4095CharactersAndSkipsOneOf4096)
{
    const TempFolder temp;
    const std::string folder = make_folder_of_length(temp.path(), 4084);
    const std::string relative = folder.substr(temp.path().size() + 1) + "/";
    make_files_in(folder, {"1234.html", "12345.html", "123456.html", "1234567.html"});
    EXPECT_THAT(listed(temp.path()),
                UnorderedElementsAre(relative + "1234.html", relative + "12345.html"));
    // Each character that the input is typed longer counts.
    EXPECT_THAT(listed(temp.path() + "/"), UnorderedElementsAre(relative + "1234.html"));
    EXPECT_THAT(listed(temp.path() + "//"), IsEmpty());
}

TEST(ScanReports, ListsATreeAsDeepAsAPathCanNameWithinAnEightMebibyteStack)
{
    // "./d/d/.../d" has 4,095 characters at level 2,047.
    for (const std::size_t levels : {2040U, 2046U, 2047U, 2048U}) {
        EXPECT_EQ(walk_deep_tree(levels, DEEP_DESCRIPTORS), 0) << levels;
    }
}

TEST(ScanReports, OfADeepTreeWith64DescriptorsEndsNormallyWithWhatItCouldOpen)
{
    EXPECT_EQ(walk_deep_tree(DEEP_LEVELS, 64), 0);
}

TEST(ScanReports, ListsTheSameWhateverAListingSaysThatIsNotBelieved)
{
    const TempFolder temp(folder_in_memory());
    temp.write("r.html", "");
    temp.write("notes.txt", "");
    temp.write("page.html", "");
    temp.write("a/b/deep.htm", "");
    temp.write("a/page.html", "");
    temp.make_folder("folder.html");
    temp.link("../page.html", "a/link.html");
    temp.link("nowhere.html", "dangling.html");
    temp.link("a/b", "folderlink");
    temp.make_fifo("fifo.html");
    const Paths expected = {"a/b/deep.htm", "a/page.html", "fifo.html", "folderlink/deep.htm",
                            "r.html"};
    const auto expect_same_where_told = [&](const std::function<ListedTypes::Type(int)>& type) {
        const ListedTypes types(type);
        EXPECT_EQ(sorted(listed(temp.path(), temp.path("page.html"))), expected) << type(DT_LNK);
    };
    expect_same_where_told([](int type) { return type; });
    expect_same_where_told([](int) { return DT_UNKNOWN; });
    for (const int answer : {0, -1}) {
        const Interception fuse(fstatfs_call, [&](const auto&, int, struct statfs* status) {
            status->f_type = answer == 0 ? FUSE_SUPER_MAGIC : TMPFS_MAGIC;
            return answer;
        });
        expect_same_where_told([](int type) { return type == DT_LNK ? DT_REG : type; });
        expect_same_where_told([](int type) { return type == DT_DIR ? DT_UNKNOWN : type; });
        for (const int told : {DT_UNKNOWN, DT_REG, DT_DIR, DT_LNK, DT_FIFO}) {
            expect_same_where_told([told](int) { return told; });
        }
    }
}

TEST(ScanReports, ListsALinkWhoseCanonicalPathCannotBeTold)
{
    const TempFolder temp;
    temp.write("page.html", "");
    temp.link("../page.html", "in/link.html");
    EXPECT_THAT(listed(temp.path("in"), temp.path("page.html")), IsEmpty());
    const CallFault too_long(realpath_call, 2, nullptr, ENAMETOOLONG);
    EXPECT_THAT(listed(temp.path("in"), temp.path("page.html")), ElementsAre("link.html"));
    EXPECT_EQ(too_long.failures(), 1U);
}

TEST(ScanReports, FailsWhicheverAllocationFailsAndKeepsWhatWasListedBefore)
{
    const TempFolder temp;
    for (int i = 0; i < 25; ++i) {
        const std::string number = std::to_string(i);
        temp.write("r" + number + ".html", "");
        temp.write("a/r" + number + ".html", "");
        temp.write("a/b/c/r" + number + ".html", "");
    }
    const Paths all = listed(temp.path());
    ASSERT_EQ(all.size(), 75U);
    for (const Length length : {Length::Once, Length::FromThenOn}) {
        std::uint64_t number = 1;
        std::uint64_t failures = 1;
        for (std::size_t kept = 0; failures > 0; ++number) {
            const std::size_t before = open_descriptors();
            const AllocationFault fault(number, length);
            const Walk walk = walk_of(temp.path());
            failures = fault.failures();
            ASSERT_LE(failures, 1U) << "it went on after allocation " << number;
            ASSERT_EQ(walk.result, failures == 0) << number;
            ASSERT_GE(walk.paths.size(), kept) << number;
            kept = walk.paths.size();
            ASSERT_EQ(walk.paths, Paths(all.begin(), all.begin() + static_cast<int>(kept)));
            ASSERT_EQ(kept == all.size(), walk.result) << number;
            ASSERT_EQ(open_descriptors(), before) << number;
        }
        EXPECT_GE(number, 78U) << "75 copies and two arrays can fail";
    }
}

TEST(ScanDirectory, PutsThePrefixAndASlashBeforeEachPath)
{
    const TempFolder temp;
    temp.write("in/r.html", "");
    temp.write("in/sub/s.html", "");
    EXPECT_THAT(walk_below(temp.path("in/"), "p/q").paths,
                UnorderedElementsAre("p/q/r.html", "p/q/sub/s.html"));
}

TEST(ScanDirectory, OfAFolderThatCannotBeOpenedListsNothingAndSucceeds)
{
    const TempFolder temp;
    temp.write("file.html", "");
    for (const std::string& folder :
         {temp.path("missing"), temp.path("file.html"), std::string(),
          temp.path() + std::string(4096, '/'), temp.path() + std::string(100000, '/')}) {
        const Walk walk = walk_below(folder, "p");
        EXPECT_TRUE(walk.result);
        EXPECT_THAT(walk.paths, IsEmpty());
    }
}

TEST(ScanDirectory, ListsARelativePathOf4095CharactersAndSkipsOneOf4096)
{
    const TempFolder temp;
    temp.write("r.htm", "");
    temp.write("rr.htm", "");
    temp.write("dd/.htm", "");
    // "/r.htm" makes a prefix of 4089 characters 4095, "/dd/.htm" one of 4087.
    const std::vector<std::pair<std::size_t, Paths>> rows = {
        {4087, {"/dd/.htm", "/r.htm", "/rr.htm"}},
        {4088, {"/r.htm", "/rr.htm"}},
        {4089, {"/r.htm"}},
        {4090, {}},
        {4096, {}},
        {100000, {}}};
    for (const auto& [length, expected] : rows) {
        const std::string prefix(length, 'p');
        const Walk walk = walk_below(temp.path(), prefix);
        EXPECT_TRUE(walk.result) << length;
        Paths endings;
        for (const std::string& path : walk.paths) {
            ASSERT_TRUE(path.starts_with(prefix)) << length;
            endings.push_back(path.substr(length));
        }
        EXPECT_EQ(sorted(endings), expected) << length;
    }
}
