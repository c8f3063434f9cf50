#include "cli/command_line.h"

#include <cstdio>
#include <string_view>

#include "cli/version.h"

namespace {

// Tells how to start a run, so --version, --help and -h are not listed.
constexpr char USAGE[] =
    "fthsummary -- pass/fail summary of fathomix analyze reports\n"
    "\n"
    "usage:\n"
    "  fthsummary --input <directory> -o <summary.html> [--json]\n"
    "\n"
    "  --input DIR  directory of fathomix analyze HTML reports (scanned recursively)\n"
    "  -o FILE      summary HTML file to write (missing folders are created)\n"
    "  --json       also write the summary as JSON, next to the HTML file\n";

CommandLineOutcome reject_incomplete()
{
    std::fputs("error: fthsummary requires --input and -o\n\n", stderr);
    std::fputs(USAGE, stderr);
    return CommandLineOutcome::Rejected;
}

CommandLineOutcome reject_argument(const char* argument)
{
    std::fprintf(stderr, "error: unrecognized argument '%s'\n\n", argument);
    std::fputs(USAGE, stderr);
    return CommandLineOutcome::Rejected;
}

CommandLineOutcome answer_version()
{
    std::printf("fthsummary v%s\n", VERSION_TEXT);
    return CommandLineOutcome::Answered;
}

CommandLineOutcome answer_usage()
{
    std::fputs(USAGE, stdout);
    return CommandLineOutcome::Answered;
}

} // namespace

CommandLineOutcome parse_command_line(int argc, const char* const* argv, CommandLine& options)
{
    options = {nullptr, nullptr, false};
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const bool has_next = i + 1 < argc;
        if (argument == "--input" && has_next) {
            options.input_dir = argv[++i];
        } else if (argument == "-o" && has_next) {
            options.page_path = argv[++i];
        } else if (argument == "--json") {
            options.wants_json = true;
        } else if (argument == "--version") {
            return answer_version();
        } else if (argument == "--help" || argument == "-h") {
            return answer_usage();
        } else {
            return reject_argument(argv[i]);
        }
    }
    const bool is_complete = options.input_dir != nullptr && options.page_path != nullptr;
    return is_complete ? CommandLineOutcome::Run : reject_incomplete();
}
