// Relative links and JSON paths worked out a second time, step by step as they are
// defined, with nothing of the code under test.

#pragma once

#include <cstddef>
#include <span>
#include <string_view>

// No link is longer: 64 steps up and 64 components of 255 bytes with their separators.
inline constexpr std::size_t NAIVE_LINK_SIZE = 64 * 3 + 64 * 256;

// Writes the link from the folder `from` to `to`, without a NUL; its length is returned.
std::size_t naive_relative_link(std::string_view from, std::string_view to,
                                std::span<char, NAIVE_LINK_SIZE> link);

// Writes the JSON path that belongs to page_path, without a NUL, to json_path, which has
// room for five bytes more than page_path; its length is returned.
std::size_t naive_json_path(std::string_view page_path, std::span<char> json_path);
