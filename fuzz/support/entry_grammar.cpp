#include "support/entry_grammar.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace {

constexpr std::uint8_t KIND_BITS = 3;
constexpr std::uint8_t PASSED = 4;
constexpr std::uint8_t MANY = 8; // a count follows: so many entries like this one

constexpr unsigned char UNREADABLE_BYTE = 0xaa;
constexpr std::size_t TEXT_SIZE = 5000;
constexpr std::size_t PATHS_SIZE = std::size_t{64} * 1024;

constexpr std::array<std::string_view, 12> WORDS = {"a/",    "b/",       ".html",      ".htm",
                                                    ".HTML", "&amp;",    "<b>x",       "\"'&",
                                                    "\\",    "\xc3\xa9", "Check name", "</td>"};

struct Store
{
    std::array<ReportEntry, MOST_ENTRIES> entries;
    std::size_t count;
    std::array<char, PATHS_SIZE> paths;
    std::size_t paths_length;
};

Store store;

void take_names(Input& input, char (&slots)[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE],
                std::uint64_t& count)
{
    count = input.byte() % (REPORT_MAX_CHECKS + 1);
    for (std::uint64_t slot = 0; slot < count; ++slot) {
        take_text(input, slots[slot], REPORT_TEXT_SIZE - 1);
    }
}

// Everything but the path.
void take_entry(Input& input, std::uint8_t form, ReportEntry& entry)
{
    std::memset(&entry, UNREADABLE_BYTE, sizeof entry);
    entry.kind = static_cast<ReportKind>(form & KIND_BITS);
    entry.passed = 0;
    entry.analysis_mode[0] = '\0';
    entry.analysis_mode_sub[0] = '\0';
    entry.failed_check_count = 0;
    entry.non_gating_check_count = 0;
    entry.error[0] = '\0';
    if (entry.kind == ReportKind::RunError) {
        take_text(input, entry.error, REPORT_ERROR_SIZE - 1);
    } else if (entry.kind == ReportKind::Analyzed) {
        entry.passed = (form & PASSED) != 0 ? 1 : 0;
        take_text(input, entry.analysis_mode, REPORT_TEXT_SIZE - 1);
        take_text(input, entry.analysis_mode_sub, REPORT_TEXT_SIZE - 1);
        take_names(input, entry.non_gating_checks, entry.non_gating_check_count);
        if (entry.passed == 0) {
            take_names(input, entry.failed_checks, entry.failed_check_count);
        }
    }
}

bool is_taken(std::string_view path)
{
    return std::any_of(store.entries.begin(), store.entries.begin() + store.count,
                       [&](const ReportEntry& entry) { return path == entry.relative_path; });
}

// Adds the entry under that path, if there is room and no other has it.
void add(ReportEntry& entry, std::string_view path)
{
    if (store.count == store.entries.size() || is_taken(path) ||
        path.size() >= store.paths.size() - store.paths_length) {
        return;
    }
    char* owned = store.paths.data() + store.paths_length;
    path.copy(owned, path.size());
    owned[path.size()] = '\0';
    store.paths_length += path.size() + 1;
    entry.relative_path = owned;
    std::memcpy(&store.entries[store.count++], &entry, sizeof entry);
}

// Under paths that count up in no order that sorting leaves alone.
void add_many(ReportEntry& entry, std::string_view path, std::size_t count)
{
    std::array<char, 128> numbered;
    path = path.substr(0, 100);
    path.copy(numbered.data(), path.size());
    for (std::size_t i = 0; i < count; ++i) {
        char* digits = numbered.data() + path.size();
        const char* end = std::to_chars(digits, digits + 20, i * 37 % 251).ptr;
        add(entry, {numbered.data(), end});
    }
}

} // namespace

std::size_t take_text(Input& input, char* text, std::size_t most)
{
    std::size_t length = expand(input.take_up_to(input.byte()), WORDS, {text, most});
    text[length] = '\0';
    length = std::strlen(text);
    std::memset(text + length + 1, UNREADABLE_BYTE, most - length);
    return length;
}

std::span<const ReportEntry> take_entries(Input& input)
{
    static ReportEntry entry;
    static std::array<char, TEXT_SIZE> path;
    store.count = 0;
    store.paths_length = 0;
    while (!input.is_empty() && store.count < store.entries.size()) {
        const std::uint8_t form = input.byte();
        const std::size_t count = (form & MANY) != 0 ? input.byte() % (MOST_ENTRIES + 1) : 0;
        const std::size_t length = take_text(input, path.data(), path.size() - 1);
        take_entry(input, form, entry);
        add(entry, {path.data(), length});
        add_many(entry, {path.data(), length}, count);
    }
    return {store.entries.data(), store.count};
}
