// Which failure comes to what, by what the run is about.

#include <algorithm>
#include <iterator>

#include "faults/forecast.h"

namespace {

struct Rule
{
    Call call;
    Answer answer;
    Phase phase;
    Effect effect;
};

constexpr Rule RULES[] = {
    // Memory.
    {Call::Realloc, Answer::Refuse, Phase::Walk, Effect::NoInput},
    {Call::Malloc, Answer::Refuse, Phase::Walk, Effect::NoInput},
    {Call::Malloc, Answer::Refuse, Phase::Entries, Effect::NoMemory},
    {Call::Malloc, Answer::Refuse, Phase::Reading, Effect::Unreadable},
    {Call::Malloc, Answer::Refuse, Phase::Page, Effect::NoPage},
    {Call::Realloc, Answer::Refuse, Phase::Page, Effect::NoPage},
    {Call::Realloc, Answer::Refuse, Phase::Json, Effect::NoJson},
    {Call::Madvise, Answer::Refuse, Phase::Reading, Effect::Nothing},
    {Call::Mallopt, Answer::Refuse, Phase::Start, Effect::Nothing},

    // Listing.
    {Call::Opendir, Answer::Refuse, Phase::Start, Effect::NoInput},
    {Call::Opendir, Answer::Refuse, Phase::Walk, Effect::HidesFolder},
    {Call::Readdir, Answer::Refuse, Phase::Walk, Effect::EndsFolder},
    {Call::Closedir, Answer::Refuse, Phase::Start, Effect::Nothing},
    {Call::Closedir, Answer::Refuse, Phase::Walk, Effect::Nothing},
    {Call::Fstatfs, Answer::Refuse, Phase::Walk, Effect::Nothing},
    {Call::Lstat, Answer::Refuse, Phase::Walk, Effect::Nothing},
    {Call::Stat, Answer::Refuse, Phase::Walk, Effect::HidesEntry},
    {Call::Realpath, Answer::Refuse, Phase::Start, Effect::ForgetsPage},
    {Call::Realpath, Answer::Refuse, Phase::Walk, Effect::MistakesEntry},

    // Reading.
    {Call::Open, Answer::Refuse, Phase::Reading, Effect::Unreadable},
    {Call::Open, Answer::WouldBlock, Phase::Reading, Effect::AsksAgain},
    {Call::Lseek, Answer::Refuse, Phase::Reading, Effect::Unreadable},
    {Call::Pread, Answer::Refuse, Phase::Reading, Effect::Unreadable},
    {Call::Pread, Answer::Short, Phase::Reading, Effect::Nothing},
    {Call::Pread, Answer::Nothing, Phase::Reading, Effect::Unreadable},
    {Call::Close, Answer::Refuse, Phase::Reading, Effect::Nothing},

    // Reading ahead.
    {Call::Statfs, Answer::Refuse, Phase::Reading, Effect::Nothing},
    {Call::Usage, Answer::Refuse, Phase::Reading, Effect::Nothing},
    {Call::Stat, Answer::Refuse, Phase::Ahead, Effect::Nothing},
    {Call::Open, Answer::Refuse, Phase::Ahead, Effect::Nothing},
    {Call::Open, Answer::WouldBlock, Phase::Ahead, Effect::Nothing},
    {Call::Fstat, Answer::Refuse, Phase::Ahead, Effect::Nothing},
    {Call::Fadvise, Answer::Refuse, Phase::Ahead, Effect::Nothing},
    {Call::Close, Answer::Refuse, Phase::Ahead, Effect::Nothing},
    {Call::Stat, Answer::Refuse, Phase::Reading, Effect::Nothing},

    // Folders. One that cannot be examined is made, and one that is there counts as made.
    {Call::Stat, Answer::Refuse, Phase::Folders, Effect::Nothing},
    {Call::Mkdir, Answer::Refuse, Phase::Folders, Effect::NoFolder},
    {Call::Mkdir, Answer::Exists, Phase::Folders, Effect::ClaimsFolder},

    // The page and the JSON.
    {Call::Format, Answer::Refuse, Phase::Page, Effect::NoPage},
    {Call::Format, Answer::Refuse, Phase::Json, Effect::NoJson},
    {Call::Realpath, Answer::Refuse, Phase::Page, Effect::BareLinks},
    {Call::Time, Answer::Refuse, Phase::Page, Effect::OldestTime},
    {Call::Gmtime, Answer::Refuse, Phase::Page, Effect::NoTime},
    {Call::Strftime, Answer::Refuse, Phase::Page, Effect::NoTime},
    {Call::Open, Answer::Refuse, Phase::PageFile, Effect::NoPage},
    {Call::Open, Answer::WouldBlock, Phase::PageFile, Effect::NoPage},
    {Call::Write, Answer::Refuse, Phase::PageFile, Effect::EmptyPage},
    {Call::Write, Answer::Nothing, Phase::PageFile, Effect::EmptyPage},
    {Call::Write, Answer::Short, Phase::PageFile, Effect::Nothing},
    {Call::Close, Answer::Refuse, Phase::PageFile, Effect::Nothing},
    {Call::Open, Answer::Refuse, Phase::JsonFile, Effect::NoJson},
    {Call::Open, Answer::WouldBlock, Phase::JsonFile, Effect::NoJson},
    {Call::Write, Answer::Refuse, Phase::JsonFile, Effect::EmptyJson},
    {Call::Write, Answer::Nothing, Phase::JsonFile, Effect::EmptyJson},
    {Call::Write, Answer::Short, Phase::JsonFile, Effect::Nothing},
    {Call::Close, Answer::Refuse, Phase::JsonFile, Effect::Nothing},
};

// Whatever is printed or drawn, and at any time: what cannot be shown is lost, and that is
// all.
constexpr FaultKind SHOWING[] = {{Call::Print, Answer::Refuse},     {Call::Isatty, Answer::Refuse},
                                 {Call::Tcgetpgrp, Answer::Refuse}, {Call::Poll, Answer::Refuse},
                                 {Call::Ioctl, Answer::Refuse},     {Call::Clock, Answer::Refuse},
                                 {Call::Draw, Answer::Refuse},      {Call::Draw, Answer::Short},
                                 {Call::Draw, Answer::Nothing}};

} // namespace

const std::vector<FaultKind>& fault_kinds()
{
    static const std::vector<FaultKind> KINDS = [] {
        std::set<FaultKind> kinds(std::begin(SHOWING), std::end(SHOWING));
        for (const Rule& rule : RULES) {
            kinds.emplace(rule.call, rule.answer);
        }
        return std::vector<FaultKind>(kinds.begin(), kinds.end());
    }();
    return KINDS;
}

std::optional<Effect> effect_of(const CallRecord& failed)
{
    if (std::ranges::count(SHOWING, FaultKind(failed.call, failed.answer)) > 0) {
        return Effect::Nothing;
    }
    for (const Rule& rule : RULES) {
        if (rule.call == failed.call && rule.answer == failed.answer &&
            rule.phase == failed.phase) {
            return rule.effect;
        }
    }
    return std::nullopt;
}
