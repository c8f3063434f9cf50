// Trees deeper than any path to their bottom.

#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

// Folders called "d" one in the other below a top folder, made and removed by
// steps from one folder to the next, since no path to the innermost may be usable.
class DeepTree
{
public:
    DeepTree(std::string top, int depth) : top_(std::move(top))
    {
        int folder = open(top_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        for (int i = 0; i < depth; ++i) {
            EXPECT_EQ(mkdirat(folder, "d", 0755), 0);
            const int inner = openat(folder, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            close(folder);
            folder = inner;
        }
        innermost_ = folder;
        EXPECT_GE(innermost_, 0);
    }

    ~DeepTree()
    {
        namespace fs = std::filesystem;
        close(innermost_);
        const fs::path top = top_;
        const fs::path aside = top / "aside";
        while (fs::exists(top / "d")) {
            fs::rename(top / "d", aside);
            if (fs::exists(aside / "d")) {
                fs::rename(aside / "d", top / "d");
            }
            fs::remove_all(aside);
        }
    }

    DeepTree(const DeepTree&) = delete;
    DeepTree& operator=(const DeepTree&) = delete;

    void write_innermost(const std::string& name, const std::string& bytes) const
    {
        const int file =
            openat(innermost_, name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        EXPECT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        close(file);
    }

private:
    std::string top_;
    int innermost_ = -1;
};

inline std::string repeated(std::string_view text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}
