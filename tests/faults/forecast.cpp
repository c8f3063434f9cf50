#include "faults/forecast.h"

#include <algorithm>
#include <cstring>
#include <map>

#include <gtest/gtest.h>

#include "cli/expected_texts.h"
#include "cli/version.h"
#include "summary/json_summary.h"
#include "summary/summary_model.h"
#include "summary/summary_page.h"
#include "support/call_faults.h"

namespace {

std::string full_path(const std::string& path)
{
    return std::string(INPUT) + "/" + path;
}

// The end of a file that is empty comes as no surprise.
bool is_end_of_empty_file(const World& world, const CallRecord& record)
{
    const std::string path = record.subject.substr(full_path("").size());
    return record.answer == Answer::Nothing && world.empty_files.count(path) > 0;
}

// The failed calls, each with what it comes to.
class Consequences
{
public:
    Consequences(const World& world, const std::vector<CallRecord>& failed)
    {
        for (const CallRecord& record : failed) {
            const std::optional<Effect> effect = effect_of(record);
            if (!effect) {
                ADD_FAILURE() << "no rule for " << name_of(record.call) << ' '
                              << name_of(record.answer) << " in " << name_of(record.phase);
            } else if (effect != Effect::Unreadable || !is_end_of_empty_file(world, record)) {
                const bool again = effect == Effect::AsksAgain && find(*effect, record.subject);
                list_.emplace_back(again ? Effect::Unreadable : *effect, record);
            }
        }
    }

    // The first call that came to the effect, of those with this subject if one is given;
    // null when there is none.
    const CallRecord* find(Effect effect, std::optional<std::string_view> subject = {}) const
    {
        for (const auto& [found, record] : list_) {
            if (found == effect && (!subject || *subject == record.subject)) {
                return &record;
            }
        }
        return nullptr;
    }

    bool has(Effect effect) const
    {
        return find(effect) != nullptr;
    }

    bool has(Effect effect, std::string_view subject) const
    {
        return find(effect, subject) != nullptr;
    }

