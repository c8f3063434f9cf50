// Trees deeper than any path to their bottom.

#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

// Folders called "d" one in the other below a top folder, made and removed by
// steps from one folder to the next, since no path to the innermost may be usable.
class DeepTree
{
public:
    // If a name is given, there is an empty file of that name in top and in each folder.
    DeepTree(const std::string& top, int depth, const std::string& file_in_each = "")
        : top_(top), innermost_(open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        for (int level = 0; level <= depth; ++level) {
            if (level > 0) {
                go_deeper();
            }
            if (!file_in_each.empty()) {
                write_innermost(file_in_each, "");
            }
        }
        EXPECT_GE(innermost_, 0);
    }

    // The second folder takes the first one's place before that is removed.
    ~DeepTree()
    {
        namespace fs = std::filesystem;
        close(innermost_);
        const fs::path aside = top_ / "aside";
        std::error_code error;
        for (fs::rename(top_ / "d", aside, error); !error; fs::rename(top_ / "d", aside, error)) {
            std::error_code is_innermost;
            fs::rename(aside / "d", top_ / "d", is_innermost);
            fs::remove_all(aside, error);
        }
    }

    DeepTree(const DeepTree&) = delete;
    DeepTree& operator=(const DeepTree&) = delete;

    // Makes one more folder, which is the innermost from then on.
    void go_deeper()
    {
        EXPECT_EQ(mkdirat(innermost_, "d", 0755), 0);
        const int inner = openat(innermost_, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        close(innermost_);
        innermost_ = inner;
    }

    void write_innermost(const std::string& name, const std::string& bytes) const
    {
        const int file =
            openat(innermost_, name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        EXPECT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        close(file);
    }

private:
    std::filesystem::path top_;
    int innermost_;
};

inline std::string repeated(std::string_view text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

// A folder below top whose path has exactly length characters, made with those between.
inline std::string make_folder_of_length(const std::string& top, std::size_t length)
{
    std::string path = top;
    while (path.size() < length) {
        const std::size_t room = length - path.size() - 1;
        const std::size_t name = room <= 200 ? room : std::min<std::size_t>(200, room - 2);
        path += "/" + std::string(name, 'd');
    }
    std::filesystem::create_directories(path);
    return path;
}
