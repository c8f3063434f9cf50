// fthsummary: pass/fail summary of a directory of HTML test reports.

#include <csignal>

#include "cli/command_line.h"
#include "cli/run.h"
#include "core/memory.h"

// NOLINTNEXTLINE(misc-use-internal-linkage): the tests call it by another name
int main(int argc, char** argv)
{
    // A closed pipe and a file size limit are failed writes like any other, not
    // reasons to die without a message and an exit status.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    keep_released_memory();

    CommandLine options;
    switch (parse_command_line(argc, argv, options)) {
    case CommandLineOutcome::Answered:
        return 0;
    case CommandLineOutcome::Rejected:
        return 1;
    case CommandLineOutcome::Run:
        break;
    }
    return run_summary(options);
}
