#include "faults/checked_run.h"

#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>
#include <unistd.h>

#include "faults/forecast.h"
#include "support/temp_folder.h"

// The program's main, which goes by this name here.
int program_main(int argc, char** argv);

namespace {

std::string described(const std::vector<Fault>& faults)
{
    std::string text;
    for (const Fault& fault : faults) {
        text += std::string(name_of(fault.call)) + ' ' + name_of(fault.answer) + " at " +
                std::to_string(fault.number) + (fault.from_then_on ? " and on; " : "; ");
    }
    return text;
}

std::optional<std::string> file_bytes(const std::string& path)
{
    return access(path.c_str(), F_OK) == 0 ? std::optional(read_file(path)) : std::nullopt;
}

// Runs main with the command line that the world stands for.
Aftermath run_program(const World& world, WatchedRun& watched)
{
    world.reset();
    setenv("TERM", "xterm", 1);
    std::vector<std::string> words = {"fthsummary", "--input", INPUT, "-o", world.page};
    if (world.wants_json) {
        words.emplace_back("--json");
    }
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    Aftermath after;
    after.status = watched.watch(
        [&] { return program_main(static_cast<int>(words.size()), arguments.data()); });
    after.output = watched.output();
    after.errors = watched.errors();
    after.page = file_bytes(world.page);
    after.json = file_bytes(world.json);
    for (const std::string& folder : world.missing_folders) {
        if (access(folder.c_str(), F_OK) == 0) {
            after.folders.push_back(folder);
        }
    }
    return after;
}

// Says where two documents begin to differ, and no more: they are long.
void expect_same_file(const std::optional<std::string>& found,
                      const std::optional<std::string>& expected, const char* what)
{
    const std::string& first = found ? *found : "(none)";
    const std::string& second = expected ? *expected : "(none)";
    const auto differing =
        std::mismatch(first.begin(), first.end(), second.begin(), second.end()).first;
    const std::size_t at = static_cast<std::size_t>(differing - first.begin());
    EXPECT_TRUE(found == expected) << what << " differs at byte " << at << "; found:\n"
                                   << first.substr(at, 200) << "\nexpected:\n"
                                   << second.substr(at, 200);
}

void expect_aftermath(const Aftermath& found, const Aftermath& expected)
{
    EXPECT_EQ(found.status, expected.status);
    EXPECT_EQ(found.output, expected.output);
    EXPECT_EQ(found.errors, expected.errors);
    EXPECT_EQ(found.folders, expected.folders);
    expect_same_file(found.page, expected.page, "the page");
    expect_same_file(found.json, expected.json, "the JSON");
}

// Whatever the forecast says.
void expect_one_answer(const Aftermath& after)
{
    EXPECT_TRUE(after.status == 0 || after.status == 1) << after.status;
    EXPECT_NE(after.output.starts_with("wrote "), after.errors.starts_with("error: "));
    EXPECT_TRUE(after.output.empty() || after.errors.empty());
    EXPECT_LE(std::count(after.errors.begin(), after.errors.end(), '\n'), 1);
}

} // namespace

Reference::Reference(const World& world)
{
    WatchedRun watched(world, {}, true);
    const Aftermath after = run_program(world, watched);
    trace = watched.trace();
    listings = watched.listings();
    expect_aftermath(after, forecast(world, listings, {}));
    EXPECT_EQ(watched.slips(), "");
}

std::uint64_t Reference::count(Call call) const
{
    return static_cast<std::uint64_t>(std::count_if(
        trace.begin(), trace.end(), [&](const CallRecord& record) { return record.call == call; }));
}

std::vector<CallRecord> check_run(const World& world, const Reference& reference,
                                  const std::vector<Fault>& faults)
{
    const testing::ScopedTrace trace(__FILE__, __LINE__, described(faults));
    WatchedRun watched(world, faults, false);
    const Aftermath after = run_program(world, watched);
    if (watched.failed().empty()) {
        ADD_FAILURE() << "no call failed";
        return {};
    }
    EXPECT_EQ(watched.slips(), "");
    expect_aftermath(after, forecast(world, reference.listings, watched.failed()));
    expect_one_answer(after);
    return watched.failed();
}
