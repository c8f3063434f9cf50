// The folders above the page, and the JSON file beside it, for every page path of a few
// characters; output_paths_test.cpp tries single ones, and short ones on a real disk.

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/memory_file_system.h"
#include "cli/output_paths.h"
#include "core/paths.h"
#include "support/build_speed.h"

namespace {

using Kind = MemoryFileSystem::Kind;
using Tree = MemoryFileSystem::Tree;

constexpr std::string_view PATH_LETTERS = "a./\\:";
constexpr std::string_view ENDING_LETTERS = ".htmlHTML";
constexpr std::size_t LONGEST_PATH = 7;
constexpr std::size_t LONGEST_ENDING = IS_FAST_BUILD ? 6 : 5;
constexpr char FILLER = '#';

template <typename Visit>
void visit_texts(std::string& text, std::string_view letters, std::size_t longest,
                 const Visit& visit)
{
    visit(text);
    // One failure tells enough.
    if (text.size() == longest || testing::Test::HasFatalFailure()) {
        return;
    }
    for (const char letter : letters) {
        text.push_back(letter);
        visit_texts(text, letters, longest, visit);
        text.pop_back();
    }
}

// 1 + n + n^2 and so on.
std::uint64_t count_texts(std::uint64_t letters, std::size_t longest)
{
    std::uint64_t texts = 1;
    for (; longest > 0; --longest) {
        texts = texts * letters + 1;
    }
    return texts;
}

// ---- A second version of the folder creation, put together from whole texts ----

bool separates(char c)
{
    return c == '/' || c == '\\';
}

// The folders that have to be there for a page, outermost first.
std::vector<std::string> folders_for(const std::string& page)
{
    std::size_t last = page.size();
    while (last > 0 && !separates(page[last - 1])) {
        --last;
    }
    std::vector<std::string> folders;
    if (last < 2) {
        return folders; // no separator, or the first character is the only one
    }
    const std::string folder = page.substr(0, last - 1);
    for (std::size_t i = 1; i < folder.size(); ++i) {
        const bool is_drive = i == 2 && folder[1] == ':';
        if (separates(folder[i]) && !is_drive) {
            folders.push_back(folder.substr(0, i));
        }
    }
    folders.push_back(folder);
    return folders;
}

// The first of them that cannot be made ends it.
bool make_folders_naively(MemoryFileSystem& files, const std::string& page)
{
    const std::vector<std::string> folders = folders_for(page);
    return std::all_of(folders.begin(), folders.end(), [&files](const std::string& folder) {
        const int error = files.make_folder(folder);
        return error == 0 || error == EEXIST;
    });
}

// ---- The two side by side ----

struct Start
{
    std::string_view name;
    Tree tree;
};

// What a page path may come upon; the current folder is /nest/nest.
std::vector<Start> starts()
{
    const Tree nest = {{"/nest", Kind::Folder}, {"/nest/nest", Kind::Folder}};
    std::vector<Start> all = {{"an empty folder", nest},
                              {"a file a", nest},
                              {"a folder a with a file a", nest},
                              {"folders named like drives", nest},
                              {"folders that cannot be written to", nest}};
    all[1].tree.emplace("/nest/nest/a", Kind::File);
    all[2].tree.emplace("/nest/nest/a", Kind::Folder);
    all[2].tree.emplace("/nest/nest/a/a", Kind::File);
    for (const char* drive : {"/nest/nest/a:", "/nest/nest/::", "/nest/nest/.:"}) {
        all[3].tree.emplace(drive, Kind::Folder);
    }
    all[4].tree = {{"", Kind::ReadOnlyFolder},
                   {"/nest", Kind::Folder},
                   {"/nest/nest", Kind::ReadOnlyFolder},
                   {"/nest/nest/a", Kind::Folder}};
    return all;
}

struct Trial
{
    bool created = false;
    Tree tree;
    bool right_permissions = true;
};

Trial try_program(const Start& start, const std::string& page)
{
    MemoryFileSystem files(start.tree, "/nest/nest");
    const bool created = create_page_folders(page);
    return {created, files.tree(), files.all_made_with(0755)};
}

Trial try_naively(const Start& start, const std::string& page)
{
    MemoryFileSystem files(start.tree, "/nest/nest");
    const bool created = make_folders_naively(files, page);
    return {created, files.tree()};
}

// ---- The JSON path ----

std::string json_path_naively(const std::string& page)
{
    for (const std::string ending : {".html", ".HTML", ".htm", ".HTM"}) {
        const std::size_t stem = page.size() - ending.size();
        if (page.size() >= ending.size() && page.substr(stem) == ending) {
            return page.substr(0, stem) + ".json";
        }
    }
    return page + ".json";
}

// Of what is in the buffer behind the NUL nothing may be touched.
std::string json_path(const std::string& page)
{
    std::array<char, LONG_PATH_BUFFER_SIZE> buffer;
    const std::size_t looked_at = page.size() + 32;
    std::fill_n(buffer.begin(), looked_at, FILLER);
    BoundedText path = {buffer.data(), buffer.size(), 0};
    EXPECT_TRUE(append_json_path(path, page));
    const std::string_view looked(buffer.data(), looked_at);
    const std::size_t end = looked.find('\0');
    const bool untouched = looked.find_first_not_of(FILLER, end + 1) == std::string_view::npos;
    return untouched ? std::string(looked.substr(0, end)) : "touched behind its end";
}

void expect_json_paths(std::string_view letters, std::size_t longest)
{
    std::uint64_t texts = 0;
    std::uint64_t replaced = 0;
    std::string text;
    visit_texts(text, letters, longest, [&](const std::string& page) {
        const std::string expected = json_path_naively(page);
        ++texts;
        replaced += expected.size() < page.size() + 5 ? 1U : 0U;
        ASSERT_EQ(json_path(page), expected) << page;
    });
    EXPECT_EQ(texts, count_texts(letters.size(), longest));
    EXPECT_EQ(replaced > 0, letters == ENDING_LETTERS);
    std::cout << texts << " page paths, " << replaced << " with an ending to replace\n";
}

} // namespace

