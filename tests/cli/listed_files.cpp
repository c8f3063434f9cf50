#include "cli/listed_files.h"

#include <algorithm>
#include <ostream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

std::vector<ListedFile> files_in(const std::string& json)
{
    std::vector<ListedFile> files;
    const nlohmann::json summary = nlohmann::json::parse(json, nullptr, false);
    EXPECT_FALSE(summary.is_discarded()) << json;
    if (summary.is_discarded()) {
        return files;
    }
    for (const auto& report : summary.at("reports")) {
        files.push_back({report.at("relative_path"), report.at("verdict"), report.at("error")});
    }
    for (const auto& other : summary.at("other_files")) {
        files.push_back({other.at("relative_path"), other.at("reason"), ""});
    }
    return files;
}

std::vector<std::string> paths_in(const std::string& json)
{
    std::vector<std::string> paths;
    for (const ListedFile& file : files_in(json)) {
        paths.push_back(file.path);
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

void PrintTo(const ListedFile& file, std::ostream* output)
{
    *output << file.path << ": " << file.outcome << " " << file.error;
}
