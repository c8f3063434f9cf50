// What the program prints, written out once more so that the tests do not take it from
// the code that prints it. Every test that expects a message takes it from here.

#pragma once

#include <string>
#include <string_view>

inline constexpr std::string_view USAGE =
    "fthsummary -- pass/fail summary of fathomix analyze reports\n"
    "\n"
    "usage:\n"
    "  fthsummary --input <directory> -o <summary.html> [--json]\n"
    "\n"
    "  --input DIR  directory of fathomix analyze HTML reports (scanned recursively)\n"
    "  -o FILE      summary HTML file to write (missing folders are created)\n"
    "  --json       also write the summary as JSON, next to the HTML file\n";

inline constexpr std::string_view VERSION_LINE = "fthsummary v0.7.1-beta\n";

inline std::string missing_options_message()
{
    return "error: fthsummary requires --input and -o\n\n" + std::string(USAGE);
}

inline std::string unrecognized_message(std::string_view argument)
{
    return "error: unrecognized argument '" + std::string(argument) + "'\n\n" + std::string(USAGE);
}

inline std::string input_message(std::string_view input)
{
    return "error: '--input' directory '" + std::string(input) +
           "' doesn't exist or isn't a directory (expected a directory of fathomix analyze HTML "
           "reports)\n";
}

inline std::string folder_message(std::string_view page)
{
    return "error: could not create the folder for '" + std::string(page) + "'\n";
}

inline std::string write_message(std::string_view path)
{
    return "error: failed to write '" + std::string(path) + "'\n";
}

// What a run counted, and the lines that it ends with.
struct Counts
{
    unsigned passed = 0;
    unsigned failed = 0;
    unsigned errored = 0;
};

inline std::string counts_text(const Counts& counts)
{
    const unsigned total = counts.passed + counts.failed + counts.errored;
    return std::to_string(total) + " fathomix reports: " + std::to_string(counts.passed) +
           " passed, " + std::to_string(counts.failed) + " failed" +
           (counts.errored == 0 ? "" : ", " + std::to_string(counts.errored) + " errored");
}

inline std::string wrote(std::string_view page, const Counts& counts)
{
    return "wrote " + std::string(page) + " (" + counts_text(counts) + ")\n";
}

inline std::string wrote_with_json(std::string_view page, std::string_view json,
                                   const Counts& counts)
{
    return "wrote " + std::string(page) + " (" + counts_text(counts) + ") + json\nwrote " +
           std::string(json) + "\n";
}
