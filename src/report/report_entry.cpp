#include "report/report_entry.h"

Outcome outcome_of(const ReportEntry& entry)
{
    switch (entry.kind) {
    case ReportKind::Analyzed:
        return entry.passed != 0 ? Outcome::Passed : Outcome::Failed;
    case ReportKind::RunError:
        return Outcome::Errored;
    case ReportKind::Unreadable:
        return Outcome::Unreadable;
    case ReportKind::NotAnalyzeReport:
        break;
    }
    return Outcome::NoReport;
}
