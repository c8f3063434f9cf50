// The reports of one page in the order of its rows.
//
// A view owns its array and borrows the entries. Lifecycle: sorted_view_init,
// sorted_view_fill once, sorted_view_free.

#pragma once

#include <cstdint>

#include "summary/summary_model.h"

struct SortedView
{
    const ReportEntry** entries; // owned array of borrowed entries; null while empty
    std::uint64_t length;        // entries in it
};

// Makes the view empty; allocates nothing.
void sorted_view_init(SortedView& view);

// Fills an empty view with the model's reports (other files left out), ascending by
// compare_entries_by_path. reports is their number by the tally; there must not be
// more of them in the model. Entries of equal paths stand in any order.
// False: out of memory; the view is still empty.
[[nodiscard]] bool sorted_view_fill(SortedView& view, const SummaryModel& model,
                                    std::uint64_t reports);

// Releases the array and leaves the view empty.
void sorted_view_free(SortedView& view);

// Below, equal to or above zero as the first entry's relative_path sorts before,
// with or after the second's, compared as unsigned bytes (C standard, strcmp).
int compare_entries_by_path(const ReportEntry& first, const ReportEntry& second);
