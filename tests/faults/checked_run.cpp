#include "faults/checked_run.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "faults/forecast.h"
#include "faults/program_run.h"

namespace {

std::string described(const Fault& fault)
{
    return std::string(name_of(fault.call)) + ' ' + name_of(fault.answer) + " at " +
           std::to_string(fault.number) + (fault.from_then_on ? " and on; " : "; ");
}

std::string described(const std::vector<Fault>& faults)
{
    std::string text;
    for (const Fault& fault : faults) {
        text += described(fault);
    }
    return text;
}

// Two documents, or the part from a little before where they begin to differ.
void expect_same_file(const std::optional<std::string>& found,
                      const std::optional<std::string>& expected, const char* what)
{
    if (found == expected) {
        return;
    }
    if (!found || !expected) {
        ADD_FAILURE() << what << (found ? " is there" : " is missing");
        return;
    }
    const auto [at, ignored] =
        std::mismatch(found->begin(), found->end(), expected->begin(), expected->end());
    const std::size_t offset = static_cast<std::size_t>(at - found->begin());
    const std::size_t start = offset < 60 ? 0 : offset - 60;
    ADD_FAILURE() << what << " differs at byte " << offset << "; found " << found->size()
                  << " bytes:\n"
                  << found->substr(start, 200) << "\nexpected " << expected->size() << " bytes:\n"
                  << expected->substr(start, 200);
}

// Whatever the forecast says.
void expect_one_answer(const Outcome& outcome, bool may_lose_prints)
{
    EXPECT_TRUE(outcome.status == 0 || outcome.status == 1) << outcome.status;
    EXPECT_TRUE(outcome.output.empty() || outcome.errors.empty());
    EXPECT_LE(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1);
    if (!may_lose_prints) {
        EXPECT_NE(outcome.output.starts_with("wrote "), outcome.errors.starts_with("error: "));
    }
}

void expect_outcome(const Outcome& found, const Outcome& expected)
{
    EXPECT_EQ(found.status, expected.status);
    EXPECT_EQ(found.output, expected.output);
    EXPECT_EQ(found.errors, expected.errors);
    EXPECT_EQ(found.folders, expected.folders);
    expect_same_file(found.page, expected.page, "the page");
    expect_same_file(found.json, expected.json, "the JSON");
}

// The first of the reference's calls that one of the faults strikes.
std::optional<CallRecord> first_struck(const Reference& reference, const std::vector<Fault>& faults)
{
    std::array<std::uint64_t, CALL_COUNT> counts = {};
    for (const CallRecord& record : reference.trace) {
        const std::uint64_t number = ++counts[static_cast<std::size_t>(record.call)];
        for (const Fault& fault : faults) {
            if (fault.call == record.call && fault.number == number) {
                CallRecord struck = record;
                struck.answer = fault.answer;
                return struck;
            }
        }
    }
    return std::nullopt;
}

} // namespace

Reference::Reference(const World& world)
{
    world.reset();
    WatchedRun watched(world.page, world.wants_json, {}, true);
    const Outcome outcome = run_program(world, watched);
    trace = watched.trace();
    listings = watched.listings();
    expect_outcome(outcome, forecast(world, listings, {}));
    EXPECT_EQ(watched.slips(), "");

    std::set<std::string> listed;
    for (const std::string& path : forecast_list(world, listings, {})) {
        EXPECT_TRUE(listed.insert(path).second) << path << " is listed twice";
    }
    for (const auto& [path, ignored] : world.files) {
        EXPECT_EQ(listed.count(path), world.page_names.count(path) > 0 ? 0U : 1U) << path;
    }
}

std::uint64_t Reference::count(Call call) const
{
    return static_cast<std::uint64_t>(std::count_if(
        trace.begin(), trace.end(), [&](const CallRecord& record) { return record.call == call; }));
}

std::size_t check_run(const World& world, const Reference& reference,
                      const std::vector<Fault>& faults)
{
    const testing::ScopedTrace trace(__FILE__, __LINE__, described(faults));
    world.reset();
    WatchedRun watched(world.page, world.wants_json, faults, false);
    const Outcome outcome = run_program(world, watched);
    const std::vector<CallRecord>& failed = watched.failed();
    if (failed.empty()) {
        ADD_FAILURE() << "no call failed";
        return 0;
    }
    EXPECT_EQ(failed.front(), first_struck(reference, faults));
    EXPECT_EQ(watched.slips(), "");
    expect_outcome(outcome, forecast(world, reference.listings, failed));
    expect_one_answer(outcome, failed.back().call == Call::Print);
    return failed.size();
}