TEST(EveryPagePath, GetsTheFoldersThatTheModelGivesItWhateverWasThere)
{
    for (const Start& start : starts()) {
        SCOPED_TRACE(start.name);
        std::uint64_t texts = 0;
        std::uint64_t created = 0;
        std::uint64_t changed = 0;
        std::string text;
        visit_texts(text, PATH_LETTERS, LONGEST_PATH, [&](const std::string& page) {
            const Trial naive = try_naively(start, page);
            const Trial program = try_program(start, page);
            ++texts;
            created += naive.created ? 1U : 0U;
            changed += naive.tree.size() > start.tree.size() + 1 ? 1U : 0U;
            ASSERT_EQ(program.created, naive.created) << page;
            ASSERT_EQ(program.tree, naive.tree) << page;
            ASSERT_TRUE(program.right_permissions) << page;
        });
        EXPECT_EQ(texts, 97656U); // (5^8 - 1) / 4
        EXPECT_GT(created, 10000U);
        EXPECT_LT(created, texts);
        EXPECT_GT(changed, 1000U);
        std::cout << "into " << start.name << ": " << texts << " page paths, for " << created
                  << " all folders were there in the end, " << changed << " made some\n";
    }
}

TEST(EveryPagePath, OfSeparatorsAndDotsGetsItsJsonPath)
{
    expect_json_paths(PATH_LETTERS, LONGEST_PATH);
}

TEST(EveryPagePath, OfTheLettersOfTheEndingsGetsItsJsonPath)
{
    expect_json_paths(ENDING_LETTERS, LONGEST_ENDING);
}

// What the file system in memory says of a path has to be what a real one says.
TEST(MemoryFileSystem, TellsTheSameOfShortPathsAsARealOne)
{
    char folder[] = "/tmp/fthsummary-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    ASSERT_EQ(chdir(folder), 0);
    // No path of five characters makes anything further up than beside the inner n.
    ASSERT_EQ(mkdir("n", 0755), 0);
    ASSERT_EQ(mkdir("n/n", 0755), 0);
    ASSERT_EQ(chdir("n/n"), 0);
    ASSERT_EQ(mkdir("a", 0755), 0);
    ASSERT_EQ(mknod("b", S_IFREG | 0644, 0), 0);
    std::string text;
    visit_texts(text, "ab./", 5, [](const std::string& path) {
        if (path.starts_with('/')) {
            return;
        }
        struct stat status = {};
        const int real_stat = stat(path.c_str(), &status) == 0 ? 0 : errno;
        const int real_mkdir = mkdir(path.c_str(), 0755) == 0 ? 0 : errno;
        if (real_mkdir == 0) {
            ASSERT_EQ(rmdir(path.c_str()), 0) << path;
        }
        MemoryFileSystem files({{"/n", Kind::Folder},
                                {"/n/n", Kind::Folder},
                                {"/n/n/n", Kind::Folder},
                                {"/n/n/n/a", Kind::Folder},
                                {"/n/n/n/b", Kind::File}},
                               "/n/n/n");
        Kind kind = Kind::File;
        ASSERT_EQ(files.find(path, kind), real_stat) << path;
        ASSERT_EQ(files.make_folder(path), real_mkdir) << path;
    });
    ASSERT_EQ(rmdir("a"), 0);
    ASSERT_EQ(unlink("b"), 0);
    ASSERT_EQ(chdir(folder), 0);
    ASSERT_EQ(rmdir("n/n"), 0);
    ASSERT_EQ(rmdir("n"), 0);
    ASSERT_EQ(chdir("/"), 0);
    ASSERT_EQ(rmdir(folder), 0);
}
