// Running code in another process: the built program as a user runs it, and a
// piece of a test without root's rights.

#pragma once

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

// Runs fthsummary itself, the one that was built with these tests.
ProcessResult run_fthsummary(const std::vector<std::string>& arguments,
                             const ProcessOptions& options = {});

// Runs body in a child process as an ordinary user (user and group 65534 when the
// test runs as root, else as is) and returns what it returns, 0 to 127; 128 plus
// the signal's number if a signal ended it. GoogleTest assertions in body do not
// count: it says what it saw through its result.
int run_unprivileged(const std::function<int()>& body);
