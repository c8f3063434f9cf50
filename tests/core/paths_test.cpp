#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/paths.h"
#include "support/deep_tree.h"
#include "support/temp_folder.h"

namespace {

constexpr char GUARD = 0x5a;

// A caller's buffer of capacity bytes, the bytes behind it watched.
class Output
{
public:
    explicit Output(std::uint64_t capacity) : bytes_(capacity + 64, GUARD), capacity_(capacity) {}
    char* data()
    {
        return bytes_.data();
    }
    std::string text() const
    {
        return bytes_.data();
    }
    bool kept_its_bounds() const
    {
        return std::all_of(bytes_.begin() + static_cast<std::ptrdiff_t>(capacity_), bytes_.end(),
                           [](char byte) { return byte == GUARD; });
    }

private:
    std::vector<char> bytes_;
    std::uint64_t capacity_;
};

// What each function gives for a buffer of capacity bytes; nothing when it fails.
std::optional<std::string> resolved(const std::string& path,
                                    std::uint64_t capacity = PATH_BUFFER_SIZE)
{
    Output output(capacity);
    const bool fits = resolve_path(path.c_str(), output.data(), capacity);
    EXPECT_TRUE(output.kept_its_bounds()) << path << " in " << capacity;
    return fits ? std::optional(output.text()) : std::nullopt;
}

std::optional<std::string> relative(std::string_view from, std::string_view to,
                                    std::uint64_t capacity = LONG_PATH_BUFFER_SIZE)
{
    Output output(capacity);
    const bool fits = make_relative_path(from, to, output.data(), capacity);
    EXPECT_TRUE(output.kept_its_bounds()) << from << " to " << to << " in " << capacity;
    return fits ? std::optional(output.text()) : std::nullopt;
}

// "/c1/c2/.../c<count>"
std::string numbered(std::size_t count)
{
    std::string path;
    for (std::size_t i = 1; i <= count; ++i) {
        path += "/c" + std::to_string(i);
    }
    return path;
}

} // namespace

TEST(ResolvePath, OfAPathThatDoesNotExistFails)
{
    const TempFolder temp;
    temp.write("file", "");
    temp.link("nowhere", "dangling");
    temp.link("loop", "loop");
    for (const std::string& path :
         {temp.path("page.html"), temp.path("missing/page.html"), temp.path("file/below"),
          temp.path("file/"), temp.path("dangling"), temp.path("loop"), temp.path("missing/.."),
          temp.path(std::string(256, 'n')), std::string()}) {
        EXPECT_EQ(resolved(path), std::nullopt) << path;
    }
}

TEST(ResolvePath, IntoABufferShorterThanThePathPlusItsNulFails)
{
    const TempFolder temp;
    temp.write("page.html", "");
    const std::string path = temp.path("page.html");
    for (std::uint64_t capacity = 0; capacity <= path.size(); ++capacity) {
        EXPECT_EQ(resolved(path, capacity), std::nullopt) << capacity;
    }
    EXPECT_EQ(resolved(path, path.size() + 1), path);
    EXPECT_EQ(resolved(path, path.size() + 2), path);
    EXPECT_EQ(resolved("/", 0), std::nullopt);
    EXPECT_EQ(resolved("/", 1), std::nullopt);
    EXPECT_EQ(resolved("/", 2), "/");
}

TEST(ResolvePath, GivesTheCanonicalAbsolutePath)
{
    const TempFolder temp;
    temp.write("folder/inner/file", "");
    temp.link("folder", "link");
    temp.link("link/inner/file", "shortcut");
    const std::string file = temp.path("folder/inner/file");
    EXPECT_EQ(resolved(file), file);
    EXPECT_EQ(resolved(temp.path() + "//folder/./inner/../inner///file"), file);
    EXPECT_EQ(resolved(temp.path("link/inner/file")), file);
    EXPECT_EQ(resolved(temp.path("shortcut")), file);
    EXPECT_EQ(resolved(temp.path("link/")), temp.path("folder"));
    EXPECT_EQ(resolved(temp.path("link/..")), temp.path());
    EXPECT_EQ(resolved("/../.."), "/");
}

