// A file system that exists in memory only, so that tests may make folders anywhere,
// below "/" too, and find out what was made.
//
// The mkdir and stat of our own objects go to it while one lives.

#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/intercepted_calls.h"

// Folders and files without contents, by absolute path; the root is "". One at a time.
// Paths mean what they mean to the system: "/" alone separates, and "." and ".." lead
// through folders that must exist.
class MemoryFileSystem
{
public:
    enum class Kind
    {
        Folder,
        ReadOnlyFolder,
        File
    };
    using Tree = std::map<std::string, Kind>;

    // The tree holds the current folder and everything above its entries.
    MemoryFileSystem(Tree tree, std::string current_folder);

    const Tree& tree() const;

    // As the system calls of these names: 0, or the number of the error.
    int find(const std::string& path, Kind& kind) const;
    int make_folder(const std::string& path);

    // Whether each folder was made with these permissions, before the umask.
    bool all_made_with(unsigned permissions) const;
    void note_permissions(unsigned permissions);

private:
    // Where path leads, whether there is something or not.
    int follow(const std::string& path, std::string& place) const;

    Tree tree_;
    std::string current_folder_;
    std::vector<unsigned> permissions_;
    Interception<int, const char*, mode_t> mkdir_;
    Interception<int, const char*, struct stat*> stat_;
};
