// What a run says of the files that it found, read from its JSON.

#pragma once

#include <string>
#include <vector>

struct ListedFile
{
    std::string path;
    std::string outcome; // the verdict of a report, the reason of any other file
    std::string error;   // empty for a file that is no report

    bool operator==(const ListedFile&) const = default;
};

// The reports, then the other files, each in the order of the JSON. The test fails if it
// cannot be read.
std::vector<ListedFile> files_in(const std::string& json);

// Their paths, sorted.
std::vector<std::string> paths_in(const std::string& json);

// How GoogleTest shows a file.
void PrintTo(const ListedFile& file, std::ostream* output);
