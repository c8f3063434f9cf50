// Canonical paths and relative links, in the caller's bounded buffers. Nothing
// here allocates or prints.

#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

// Bytes of a path buffer, its NUL included: paths built by the walk, canonical
// paths and the page path have at most 4095 characters.
inline constexpr std::uint64_t PATH_BUFFER_SIZE = 4096;

// Bytes of a buffer that holds two such paths joined by "/", its NUL included.
inline constexpr std::uint64_t LONG_PATH_BUFFER_SIZE = 8192;

// Whether c separates components where folders are created and links are made: both
// kinds do. The walk, and the page's own folder, know "/" alone.
constexpr bool is_path_separator(char c)
{
    return c == '/' || c == '\\';
}

// What make_relative_path looks at: so many components of each path, and so many
// bytes of each component. What lies beyond is left out, and that is no error.
inline constexpr std::uint64_t PATH_MAX_COMPONENTS = 64;
inline constexpr std::uint64_t PATH_COMPONENT_MAX_LENGTH = 255;

// path less the first of the endings that it ends in, else path. Case counts.
std::string_view without_ending(std::string_view path,
                                std::initializer_list<std::string_view> endings);

// Writes the canonical absolute form of path (POSIX realpath: no symbolic link,
// "." or ".." left) and its NUL to output, which holds capacity bytes.
// False: the path does not exist, cannot be resolved, or its canonical form with
// its NUL takes more than PATH_BUFFER_SIZE or capacity bytes; output is
// unspecified.
[[nodiscard]] bool resolve_path(const char* path, char* output, std::uint64_t capacity);

// Writes the relative link that leads from the absolute folder `from` to the
// absolute path `to`, and its NUL, to output, which holds capacity bytes: one
// "../" for each component of `from` that `to` does not share, then the rest of
// `to` joined by "/". "/" and "\" both separate components, in runs of any
// length; "." and ".." are ordinary components. The text is purely computed: no
// path needs to exist. It ends in "/" when `to` lies above `from`, and is empty
// when both have the same components.
// False: the link does not fit; output holds an unspecified part of it.
[[nodiscard]] bool make_relative_path(std::string_view from, std::string_view to, char* output,
                                      std::uint64_t capacity);
