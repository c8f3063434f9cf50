// The command line: what the user asked for, or the answer that ends the program.

#pragma once

// The options of one run, pointing at the arguments themselves, exactly as typed.
struct CommandLine
{
    const char* input_dir; // value of --input
    const char* page_path; // value of -o
    bool wants_json;       // --json was given
};

enum class CommandLineOutcome
{
    Run,      // every option is there: go on with the run
    Answered, // the version or the usage went to standard output: end with status 0
    Rejected, // a message and the usage went to standard error: end with status 1
};

// Reads the arguments from left to right (argv[0] is the program's name) and
// prints the answer or the message, if there is one. options is complete only
// when the outcome is Run.
[[nodiscard]] CommandLineOutcome parse_command_line(int argc, const char* const* argv,
                                                    CommandLine& options);