    const std::vector<std::pair<Effect, CallRecord>>& list() const
    {
        return list_;
    }

private:
    std::vector<std::pair<Effect, CallRecord>> list_;
};

// How the run ends. What only counted as a folder ends it at the next folder or, when
// there is none, at the page.
Effect end_of(const World& world, const Consequences& faults)
{
    if (faults.has(Effect::ClaimsFolder)) {
        const bool is_last = faults.has(Effect::ClaimsFolder, world.missing_folders.back());
        return is_last ? Effect::NoPage : Effect::NoFolder;
    }
    for (const auto& [effect, record] : faults.list()) {
        if (effect < Effect::Completes) {
            return effect;
        }
    }
    return Effect::Completes;
}

// Appends the files that are listed below a folder, in order.
void add_files(const World& world, const Listings& listings, const Consequences& faults,
               const std::string& folder, std::vector<std::string>& files)
{
    const auto listing = listings.find(folder);
    if (listing == listings.end() || faults.has(Effect::HidesFolder, folder)) {
        return;
    }
    const CallRecord* end = faults.find(Effect::EndsFolder, folder);
    std::vector<std::string> names = listing->second;
    names.resize(end != nullptr ? end->number : names.size());
    for (const std::string& name : names) {
        const std::string full = folder + "/" + name;
        if (name == "." || name == ".." || faults.has(Effect::HidesEntry, full)) {
            continue;
        }
        add_files(world, listings, faults, full, files);
        const std::string path = full.substr(full_path("").size());
        const bool is_recognised = world.page_names.count(path) > 0 &&
                                   !faults.has(Effect::ForgetsPage) &&
                                   !faults.has(Effect::MistakesEntry, full);
        if (world.files.count(path) > 0 && !is_recognised) {
            files.push_back(path);
        }
    }
}

std::vector<std::string> list_files(const World& world, const Listings& listings,
                                    const Consequences& faults)
{
    std::vector<std::string> files;
    add_files(world, listings, faults, INPUT, files);
    return files;
}

std::vector<ReportEntry> entries_of(const World& world, const Listings& listings,
                                    const Consequences& faults)
{
    std::vector<ReportEntry> entries;
    for (const std::string& path : list_files(world, listings, faults)) {
        const auto file = world.files.find(path);
        ReportEntry entry = file->second;
        if (faults.has(Effect::Unreadable, full_path(path))) {
            entry = {};
            entry.kind = ReportKind::Unreadable;
        }
        entry.relative_path = file->first.c_str();
        entries.push_back(entry);
    }
    return entries;
}

// The folders down to the first that was not made.
std::vector<std::string> made_folders(const World& world, const Consequences& faults)
{
    std::vector<std::string> made;
    for (const std::string& folder : world.missing_folders) {
        if (faults.has(Effect::NoFolder, folder) || faults.has(Effect::ClaimsFolder, folder)) {
            break;
        }
        made.push_back(folder);
    }
    return made;
}

// The page that is written at that time of the clock.
std::string page_at(std::time_t time, const char* path, const SummaryModel& model)
{
    const Interception clock(time_call, [time](const auto&, std::time_t*) { return time; });
    const MemoryFile file;
    EXPECT_TRUE(write_summary_page(path, model));
    return file.bytes();
}

// A page that tells no time says the less for it.
std::string without_time(std::string page)
{
    const Interception clock(time_call, [](const auto&, std::time_t*) { return WATCHED_TIME; });
    char text[GENERATED_TIME_SIZE];
    format_generated_time(text, sizeof text);
    return page.erase(page.rfind(text), std::strlen(text));
}

// In the input directory, links are the bare paths.
std::string page_of(const World& world, const SummaryModel& model, const Consequences& faults)
{
    const std::string path = faults.has(Effect::BareLinks) ? full_path("summary.html") : world.page;
    const std::time_t time = faults.has(Effect::OldestTime) ? -1 : WATCHED_TIME;
    const std::string page = page_at(time, path.c_str(), model);
    return faults.has(Effect::NoTime) ? without_time(page) : page;
}

std::string json_of(const SummaryModel& model)
{
    const MemoryFile file;
    EXPECT_TRUE(write_json_summary("", model));
    return file.bytes();
}

std::string closing_lines(const World& world, const SummaryModel& model)
{
    const SummaryTally tally = tally_entries(model.entries, model.count);
    const Counts counts = {static_cast<unsigned>(tally.passed), static_cast<unsigned>(tally.failed),
                           static_cast<unsigned>(tally.errored)};
    return world.wants_json ? wrote_with_json(world.page, world.json, counts)
                            : wrote(world.page, counts);
}

bool fails_run(const ReportEntry& entry)
{
    return (entry.kind == ReportKind::Analyzed && entry.passed == 0) ||
           entry.kind == ReportKind::RunError || entry.kind == ReportKind::Unreadable;
}

std::string message_for(const World& world, Effect end)
{
    switch (end) {
    case Effect::NoInput:
        return input_message(INPUT);
    case Effect::NoMemory:
        return "error: out of memory\n";
    case Effect::NoFolder:
        return folder_message(world.page);
    case Effect::NoPage:
    case Effect::EmptyPage:
        return write_message(world.page);
    case Effect::NoJson:
    case Effect::EmptyJson:
        return write_message(world.json);
    default:
        return "";
    }
}

} // namespace

Aftermath forecast(const World& world, const Listings& listings,
                   const std::vector<CallRecord>& failed)
{
    const Consequences faults(world, failed);
    const Effect end = end_of(world, faults);
    Aftermath after = {1, "", message_for(world, end), world.older_page, world.older_json, {}};
    if (end >= Effect::NoFolder) {
        after.folders = made_folders(world, faults);
    }
    if (end < Effect::EmptyPage) {
        return after;
    }
    const std::vector<ReportEntry> entries = entries_of(world, listings, faults);
    const SummaryModel model = {INPUT, entries.data(), entries.size(), VERSION_TEXT};
    after.page = end == Effect::EmptyPage ? "" : page_of(world, model, faults);
    if (world.wants_json && end >= Effect::EmptyJson) {
        after.json = end == Effect::EmptyJson ? "" : json_of(model);
    }
    if (end == Effect::Completes) {
        after.output = closing_lines(world, model);
        after.status = std::any_of(entries.begin(), entries.end(), fails_run) ? 1 : 0;
    }
    return after;
}
