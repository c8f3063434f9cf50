// Running code in another process: the built program as a user runs it, and a
// piece of a test without root's rights.

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

struct ProcessResult
{
    int status = -1;    // exit status; 128 plus the signal's number if one ended it
    std::string output; // everything that went to standard output
    std::string errors; // everything that went to standard error
};

struct ProcessOptions
{
    std::string folder;                        // current directory; empty: the test's own
    bool unprivileged = false;                 // as an ordinary user, also when root runs the test
    std::vector<std::string> environment = {}; // "NAME=value", added to the test's own
    std::function<void()> before_exec =
        nullptr; // last thing in the child, for limits and closed streams
};

// Runs program (an absolute path) with the arguments, standard input empty, and
// waits for it. A program that runs for more than two minutes is killed and
// reported as status 128 + SIGALRM.
ProcessResult run_process(const std::string& program, const std::vector<std::string>& arguments,
                          const ProcessOptions& options = {});

// The path of fthsummary, the one that was built with these tests. Where the ordinary
// user cannot reach that one, it is a copy in a temporary folder.
const std::string& fthsummary_program();

// Runs it.
ProcessResult run_fthsummary(const std::vector<std::string>& arguments,
                             const ProcessOptions& options = {});

// How many descriptors below limit are in use. Others may have been inherited.
std::size_t open_descriptors(std::size_t limit = 1024);

// What the two below return instead of body's result: body threw something (which is
// told on standard error), or the child could not be set up for it.
inline constexpr int BODY_THREW = 126;
inline constexpr int CHILD_SETUP_FAILED = 127;

// Runs body in a child process as an ordinary user (user and group 65534 when the
// test runs as root, else as is) and returns what it returns, 0 to 125; 128 plus
// the signal's number if a signal ended it. GoogleTest assertions in body do not
// count: it says what it saw through its result.
int run_unprivileged(const std::function<int()>& body);

// The same as the test's own user, with folder as the root folder "/" and as the
// current one. Not every machine lets a user other than root do so.
int run_with_root(const std::string& folder, const std::function<int()>& body);
