#include "cli/memory_file_system.h"

#include <algorithm>
#include <cerrno>
#include <sstream>
#include <utility>

#include <sys/stat.h>

namespace {

std::string parent_of(const std::string& place)
{
    return place.empty() ? place : place.substr(0, place.rfind('/'));
}

int result_of(int error)
{
    errno = error != 0 ? error : errno;
    return error != 0 ? -1 : 0;
}

} // namespace

MemoryFileSystem::MemoryFileSystem(Tree tree, std::string current_folder)
    : tree_(std::move(tree)), current_folder_(std::move(current_folder)),
      mkdir_(mkdir_call,
             [this](const auto&, const char* path, mode_t mode) {
                 const int error = make_folder(path);
                 if (error == 0) {
                     note_permissions(mode);
                 }
                 return result_of(error);
             }),
      stat_(stat_call, [this](const auto&, const char* path, struct stat* status) {
          Kind kind = Kind::File;
          const int error = find(path, kind);
          if (error == 0) {
              *status = {};
              status->st_mode = kind == Kind::File ? S_IFREG | 0644 : S_IFDIR | 0755;
          }
          return result_of(error);
      })
{
    tree_.emplace("", Kind::Folder);
}

const MemoryFileSystem::Tree& MemoryFileSystem::tree() const
{
    return tree_;
}

int MemoryFileSystem::follow(const std::string& path, std::string& place) const
{
    if (path.empty()) {
        return ENOENT;
    }
    place = path.front() == '/' ? "" : current_folder_;
    std::istringstream names(path);
    for (std::string name; std::getline(names, name, '/');) {
        if (name.empty()) {
            continue;
        }
        const auto entry = tree_.find(place);
        if (entry == tree_.end()) {
            return ENOENT;
        }
        if (entry->second == Kind::File) {
            return ENOTDIR;
        }
        if (name == "..") {
            place = parent_of(place);
        } else if (name != ".") {
            place += "/" + name;
        }
    }
    return 0;
}

int MemoryFileSystem::find(const std::string& path, Kind& kind) const
{
    std::string place;
    const int error = follow(path, place);
    if (error != 0) {
        return error;
    }
    const auto entry = tree_.find(place);
    if (entry == tree_.end()) {
        return ENOENT;
    }
    kind = entry->second;
    return kind == Kind::File && path.back() == '/' ? ENOTDIR : 0;
}

int MemoryFileSystem::make_folder(const std::string& path)
{
    std::string place;
    const int error = follow(path, place);
    if (error != 0) {
        return error;
    }
    if (tree_.contains(place)) {
        return EEXIST;
    }
    if (tree_.at(parent_of(place)) == Kind::ReadOnlyFolder) {
        return EACCES;
    }
    tree_.emplace(place, Kind::Folder);
    return 0;
}

bool MemoryFileSystem::all_made_with(unsigned permissions) const
{
    return std::all_of(permissions_.begin(), permissions_.end(),
                       [permissions](unsigned each) { return each == permissions; });
}

void MemoryFileSystem::note_permissions(unsigned permissions)
{
    permissions_.push_back(permissions);
}
