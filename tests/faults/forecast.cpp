#include "faults/forecast.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "cli/expected_texts.h"

namespace {

// The failed calls, sorted by what they come to.
struct Consequences
{
    std::optional<Effect> end; // the one that ends the run
    std::uint64_t written = 0; // bytes of the file that was being written then
    std::set<std::string> hidden_folders;
    std::map<std::string, std::uint64_t> listed_of; // entries of folders that end early
    std::set<std::string> hidden_entries;
    bool forgets_page = false;
    std::set<std::string> mistaken_entries;
    std::set<std::string> unreadable;
    std::set<std::uint64_t> unformed;
    std::set<std::string> refused_folders;
    std::set<std::string> claimed_folders;
    bool bare_links = false;
    std::string time = std::string(WATCHED_TIME_TEXT);
    bool with_errored = true;
    std::set<std::uint64_t> lost_lines;
};

std::string full_path(const std::string& path)
{
    return std::string(INPUT) + "/" + path;
}

// The end of a file that is empty comes as no surprise.
bool is_end_of_empty_file(const World& world, const CallRecord& record)
{
    const std::string path = record.subject.substr(full_path("").size());
    return record.answer == Answer::Nothing && world.page_names.count(path) == 0 &&
           document_of(world.files.at(path)).empty();
}

void add_end(Consequences& all, Effect effect, const CallRecord& record)
{
    if (!all.end) {
        all.end = effect;
        all.written = record.number;
    }
}

void add_consequence(Consequences& all, const World& world, const CallRecord& record,
                     std::set<std::string>& asked_again)
{
    const std::optional<Effect> effect = effect_of(record);
    if (!effect) {
        ADD_FAILURE() << "no rule for " << name_of(record.call) << ' ' << name_of(record.answer)
                      << " in " << name_of(record.phase);
        return;
    }
    switch (*effect) {
    case Effect::Nothing:
        break;
    case Effect::NoFolder:
        all.refused_folders.insert(record.subject);
        add_end(all, *effect, record);
        break;
    case Effect::NoInput:
    case Effect::NoMemory:
    case Effect::NoPage:
    case Effect::CutPage:
    case Effect::NoJson:
    case Effect::CutJson:
        add_end(all, *effect, record);
        break;
    case Effect::ClaimsFolder:
        all.claimed_folders.insert(record.subject);
        break;
    case Effect::HidesFolder:
        all.hidden_folders.insert(record.subject);
        break;
    case Effect::EndsFolder:
        all.listed_of[record.subject] = record.number;
        break;
    case Effect::HidesEntry:
        all.hidden_entries.insert(record.subject);
        break;
    case Effect::ForgetsPage:
        all.forgets_page = true;
        break;
    case Effect::MistakesEntry:
        all.mistaken_entries.insert(record.subject);
        break;
    case Effect::Unreadable:
        if (!is_end_of_empty_file(world, record)) {
            all.unreadable.insert(record.subject);
        }
        break;
    case Effect::AsksAgain:
        if (!asked_again.insert(record.subject).second) {
            all.unreadable.insert(record.subject);
        }
        break;
    case Effect::FormsNoPath:
        all.unformed.insert(record.number);
        break;
    case Effect::BareLinks:
        all.bare_links = true;
        break;
    case Effect::NoTime:
        all.time = "";
        break;
    case Effect::OldestTime:
        all.time = "1969-12-31 23:59:59 UTC";
        break;
    case Effect::NoErrored:
        all.with_errored = false;
        break;
    case Effect::LosesLine:
        all.lost_lines.insert(record.number);
        break;
    }
}

Consequences consequences_of(const World& world, const std::vector<CallRecord>& failed)
{
    Consequences all;
    std::set<std::string> asked_again;
    for (const CallRecord& record : failed) {
        add_consequence(all, world, record, asked_again);
    }
    return all;
}

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
        if (faults_.hidden_folders.count(folder) > 0) {
            return;
        }
        const std::vector<std::string>& names = listings_.at(folder);
        const auto cut = faults_.listed_of.find(folder);
        const std::size_t count = cut != faults_.listed_of.end() ? cut->second : names.size();
        for (std::size_t i = 0; i < count; ++i) {
            if (names[i] != "." && names[i] != "..") {
                add_entry(folder + "/" + names[i]);
            }
        }
    }

    void add_entry(const std::string& full)
    {
        const std::string path = full.substr(full_path("").size());
        if (faults_.hidden_entries.count(full) > 0) {
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
        return world_.page_names.count(path) > 0 && !faults_.forgets_page &&
               faults_.mistaken_entries.count(full_path(path)) == 0;
    }

    const World& world_;
    const Listings& listings_;
    const Consequences& faults_;
    std::vector<std::string> paths_;
};

std::vector<ListedFile> files_of(const World& world, const Listings& listings,
                                 const Consequences& faults)
{
    std::vector<ListedFile> files;
    for (const std::string& path : List(world, listings, faults).paths()) {
        const bool unread =
            faults.unreadable.count(full_path(path)) > 0 || faults.unformed.count(files.size()) > 0;
        files.push_back({path, unread ? unreadable() : world.files.at(path)});
    }
    return files;
}

// The folders down to the first that was not made. What was only claimed ends the run at
// the next folder or, when there is none, at the page.
std::vector<std::string> make_folders(const World& world, const Consequences& faults,
                                      std::optional<Effect>& end)
{
    std::vector<std::string> made;
    for (const std::string& folder : world.missing_folders) {
        if (faults.refused_folders.count(folder) > 0 || faults.claimed_folders.count(folder) > 0) {
            break;
        }
        made.push_back(folder);
    }
    if (!faults.claimed_folders.empty()) {
        end = faults.claimed_folders.count(world.missing_folders.back()) > 0 ? Effect::NoPage
                                                                             : Effect::NoFolder;
    }
    return made;
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
    return List(world, listings, consequences_of(world, failed)).paths();
}

Outcome forecast(const World& world, const Listings& listings,
                 const std::vector<CallRecord>& failed)
{
    const Consequences faults = consequences_of(world, failed);
    Outcome outcome = {1, "", "", world.older_page, world.older_json, {}};
    std::optional<Effect> end = faults.end;
    if (end != Effect::NoInput && end != Effect::NoMemory) {
        outcome.folders = make_folders(world, faults, end);
    }
    if (end && faults.lost_lines.empty()) {
        outcome.errors = message_for(world, *end);
    }
    if (end && *end != Effect::CutPage && *end != Effect::NoJson && *end != Effect::CutJson) {
        return outcome;
    }
    const std::vector<ListedFile> files = files_of(world, listings, faults);
    outcome.page = page_of(INPUT, files, faults.bare_links ? "" : world.link_prefix, faults.time);
    if (end == Effect::CutPage) {
        outcome.page->resize(faults.written);
    }
    if (end == Effect::CutPage || end == Effect::NoJson) {
        return outcome;
    }
    outcome.json = json_of(INPUT, files);
    if (end == Effect::CutJson) {
        outcome.json->resize(faults.written);
        return outcome;
    }
    const std::vector<std::string> lines =
        closing_lines(world.page, world.json, files, faults.with_errored);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        outcome.output += faults.lost_lines.count(i) > 0 ? "" : lines[i];
    }
    outcome.status = status_of(files);
    return outcome;
}
