#include "support/temp_folder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace fs = std::filesystem;

TempFolder::TempFolder() : TempFolder(fs::temp_directory_path()) {}

TempFolder::TempFolder(const fs::path& parent)
{
    umask(022);
    std::string pattern = (fs::canonical(parent) / "fthsummary-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr || ::chmod(pattern.c_str(), 0755) != 0) {
        throw std::runtime_error("cannot make a folder in " + parent.string());
    }
    folder_ = pattern;
}

TempFolder::~TempFolder()
{
    // Folders that a test made unreadable must not keep the others alive.
    std::error_code ignored;
    fs::permissions(folder_, fs::perms::owner_all, fs::perm_options::add, ignored);
    for (auto entry = fs::recursive_directory_iterator(
             folder_, fs::directory_options::skip_permission_denied, ignored);
         entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
            fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
        }
    }
    fs::remove_all(folder_, ignored);
}

std::string TempFolder::path() const
{
    return folder_.string();
}

std::string TempFolder::path(std::string_view name) const
{
    return (folder_ / name).string();
}

void TempFolder::write(std::string_view name, std::string_view bytes) const
{
    const fs::path file = folder_ / name;
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    ASSERT_TRUE(stream) << "cannot write " << file;
}

void TempFolder::make_folder(std::string_view name) const
{
    fs::create_directories(folder_ / name);
}

void TempFolder::link(std::string_view target, std::string_view name) const
{
    const fs::path link = folder_ / name;
    fs::create_directories(link.parent_path());
    fs::create_symlink(target, link);
}

void TempFolder::make_fifo(std::string_view name) const
{
    make_folder(fs::path(name).parent_path().string());
    ASSERT_EQ(mkfifo(path(name).c_str(), 0644), 0);
}

// Its address has room for a hundred bytes, which the path through the descriptor needs
// less of than any other.
void TempFolder::make_socket(std::string_view name) const
{
    const fs::path where = folder_ / name;
    fs::create_directories(where.parent_path());
    const int folder = open(where.parent_path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    const std::string short_path =
        "/proc/self/fd/" + std::to_string(folder) + "/" + where.filename().string();
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(short_path.size(), sizeof address.sun_path);
    short_path.copy(address.sun_path, short_path.size());
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(descriptor);
    close(folder);
}

void TempFolder::chmod(std::string_view name, unsigned mode) const
{
    ASSERT_EQ(::chmod(path(name).c_str(), static_cast<mode_t>(mode)), 0);
}

std::string TempFolder::read(std::string_view name) const
{
    return read_file(path(name));
}

bool TempFolder::exists(std::string_view name) const
{
    return fs::exists(folder_ / name);
}

std::vector<std::string> TempFolder::names() const
{
    std::vector<std::string> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder_)) {
        found.push_back(entry.path().lexically_relative(folder_).string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

fs::path folder_in_memory()
{
    constexpr char IN_MEMORY[] = "/dev/shm";
    return access(IN_MEMORY, W_OK | X_OK) == 0 ? fs::path(IN_MEMORY) : fs::temp_directory_path();
}

std::string read_file(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream) << "cannot read " << path;
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    return bytes.str();
}
