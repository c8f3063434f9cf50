#include "faults/forecast.h"

#include <map>
#include <utility>

#include <gtest/gtest.h>

#include "cli/expected_texts.h"

namespace {

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

std::vector<ListedFile> files_of(const World& world, const Listings& listings,
                                 const Consequences& faults)
{
    std::vector<ListedFile> files;
    for (const std::string& path : List(world, listings, faults).paths()) {
        const bool unread = faults.has(Effect::Unreadable, full_path(path)) ||
                            faults.has_number(Effect::FormsNoPath, files.size());
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

std::string page_time(const Consequences& faults)
{
    if (faults.has(Effect::NoTime)) {
        return "";
    }
    return faults.has(Effect::OldestTime) ? "1969-12-31 23:59:59 UTC"
                                          : std::string(WATCHED_TIME_TEXT);
}

std::string printed_closing(const World& world, const std::vector<ListedFile>& files,
                            const Consequences& faults)
{
    const std::vector<std::string> pieces =
        closing_pieces(world.page, world.wants_json ? world.json : "", files);
    std::string printed;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        printed += faults.has_number(Effect::LosesPrint, i) ? "" : pieces[i];
    }
    return printed;
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

Outcome forecast(const World& world, const Listings& listings,
                 const std::vector<CallRecord>& failed)
{
    const Consequences faults(world, failed);
    Outcome outcome = {1, "", "", world.older_page, world.older_json, {}};
    std::optional<Effect> end = faults.end;
    if (end != Effect::NoInput && end != Effect::NoMemory) {
        outcome.folders = make_folders(world, faults, end);
    }
    if (end && !faults.has(Effect::LosesPrint)) {
        outcome.errors = message_for(world, *end);
    }
    if (end && *end != Effect::CutPage && *end != Effect::NoJson && *end != Effect::CutJson) {
        return outcome;
    }
    const std::vector<ListedFile> files = files_of(world, listings, faults);
    outcome.page = page_of(INPUT, files, faults.has(Effect::BareLinks) ? "" : world.link_prefix,
                           page_time(faults));
    if (end == Effect::CutPage) {
        outcome.page->resize(faults.end_number);
    }
    if (end == Effect::CutPage || end == Effect::NoJson) {
        return outcome;
    }
    if (world.wants_json) {
        outcome.json = json_of(INPUT, files);
    }
    if (end == Effect::CutJson) {
        outcome.json->resize(faults.end_number);
        return outcome;
    }
    outcome.output = printed_closing(world, files, faults);
    outcome.status = status_of(files);
    return outcome;
}
