// The growing list of report paths that the directory walk fills.
//
// The list owns the array and every string in it. Strings keep their address
// until file_list_free, however much the list grows, so records may point at
// them. Order is the order of appending.

#pragma once

#include <cstdint>
#include <string_view>

// Slots of the first array that a list allocates; later ones double.
inline constexpr std::uint64_t FILE_LIST_FIRST_CAPACITY = 64;

struct FileList
{
    char** paths;           // owned array of owned NUL-terminated strings; null before the first
    std::uint64_t count;    // strings stored
    std::uint64_t capacity; // slots allocated
};

// Makes the list empty; allocates nothing and releases nothing.
void file_list_init(FileList& list);

// Appends a copy of path. False: out of memory; the list's contents are as before.
[[nodiscard]] bool file_list_append(FileList& list, std::string_view path);

// Releases every string and the array and leaves the list empty.
void file_list_free(FileList& list);
