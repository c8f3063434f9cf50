#include "summary/summary_model.h"

SummaryTally tally_entries(const ReportEntry* entries, std::uint64_t count)
{
    SummaryTally tally = {};
    for (std::uint64_t i = 0; i < count; ++i) {
        if (entries[i].kind == ReportKind::Analyzed) {
            ++(entries[i].passed != 0 ? tally.passed : tally.failed);
        } else if (entries[i].kind == ReportKind::RunError) {
            ++tally.errored;
        } else {
            ++tally.other;
        }
    }
    return tally;
}

std::uint64_t total_reports(const SummaryTally& tally)
{
    return tally.passed + tally.failed + tally.errored;
}

bool is_report(const ReportEntry& entry)
{
    return entry.kind == ReportKind::Analyzed || entry.kind == ReportKind::RunError;
}
