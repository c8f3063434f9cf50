// Relative links and JSON paths, made another way than the code under test makes them.

#pragma once

#include <string>
#include <string_view>

// What make_relative_path of core/paths.h ought to write where it has room.
std::string naive_relative_link(std::string_view from, std::string_view to);

// What make_json_path of cli/output_paths.h ought to write.
std::string naive_json_path(std::string_view page_path);
