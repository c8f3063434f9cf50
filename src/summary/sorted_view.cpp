#include "summary/sorted_view.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "core/memory.h"

namespace {

// A report with the first bytes of its path that tell it from others, as a number
// of the same order. Comparing these keeps a sort of very many reports from reading
// paths all over the memory.
struct SortKey
{
    std::uint64_t bytes;
    const ReportEntry* entry;
};

std::size_t shared_length(const char* first, const char* second, std::size_t limit)
{
    std::size_t length = 0;
    while (length < limit && first[length] == second[length]) {
        ++length;
    }
    return length;
}

// Bytes behind the end of text count as zero, as the NUL that sorts it before longer
// ones.
std::uint64_t leading_bytes(const char* text)
{
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < sizeof bytes; ++i) {
        bytes = bytes << 8U | static_cast<unsigned char>(*text);
        text += *text != '\0' ? 1 : 0;
    }
    return bytes;
}

void sort_keys(SortKey* keys, std::uint64_t count)
{
    std::size_t shared = count > 0 ? std::strlen(keys[0].entry->relative_path) : 0;
    for (std::uint64_t i = 1; i < count; ++i) {
        shared = shared_length(keys[0].entry->relative_path, keys[i].entry->relative_path, shared);
    }
    for (std::uint64_t i = 0; i < count; ++i) {
        keys[i].bytes = leading_bytes(keys[i].entry->relative_path + shared);
    }
    std::sort(keys, keys + count, [](const SortKey& first, const SortKey& second) {
        return first.bytes != second.bytes
                   ? first.bytes < second.bytes
                   : compare_entries_by_path(*first.entry, *second.entry) < 0;
    });
}

// One element more than there are reports, so that the size is never zero.
// Null: out of memory.
template <typename Element>
Element* allocate_for(std::uint64_t reports)
{
    return static_cast<Element*>(std::malloc(block_size(reports + 1, sizeof(Element))));
}

// Sorts the model's reports in scratch, which has room for them, into the view.
void fill_sorted(SortedView& view, const SummaryModel& model, SortKey* scratch)
{
    std::uint64_t count = 0;
    for (std::uint64_t i = 0; i < model.count; ++i) {
        if (is_report(model.entries[i])) {
            scratch[count++] = {0, &model.entries[i]};
        }
    }
    sort_keys(scratch, count);
    for (std::uint64_t i = 0; i < count; ++i) {
        view.entries[i] = scratch[i].entry;
    }
    view.length = count;
}

} // namespace

void sorted_view_init(SortedView& view)
{
    view = {nullptr, 0};
}

bool sorted_view_fill(SortedView& view, const SummaryModel& model, std::uint64_t reports)
{
    SortKey* scratch = allocate_for<SortKey>(reports);
    view.entries = allocate_for<const ReportEntry*>(reports);
    const bool has_memory = scratch != nullptr && view.entries != nullptr;
    if (has_memory) {
        fill_sorted(view, model, scratch);
    } else {
        sorted_view_free(view);
    }
    std::free(scratch);
    return has_memory;
}

void sorted_view_free(SortedView& view)
{
    std::free(view.entries);
    sorted_view_init(view);
}

int compare_entries_by_path(const ReportEntry& first, const ReportEntry& second)
{
    return std::strcmp(first.relative_path, second.relative_path);
}
