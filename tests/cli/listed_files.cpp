#include "cli/listed_files.h"

#include <algorithm>
#include <ostream>

#include <nlohmann/json.hpp>

#include "support/read_back.h"

std::vector<ListedFile> files_in(const std::string& json)
{
    std::vector<ListedFile> files;
    const nlohmann::ordered_json summary = read_json(json);
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

std::vector<std::string> links_in(const std::string& page)
{
    const std::string start = "<a href=\"";
    std::vector<std::string> links;
    for (std::size_t at = page.find(start); at != page.npos; at = page.find(start, at)) {
        at += start.size();
        links.push_back(page.substr(at, page.find('"', at) - at));
    }
    return links;
}

void PrintTo(const ListedFile& file, std::ostream* output)
{
    *output << file.path << ": " << file.outcome << " " << file.error;
}
