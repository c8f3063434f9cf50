// exhaust [LENGTH [PROCESSES]]
//
// Judges every sequence of up to LENGTH fragments (6; a scope may add to it) in every
// scope of every_sequence.h, divided among PROCESSES (as many as there are
// processors), and prints how many documents of which kind there were. Status 1: the
// two readings of one differ, or not all documents were judged.

#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <vector>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "report/every_sequence.h"

namespace {

constexpr int DEFAULT_LENGTH = 6;

std::span<SequenceTally> shared_tallies(unsigned count)
{
    void* memory = mmap(nullptr, count * sizeof(SequenceTally), PROT_READ | PROT_WRITE,
                        MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        std::abort();
    }
    return {static_cast<SequenceTally*>(memory), count};
}

// Every share in a process of its own. A process that dies leaves its share
// incomplete, which the number of documents tells.
SequenceTally judge_in_processes(const Scope& scope, int length, unsigned processes)
{
    const std::span<SequenceTally> tallies = shared_tallies(processes);
    for (unsigned index = 0; index < processes; ++index) {
        const pid_t child = fork();
        if (child == 0) {
            judge_sequences(scope, length, {index, processes}, tallies[index]);
            _exit(0);
        }
    }
    int status = 0;
    while (wait(&status) > 0) {
        if (status != 0) {
            std::fprintf(stderr, "a process ended with wait status %d\n", status);
        }
    }
    SequenceTally sum = {};
    for (const SequenceTally& tally : tallies) {
        add_tally(sum, tally);
    }
    munmap(tallies.data(), tallies.size_bytes());
    return sum;
}

void print(const Scope& scope, int length, const SequenceTally& tally)
{
    std::printf(
        "%.*s, up to %d of %zu: %" PRIu64 " documents: %" PRIu64 " passed, %" PRIu64
        " failed, %" PRIu64 " errored, %" PRIu64 " no reports; %" PRIu64 " with a mode, %" PRIu64
        " with a sub-mode, %" PRIu64 " with gating and %" PRIu64
        " with non-gating failures, %" PRIu64 " with an error text; %" PRIu64 " differences\n",
        static_cast<int>(scope.name.size()), scope.name.data(), length, scope.fragments.size(),
        tally.documents, tally.passed, tally.failed, tally.errored, tally.not_reports, tally.modes,
        tally.sub_modes, tally.gating, tally.non_gating, tally.error_texts, tally.differences);
    std::fputs(tally.first_difference, stdout);
    std::fflush(stdout);
}

bool is_complete(const Scope& scope, int length, const SequenceTally& tally)
{
    if (tally.documents != count_sequences(scope.fragments.size(), length)) {
        return false;
    }
    return &scope != &SCOPES[0] || (tally.not_reports == count_not_reports(length) &&
                                    tally.passed == count_with_verdict(length) &&
                                    tally.errored == count_with_verdict(length));
}

} // namespace

int main(int argc, char** argv)
{
    const int length = argc > 1 ? std::atoi(argv[1]) : DEFAULT_LENGTH;
    const long processes = argc > 2 ? std::atol(argv[2]) : sysconf(_SC_NPROCESSORS_ONLN);
    if (length < 1 || processes < 1) {
        std::fputs("usage: exhaust [LENGTH [PROCESSES]]\n", stderr);
        return 2;
    }
    bool is_sound = true;
    for (const Scope& scope : SCOPES) {
        const int longest = length + scope.extra_length;
        const SequenceTally tally =
            judge_in_processes(scope, longest, static_cast<unsigned>(processes));
        print(scope, longest, tally);
        is_sound = is_sound && tally.differences == 0 && is_complete(scope, longest, tally);
    }
    std::puts(is_sound ? "Both readings of all documents agree." : "FAILED");
    return is_sound ? 0 : 1;
}
