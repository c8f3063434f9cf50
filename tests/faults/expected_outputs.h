// What a run is to write, made a second time from what is known of the reports, without
// any of the program's code.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

enum class Verdict
{
    Pass,
    Fail,
    Error,
    Other,      // no report
    Unreadable, // not read
};

// What the reader finds in one file, entities decoded.
struct KnownFile
{
    Verdict verdict;
    std::string mode;
    std::string sub_mode;
    std::vector<std::string> failed_checks;
    std::vector<std::string> non_gating_checks;
    std::string error;
};

struct ListedFile
{
    std::string path;
    KnownFile file;
};

// text with & < > " ' as references, and with behind_slash after each "/".
std::string html_text(const std::string& text, const std::string& behind_slash = "");

// The file's bytes; empty for other files.
std::string document_of(const KnownFile& file);

// What is left of a file that could not be read.
KnownFile unreadable();

struct Counts
{
    std::uint64_t passed = 0;
    std::uint64_t failed = 0;
    std::uint64_t errored = 0;
    std::uint64_t other = 0;
};
Counts counts_of(const std::vector<ListedFile>& files);

// 1 when a report failed or errored or a file is unreadable, else 0.
int status_of(const std::vector<ListedFile>& files);

std::string json_of(const std::string& input, const std::vector<ListedFile>& files);

// Each link is link_prefix and the file's path; time stands where the footer says when
// the page was generated.
std::string page_of(const std::string& input, const std::vector<ListedFile>& files,
                    const std::string& link_prefix, const std::string& time);

// The pieces in which the lines are printed that say what was written. json is empty when
// there is none.
std::vector<std::string> closing_pieces(const std::string& page, const std::string& json,
                                        const std::vector<ListedFile>& files);
