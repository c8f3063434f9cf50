#include "scan/scan_reports.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include <dirent.h>
#include <sys/stat.h>

#include "core/append_all.h"
#include "core/paths.h"
#include "scan/listing_types.h"

namespace {

// A folder whose listing is open.
struct Level
{
    DIR* listing;
    std::uint16_t folder_length;   // of Walk::full, the folder's own path
    std::uint16_t relative_length; // of Walk::relative, the prefix of its entries
    bool types_are_true;           // what the listing says of its entries holds
    bool searchable;               // some path inside it has been examined
};

// Each level makes the full path at least two characters longer, so the limit on
// paths is a limit on levels. One array for all of them, not a stack frame for each,
// makes a deep tree cost no more stack than a flat one.
constexpr std::size_t MAX_LEVELS = PATH_BUFFER_SIZE / 2;

struct Walk
{
    char full_bytes[PATH_BUFFER_SIZE];
    char relative_bytes[PATH_BUFFER_SIZE];
    BoundedText full;           // the entry at hand, as system calls take it
    BoundedText relative;       // the same, as the list takes it
    const char* canonical_page; // null: nothing is skipped
    std::string_view page_name; // its last component
    FileList* list;
    Level levels[MAX_LEVELS];
    std::size_t depth; // levels in use
};

enum class EntryUse
{
    Skip,
    Enter,
    List
};

// Sets both paths to those of the entry called name in the innermost folder.
// False: one of them grows too long.
bool set_paths(Walk& walk, const Level& level, std::string_view name)
{
    walk.full.length = level.folder_length;
    walk.relative.length = level.relative_length;
    return append_all(walk.full, "/", name) &&
           append_all(walk.relative, level.relative_length == 0 ? "" : "/", name);
}

// Opens the folder that both paths name as the new innermost level.
// False: it cannot be opened.
bool enter(Walk& walk)
{
    DIR* listing = opendir(walk.full.data);
    if (listing == nullptr) {
        return false;
    }
    walk.levels[walk.depth++] = {listing, static_cast<std::uint16_t>(walk.full.length),
                                 static_cast<std::uint16_t>(walk.relative.length),
                                 tells_types_truly(listing), false};
    return true;
}

void leave(Walk& walk)
{
    closedir(walk.levels[--walk.depth].listing);
}

// Whether name, with A to Z read as a to z, ends in ending.
bool ends_in(std::string_view name, std::string_view ending)
{
    return name.size() >= ending.size() &&
           std::equal(ending.rbegin(), ending.rend(), name.rbegin(), [](char wanted, char c) {
               return wanted == (c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
           });
}

bool is_report_name(std::string_view name)
{
    return ends_in(name, ".html") || ends_in(name, ".htm");
}

bool may_lead_elsewhere(unsigned char type)
{
    return type == DT_LNK || type == DT_UNKNOWN;
}

// The type of the entry at walk.full: as it is listed if that can be believed, else as the
// entry itself says. Unknown where neither tells.
unsigned char type_of(const Walk& walk, Level& level, const dirent& entry)
{
    if (level.types_are_true && entry.d_type != DT_UNKNOWN) {
        return entry.d_type;
    }
    struct stat status = {};
    if (lstat(walk.full.data, &status) != 0) {
        return DT_UNKNOWN;
    }
    level.searchable = true;
    return IFTODT(status.st_mode);
}

// Tells what the entry at walk.full is, asking the system as seldom as possible.
//
// A folder needs no question: opening it answers. A plain entry needs one only if
// it may be a report, and then only until some path in this folder has been
// examined: what keeps a plain entry from being examined is that the folder may
// not be searched, and that holds for all of its entries alike. (A single damaged
// entry may be listed so; reading it then tells that it is unreadable.)
EntryUse examine(Walk& walk, Level& level, unsigned char type, std::string_view name)
{
    if (type == DT_DIR) {
        return EntryUse::Enter;
    }
    const bool is_candidate = is_report_name(name);
    if (!may_lead_elsewhere(type) && (!is_candidate || level.searchable)) {
        return is_candidate ? EntryUse::List : EntryUse::Skip;
    }
    struct stat status = {};
    if (stat(walk.full.data, &status) != 0) {
        return EntryUse::Skip;
    }
    level.searchable = true;
    if (S_ISDIR(status.st_mode)) {
        return EntryUse::Enter;
    }
    return is_candidate ? EntryUse::List : EntryUse::Skip;
}

// Whether the entry at walk.full is the page under this or another name. What is of any
// type but a link has its own name as the last component of its
// canonical path, so it is resolved only if that is the page's name.
bool is_page(const Walk& walk, unsigned char type, std::string_view name)
{
    if (walk.canonical_page == nullptr || (!may_lead_elsewhere(type) && name != walk.page_name)) {
        return false;
    }
    char canonical[PATH_BUFFER_SIZE];
    return resolve_path(walk.full.data, canonical, sizeof canonical) &&
           std::strcmp(canonical, walk.canonical_page) == 0;
}

// False: memory ran out.
bool visit(Walk& walk, const dirent& entry)
{
    Level& level = walk.levels[walk.depth - 1];
    const std::string_view name = entry.d_name;
    if (name == "." || name == ".." || !set_paths(walk, level, name)) {
        return true;
    }
    const unsigned char type = type_of(walk, level, entry);
    switch (examine(walk, level, type, name)) {
    case EntryUse::Skip:
        return true;
    case EntryUse::Enter:
        level.searchable = enter(walk) || level.searchable;
        return true;
    case EntryUse::List:
        break;
    }
    return is_page(walk, type, name) || file_list_append(*walk.list, walk.relative.data);
}

bool can_be_opened(const char* folder)
{
    DIR* listing = opendir(folder);
    if (listing == nullptr) {
        return false;
    }
    closedir(listing);
    return true;
}

} // namespace

bool scan_reports(const char* input_dir, const char* page_path, FileList& list,
                  const Progress* progress)
{
    if (!can_be_opened(input_dir)) {
        return false;
    }
    char canonical_page[PATH_BUFFER_SIZE];
    const bool page_exists =
        page_path != nullptr && resolve_path(page_path, canonical_page, sizeof canonical_page);
    return scan_directory(input_dir, "", page_exists ? canonical_page : nullptr, list, progress);
}

bool scan_directory(const char* folder, const char* prefix, const char* canonical_page,
                    FileList& list, const Progress* progress)
{
    Walk walk;
    walk.full = {walk.full_bytes, sizeof walk.full_bytes, 0};
    walk.relative = {walk.relative_bytes, sizeof walk.relative_bytes, 0};
    walk.list = &list;
    walk.depth = 0;
    walk.canonical_page = canonical_page;
    if (canonical_page != nullptr) {
        walk.page_name = canonical_page;
        walk.page_name.remove_prefix(walk.page_name.rfind('/') + 1);
    }
    // A folder whose path is too long to be kept is too long for the system, too.
    if (!bounded_text_append(walk.full, folder) || !bounded_text_append(walk.relative, prefix) ||
        !enter(walk)) {
        return true;
    }
    bool has_memory = true;
    while (walk.depth > 0) {
        const dirent* entry = has_memory ? readdir(walk.levels[walk.depth - 1].listing) : nullptr;
        if (entry == nullptr) {
            leave(walk);
        } else {
            has_memory = visit(walk, *entry);
            tell_progress(progress, list.count);
        }
    }
    return has_memory;
}
