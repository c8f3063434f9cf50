#include "faults/watched_run.h"

#include <cstdlib>
#include <utility>

namespace {

WatchedRun* current = nullptr;

std::size_t index_of(Call call)
{
    return static_cast<std::size_t>(call);
}

bool strikes(const Fault& fault, Call call, std::uint64_t number)
{
    return fault.call == call &&
           (number == fault.number || (fault.from_then_on && number > fault.number));
}

} // namespace

WatchedRun::WatchedRun(std::string page, bool with_json, std::vector<Fault> faults, bool records)
    : page_(std::move(page)), with_json_(with_json), faults_(std::move(faults)), records_(records)
{
}

WatchedRun::~WatchedRun()
{
    stop();
}

void WatchedRun::start()
{
    if (current != nullptr) {
        std::abort();
    }
    current = this;
}

void WatchedRun::stop()
{
    current = nullptr;
}

std::uint64_t WatchedRun::count(Call call) const
{
    return counts_[index_of(call)];
}

const std::vector<CallRecord>& WatchedRun::failed() const
{
    return failed_;
}

const std::vector<CallRecord>& WatchedRun::trace() const
{
    return trace_;
}

const Listings& WatchedRun::listings() const
{
    return listings_;
}

std::string WatchedRun::slips() const
{
    std::string text = slips_;
    const auto add = [&](std::size_t count, const char* what) {
        if (count > 0) {
            text += std::to_string(count) + ' ' + what + " not given back\n";
        }
    };
    add(blocks_.size(), "blocks");
    add(files_.size(), "files");
    add(folders_.size(), "folders");
    return text;
}

std::optional<Answer> WatchedRun::ask(Call call, std::string_view subject, std::uint64_t number)
{
    const std::uint64_t nth = ++counts_[index_of(call)];
    if (records_) {
        trace_.push_back({call, phase_, Answer::Refuse, std::string(subject), number});
    }
    for (const Fault& fault : faults_) {
        if (strikes(fault, call, nth)) {
            failed_.push_back({call, phase_, fault.answer, std::string(subject), number});
            return fault.answer;
        }
    }
    return std::nullopt;
}

Phase WatchedRun::phase() const
{
    return phase_;
}

void WatchedRun::enter(Phase phase)
{
    phase_ = phase;
    counts_before_phase_ = counts_;
}

const std::string& WatchedRun::file() const
{
    return file_;
}

// The first opening only tries whether there is such a directory.
void WatchedRun::before_opening_folder()
{
    if (phase_ == Phase::Start && count(Call::Opendir) > 0) {
        enter(Phase::Walk);
    }
}

void WatchedRun::opened_folder(DIR* listing, const char* path)
{
    if (listing != nullptr) {
        folders_[listing] = {path, 0};
        listings_[path];
    } else if (phase_ == Phase::Walk && folders_.empty()) {
        enter(Phase::Entries);
    }
}

void WatchedRun::closed_folder(DIR* listing)
{
    if (folders_.erase(listing) == 0) {
        slips_ += "closed a folder that was not open\n";
    }
    if (phase_ == Phase::Walk && folders_.empty()) {
        enter(Phase::Entries);
    }
}

std::string WatchedRun::folder(DIR* listing) const
{
    return folders_.at(listing).path;
}

std::uint64_t WatchedRun::listed(DIR* listing) const
{
    return folders_.at(listing).listed;
}

void WatchedRun::listed_entry(DIR* listing, const char* name)
{
    Listing& folder = folders_.at(listing);
    ++folder.listed;
    if (records_) {
        listings_[folder.path].emplace_back(name);
    }
}

void WatchedRun::before_opening(const char* path, bool for_writing)
{
    file_ = path;
    accepted_ = 0;
    if (for_writing) {
        enter(file_ == page_ ? Phase::PageFile : Phase::JsonFile);
    }
}

void WatchedRun::opened(int file)
{
    if (file >= 0) {
        files_.insert(file);
    }
}

void WatchedRun::closed(int file)
{
    if (files_.erase(file) == 0) {
        slips_ += "closed a file that was not open\n";
    }
    file_.clear();
    if (phase_ == Phase::PageFile) {
        enter(with_json_ ? Phase::Json : Phase::Closing);
    } else if (phase_ == Phase::JsonFile) {
        enter(Phase::Closing);
    }
}

void WatchedRun::accepted(std::uint64_t bytes)
{
    accepted_ += bytes;
}

std::uint64_t WatchedRun::accepted_bytes() const
{
    return accepted_;
}

void WatchedRun::allocated(void* block)
{
    if (block != nullptr) {
        blocks_.insert(block);
    }
    if (phase_ == Phase::Entries && block != nullptr) {
        enter(Phase::Reading);
    }
}

void WatchedRun::released(void* block)
{
    if (block != nullptr && blocks_.erase(block) == 0) {
        slips_ += "released a block that was not held\n";
    }
}

void WatchedRun::before_folder_question()
{
    if (phase_ == Phase::Entries || phase_ == Phase::Reading) {
        enter(Phase::Folders);
    }
}

void WatchedRun::before_assembling()
{
    if (phase_ == Phase::Entries || phase_ == Phase::Reading || phase_ == Phase::Folders) {
        enter(Phase::Page);
    }
}

std::uint64_t WatchedRun::count_before(Call call) const
{
    return counts_[index_of(call)] - counts_before_phase_[index_of(call)];
}

WatchedRun* watched_run()
{
    return current;
}

std::map<std::string_view, std::uint64_t>& name_hits()
{
    // Never destroyed: what runs at exit, such as the counting of coverage, comes by, too.
    static auto* hits = new std::map<std::string_view, std::uint64_t>;
    return *hits;
}

const char* name_of(Call call)
{
    static constexpr std::array<const char*, CALL_COUNT> NAMES = {
        "malloc",   "realloc", "open",     "lseek",    "pread",    "write",    "close",
        "opendir",  "readdir", "closedir", "stat",     "mkdir",    "realpath", "vsnprintf",
        "snprintf", "print",   "time",     "gmtime_r", "strftime", "madvise",  "mallopt"};
    return NAMES[index_of(call)];
}

const char* name_of(Answer answer)
{
    static constexpr std::array<const char*, 5> NAMES = {"Refuse", "Short", "Nothing", "WouldBlock",
                                                         "Exists"};
    return NAMES[static_cast<std::size_t>(answer)];
}

const char* name_of(Phase phase)
{
    static constexpr std::array<const char*, 10> NAMES = {
        "Start", "Walk",     "Entries", "Reading",  "Folders",
        "Page",  "PageFile", "Json",    "JsonFile", "Closing"};
    return NAMES[static_cast<std::size_t>(phase)];
}
