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

bool ends_run(Effect effect)
{
    switch (effect) {
    case Effect::NoInput:
    case Effect::NoMemory:
    case Effect::NoFolder:
    case Effect::NoPage:
    case Effect::CutPage:
    case Effect::NoJson:
    case Effect::CutJson:
        return true;
    default:
        return false;
    }
}

// The failed calls, sorted by what they come to.
class Consequences
{
public:
    Consequences(const World& world, const std::vector<CallRecord>& failed) : world_(world)
    {
        for (const CallRecord& record : failed) {
            if (const std::optional<Effect> effect = effect_of(record)) {
                add(*effect, record);
            } else {
                ADD_FAILURE() << "no rule for " << name_of(record.call) << ' '
                              << name_of(record.answer) << " in " << name_of(record.phase);
            }
        }
    }

    std::optional<Effect> end;    // the one that ends the run
    std::uint64_t end_number = 0; // of the call that ends it; CutPage, CutJson: bytes written

    bool has(Effect effect) const
    {
        return numbers_.count(effect) > 0;
    }

    bool has(Effect effect, const std::string& subject) const
    {
        return number_of(effect, subject).has_value();
    }

    // Of the last call with this subject that came to the effect.
    std::optional<std::uint64_t> number_of(Effect effect, const std::string& subject) const
    {
        const auto found = subjects_.find({effect, subject});
        return found != subjects_.end() ? std::optional(found->second) : std::nullopt;
    }

    bool has_number(Effect effect, std::uint64_t number) const
    {
        const auto found = numbers_.find(effect);
        return found != numbers_.end() && found->second.count(number) > 0;
    }

private:
    void add(Effect effect, const CallRecord& record)
    {
        if (effect == Effect::Unreadable && is_end_of_empty_file(world_, record)) {
            return;
        }
        if (effect == Effect::AsksAgain && has(effect, record.subject)) {
            effect = Effect::Unreadable;
        }
        subjects_[{effect, record.subject}] = record.number;
        numbers_[effect].insert(record.number);
        if (ends_run(effect) && !end) {
            end = effect;
            end_number = record.number;
        }
    }

    const World& world_;
    std::map<std::pair<Effect, std::string>, std::uint64_t> subjects_;
    std::map<Effect, std::set<std::uint64_t>> numbers_;
};

class List
{
public:
    List(const World& world, const Listings& listings, const Consequences& faults)
        : world_(world), listings_(listings), faults_(faults)
    {
        add_folder(INPUT);
    }

    std::vector<std::string> paths() const
    {
        return paths_;
    }

private:
    void add_folder(const std::string& folder)
    {
        if (faults_.has(Effect::HidesFolder, folder)) {
            return;
        }
        const std::vector<std::string>& names = listings_.at(folder);
        const std::size_t count =
            faults_.number_of(Effect::EndsFolder, folder).value_or(names.size());
        for (std::size_t i = 0; i < count; ++i) {
            if (names[i] != "." && names[i] != "..") {
                add_entry(folder + "/" + names[i]);
            }
        }
    }

    void add_entry(const std::string& full)
    {
        const std::string path = full.substr(full_path("").size());
        if (faults_.has(Effect::HidesEntry, full)) {
            return;
        }
        if (listings_.count(full) > 0) {
            add_folder(full);
        } else if (world_.files.count(path) > 0 && !is_recognised_page(path)) {
            paths_.push_back(path);
        }
    }

    bool is_recognised_page(const std::string& path) const
    {
        return world_.page_names.count(path) > 0 && !faults_.has(Effect::ForgetsPage) &&
               !faults_.has(Effect::MistakesEntry, full_path(path));
    }

    const World& world_;
    const Listings& listings_;
    const Consequences& faults_;
    std::vector<std::string> paths_;
};

std::vector<ReportEntry> entries_of(const World& world, const Listings& listings,
                                    const Consequences& faults)
{
    std::vector<ReportEntry> entries;
    for (const std::string& path : List(world, listings, faults).paths()) {
        const auto file = world.files.find(path);
        ReportEntry entry = file->second;
        if (faults.has(Effect::Unreadable, full_path(path)) ||
            faults.has_number(Effect::FormsNoPath, entries.size())) {
            entry = {};
            entry.kind = ReportKind::Unreadable;
        }
        entry.relative_path = file->first.c_str();
        entries.push_back(entry);
    }
    return entries;
}

// The folders down to the first that was not made. What was only claimed ends the run at
// the next folder or, when there is none, at the page.
std::vector<std::string> make_folders(const World& world, const Consequences& faults,
                                      std::optional<Effect>& end)
{
    std::vector<std::string> made;
    for (const std::string& folder : world.missing_folders) {
        if (faults.has(Effect::NoFolder, folder) || faults.has(Effect::ClaimsFolder, folder)) {
            break;
        }
        made.push_back(folder);
    }
    if (faults.has(Effect::ClaimsFolder)) {
        end = faults.has(Effect::ClaimsFolder, world.missing_folders.back()) ? Effect::NoPage
                                                                             : Effect::NoFolder;
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
    const bool oldest = faults.has(Effect::OldestTime) && !faults.has(Effect::NoTime);
    const std::string page = page_at(oldest ? -1 : WATCHED_TIME, path.c_str(), model);
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
    case Effect::CutPage:
        return write_message(world.page);
    default:
        return write_message(world.json);
    }
}

} // namespace

std::vector<std::string> forecast_list(const World& world, const Listings& listings,
                                       const std::vector<CallRecord>& failed)
{
    return List(world, listings, Consequences(world, failed)).paths();
}

Aftermath forecast(const World& world, const Listings& listings,
                   const std::vector<CallRecord>& failed)
{
    const Consequences faults(world, failed);
    Aftermath after = {1, "", "", world.older_page, world.older_json, {}};
    std::optional<Effect> end = faults.end;
    if (end != Effect::NoInput && end != Effect::NoMemory) {
        after.folders = make_folders(world, faults, end);
    }
    if (end) {
        after.errors = message_for(world, *end);
    }
    if (end && *end != Effect::CutPage && *end != Effect::NoJson && *end != Effect::CutJson) {
        return after;
    }
    const std::vector<ReportEntry> entries = entries_of(world, listings, faults);
    const SummaryModel model = {INPUT, entries.data(), entries.size(), VERSION_TEXT};
    after.page = page_of(world, model, faults);
    if (end == Effect::CutPage) {
        after.page->resize(faults.end_number);
    }
    if (end == Effect::CutPage || end == Effect::NoJson) {
        return after;
    }
    if (world.wants_json) {
        after.json = json_of(model);
    }
    if (end == Effect::CutJson) {
        after.json->resize(faults.end_number);
        return after;
    }
    after.output = closing_lines(world, model);
    after.status = std::any_of(entries.begin(), entries.end(), fails_run) ? 1 : 0;
    return after;
}
