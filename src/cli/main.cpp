// fthsummary: pass/fail summary of a directory of HTML test reports.

#include <climits>
#include <csignal>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "cli/command_line.h"
#include "cli/run.h"

namespace {

// Every report is read into a block of its own. The allocator would hand large ones
// back to the kernel each time, and the kernel would clear each page of the next one
// anew, which costs more than reading it.
void keep_released_memory()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, INT_MAX);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
#endif
}

} // namespace

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
