#include "summary/summary_model.h"

SummaryTally tally_entries(const ReportEntry* entries, std::uint64_t count)
{
    SummaryTally tally = {};
    for (std::uint64_t i = 0; i < count; ++i) {
        switch (outcome_of(entries[i])) {
        case Outcome::Passed:
            ++tally.passed;
            break;
        case Outcome::Failed:
            ++tally.failed;
            break;
        case Outcome::Errored:
            ++tally.errored;
            break;
        case Outcome::NoReport:
        case Outcome::Unreadable:
            ++tally.other;
            break;
        }
    }
    return tally;
}

std::uint64_t total_reports(const SummaryTally& tally)
{
    return tally.passed + tally.failed + tally.errored;
}

// By the tally itself, so that what is listed is what was counted.
bool is_report(const ReportEntry& entry)
{
    return tally_entries(&entry, 1).other == 0;
}
