// What has to come of a run of which certain calls failed.

#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "faults/watched_run.h"
#include "faults/world.h"

struct Aftermath
{
    int status = 0;
    std::string output; // as it was meant to be printed
    std::string errors;
    std::optional<std::string> page; // nothing: there is no such file
    std::optional<std::string> json;
    std::vector<std::string> folders; // those of World::missing_folders that there are
};

// What a failed call comes to. The first ones end the run, the sooner the earlier they stand.
enum class Effect
{
    NoInput,   // the input directory's message
    NoMemory,  // "out of memory"
    NoFolder,  // the folder's message
    NoPage,    // the page's message, an older page as it was
    EmptyPage, // the same, but nothing was written to the page
    NoJson,    // the JSON's message, older JSON as it was
    EmptyJson, // the same, but nothing was written to the JSON
    Completes,
    Nothing,
    ClaimsFolder,  // a missing folder counts as made
    HidesFolder,   // what is below it is not listed
    EndsFolder,    // what would have been listed after it is not
    HidesEntry,    // is not listed
    ForgetsPage,   // the older page is listed, under every name
    MistakesEntry, // the same under this name
    Unreadable,    // the file becomes an unreadable one
    AsksAgain,     // the same when it happens twice to one file
    BareLinks,     // the page's links are the bare paths
    NoTime,        // the page tells no time
    OldestTime,    // the page tells the second before 1970
};

// What can fail, and how.
using FaultKind = std::pair<Call, Answer>;
const std::vector<FaultKind>& fault_kinds();

// Nothing where no rule says what comes of the call.
std::optional<Effect> effect_of(const CallRecord& failed);

// listings are those of a run without faults. Page and JSON are what the program's own
// writers make of the files that are left, when nothing fails.
Aftermath forecast(const World& world, const Listings& listings,
                   const std::vector<CallRecord>& failed);
