// What a run says of the files that it found, read from its JSON and its page.

#pragma once

#include <iosfwd>
#include <string>
#include <vector>

struct ListedFile
{
    std::string path;
    std::string outcome; // the verdict of a report, the reason of any other file
    std::string error;   // empty for a file that is no report

    bool operator==(const ListedFile&) const = default;
};

// The reports, then the other files, each in the order of the JSON. Throws when it is no
// JSON or says nothing of them.
std::vector<ListedFile> files_in(const std::string& json);

// Their paths, sorted.
std::vector<std::string> paths_in(const std::string& json);

// Where the page's links lead, in their order.
std::vector<std::string> links_in(const std::string& page);

// How GoogleTest shows a file.
void PrintTo(const ListedFile& file, std::ostream* output);