// Every buffer that is too small for the link is refused, too.
TEST(MakeRelativePath, LeadsFromTheFolderToTheTargetByWholeComponents)
{
    struct Row
    {
        const char* from;
        const char* to;
        const char* link;
    };
    const Row rows[] = {
        {"/data/out", "/data/out/a/r.html", "a/r.html"},
        {"/data/out", "/data/in/a/r.html", "../in/a/r.html"},
        {"/data/out/x", "/data", "../../"},
        {"/data/out", "/data/out", ""},
        {"/", "/data/r.html", "data/r.html"},
        {"/", "/r", "r"},
        // Both separators, in runs of any length.
        {"C:\\data\\out", "C:/data/out/r.html", "r.html"},
        {"C:/data/out", "C:\\data\\out\\a\\r.html", "a/r.html"},
        {"\\/data//\\out/\\", "//data\\out/\\\\in\\r.html//", "in/r.html"},
        // Nothing shared.
        {"C:/data", "D:/data/r.html", "../../D:/data/r.html"},
        {"/a/b/c", "/x", "../../../x"},
        {"/a/b", "/", "../../"},
        {"/", "/", ""},
        {"", "", ""},
        {"", "r.html", "r.html"},
        // Components are compared whole, byte for byte, and by their place.
        {"/data/out", "/data/output/r.html", "../output/r.html"},
        {"/data/output", "/data/out/r.html", "../out/r.html"},
        {"/Data", "/data/r.html", "../data/r.html"},
        {"/a/same", "/b/same", "../../b/same"},
        {"/\x80", "/\xc0", "../\xc0"},
        // Dots are ordinary components.
        {"/a/./b", "/a/b", "../../b"},
        {"/a/../b", "/a/../c", "../c"},
        {"/a", "/a/.././r.html", ".././r.html"},
    };
    for (const Row& row : rows) {
        const std::string link = row.link;
        for (std::uint64_t capacity = 0; capacity <= link.size(); ++capacity) {
            EXPECT_EQ(relative(row.from, row.to, capacity), std::nullopt) << link << capacity;
        }
        EXPECT_EQ(relative(row.from, row.to, link.size() + 1), link);
        EXPECT_EQ(relative(row.from, row.to), link);
    }
}

TEST(MakeRelativePath, ReadsNoByteBehindEitherText)
{
    const std::string text = "/data/outside/r.html";
    EXPECT_EQ(relative(std::string_view(text).substr(0, 9), std::string_view(text).substr(0, 8)),
              "../ou");
}

TEST(MakeRelativePath, ComparesAFromOfMoreThan64ComponentsOnItsFirst64Only)
{
    const std::string to = numbered(64);
    EXPECT_EQ(relative(numbered(63), to), "c64");
    EXPECT_EQ(relative(numbered(64), to), "");
    EXPECT_EQ(relative(numbered(65), to), "");
    EXPECT_EQ(relative(numbered(64) + "/other/more", to), "");
    EXPECT_EQ(relative(numbered(63), "/"), repeated("../", 63));
    EXPECT_EQ(relative(numbered(64), "/"), repeated("../", 64));
    EXPECT_EQ(relative(numbered(65), "/"), repeated("../", 64));
    EXPECT_EQ(relative(numbered(1000), "/c1/x"), repeated("../", 63) + "x");
}

TEST(MakeRelativePath, IgnoresComponentsOfToBeyondThe64th)
{
    EXPECT_EQ(relative("/c1", numbered(64)), numbered(64).substr(4));
    EXPECT_EQ(relative("/c1", numbered(65)), numbered(64).substr(4));
    EXPECT_EQ(relative(numbered(64), numbered(65)), "");
    EXPECT_EQ(relative(numbered(63), numbered(1000)), "c64");
    // Separators alone take no slot.
    EXPECT_EQ(relative("/", repeated("/\\", 500) + "r.html"), "r.html");
}

TEST(MakeRelativePath, KeepsTheFirst255CharactersOfAComponent)
{
    const std::string name(255, 'n');
    EXPECT_EQ(relative("/", "/" + std::string(254, 'n') + "/r"), std::string(254, 'n') + "/r");
    EXPECT_EQ(relative("/", "/" + name + "/r"), name + "/r");
    EXPECT_EQ(relative("/", "/" + name + "x/r"), name + "/r");
    EXPECT_EQ(relative("/", "/" + name + std::string(9000, 'x') + "/r"), name + "/r");
    EXPECT_EQ(relative("/" + name + "x", "/" + name + "y/r"), "r");
    EXPECT_EQ(relative("/" + name, "/" + name + "y/r"), "r");
    EXPECT_EQ(relative("/" + std::string(254, 'n'), "/" + name + "/r"), "../" + name + "/r");
}

TEST(MakeRelativePath, GivesTheLongestLinkThatThereIs)
{
    const std::string from = repeated("/a", 70);
    const std::string to = repeated("/" + std::string(300, 'b'), 70);
    std::string link = repeated("../", 64) + repeated(std::string(255, 'b') + "/", 64);
    link.pop_back();
    ASSERT_EQ(link.size(), 16575U);
    EXPECT_EQ(relative(from, to, 16576), link);
    EXPECT_EQ(relative(from, to, 16575), std::nullopt);
}
