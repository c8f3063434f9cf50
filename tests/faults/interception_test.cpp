// Whether the tests of this folder see every call that they are meant to see.

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "faults/checked_run.h"
#include "support/process.h"

namespace {

using Names = std::set<std::string>;

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

// The symbols of the objects that are made of src/, main.cpp's among them.
struct Symbols
{
    Names defined;
    Names undefined;
};

Symbols program_symbols()
{
    std::vector<std::string> arguments = split(FTHSUMMARY_OBJECTS, ',');
    const ProcessResult listing = run_process(FTHSUMMARY_NM, arguments);
    EXPECT_EQ(listing.status, 0) << listing.errors;
    Symbols symbols;
    for (const std::string& line : split(listing.output, '\n')) {
        // "[address] type name"
        const std::size_t space = line.rfind(' ');
        if (space == std::string::npos || space == 0) {
            continue;
        }
        const bool undefined = line[space - 1] == 'U';
        (undefined ? symbols.undefined : symbols.defined).insert(line.substr(space + 1));
    }
    return symbols;
}

Names wrapped_names()
{
    const std::vector<std::string> names = split(FTHSUMMARY_WRAPPED_NAMES, ',');
    return {names.begin(), names.end()};
}

// What the program calls that cannot fail, or only for arguments that it never has.
bool cannot_fail(const std::string& name)
{
    static const Names NAMES = {"memcpy",
                                "memmove",
                                "memset",
                                "memcmp",
                                "bcmp",
                                "memchr",
                                "strlen",
                                "strcmp",
                                "strncmp",
                                "strchr",
                                "strstr",
                                "signal",
                                "stdout",
                                "stderr",
                                "__errno_location",
                                "__stack_chk_fail",
                                "_GLOBAL_OFFSET_TABLE_"};
    static const std::vector<std::string> COMPILER = {
        "__asan_", "__ubsan_", "__gcov_", "_ZSt24__throw_", "_ZSt20__throw_", "_ZTVN10__cxxabiv1"};
    return NAMES.count(name) > 0 ||
           std::any_of(COMPILER.begin(), COMPILER.end(),
                       [&](const std::string& prefix) { return name.starts_with(prefix); });
}

void run_with(const World& world, const Reference& reference, Call call, std::uint64_t number)
{
    check_run(world, reference, {{call, Answer::Refuse, number, false}});
}

// The number of the one allocation that is made between listing and reading.
std::uint64_t entries_allocation(const Reference& reference)
{
    std::uint64_t number = 0;
    for (const CallRecord& record : reference.trace) {
        number += record.call == Call::Malloc ? 1 : 0;
        if (record.call == Call::Malloc && record.phase == Phase::Entries) {
            return number;
        }
    }
    ADD_FAILURE() << "no such allocation";
    return 1;
}

std::uint64_t count_in(const Reference& reference, Call call, Phase phase)
{
    return static_cast<std::uint64_t>(std::count_if(
        reference.trace.begin(), reference.trace.end(),
        [&](const CallRecord& record) { return record.call == call && record.phase == phase; }));
}

} // namespace

TEST(Interception, EveryNameThatTheProgramCallsIsWrappedOrCannotFail)
{
    const Symbols symbols = program_symbols();
    const Names wrapped = wrapped_names();
    ASSERT_EQ(symbols.defined.count("main"), 1U);
    for (const std::string& name : symbols.undefined) {
        EXPECT_TRUE(wrapped.count(name) > 0 || symbols.defined.count(name) > 0 || cannot_fail(name))
            << name;
    }
}

TEST(Interception, EveryWrappedNameThatTheProgramCallsIsSeen)
{
    for (auto& [ignored, hits] : name_hits()) {
        hits = 0;
    }
    for (const Scene scene : {Scene::NoOlderPage, Scene::MissingFolders, Scene::ManyReports}) {
        const World world(scene);
        const Reference reference(world);
        run_with(world, reference, Call::Opendir, 1);
        run_with(world, reference, Call::Malloc, entries_allocation(reference));
    }
    const Names wrapped = wrapped_names();
    std::size_t seen = 0;
    for (const std::string& name : program_symbols().undefined) {
        if (wrapped.count(name) > 0) {
            ++seen;
            EXPECT_GE(name_hits()[name], 1U) << name;
        }
    }
    EXPECT_EQ(seen, 24U);
}

TEST(Interception, EveryKindOfCallHasItsPlaceInTheMatrix)
{
    for (const Scene scene : {Scene::NoOlderPage, Scene::OlderPage, Scene::MissingFolders,
                              Scene::AllPassed, Scene::NoJson}) {
        const World world(scene);
        const Reference reference(world);
        Names missing;
        for (const CallRecord& record : reference.trace) {
            missing.insert(name_of(record.call));
        }
        for (const FaultKind& kind : fault_kinds()) {
            if (kind.calls[static_cast<std::size_t>(scene)] > 0) {
                missing.erase(name_of(kind.call));
            }
        }
        EXPECT_EQ(missing, Names()) << name_of(scene);
    }
}

TEST(Interception, EveryBufferGrowsAtLeastTwice)
{
    const World world(Scene::NoOlderPage);
    const Reference reference(world);
    EXPECT_GE(count_in(reference, Call::Realloc, Phase::Walk), 3U);
    EXPECT_GE(count_in(reference, Call::Realloc, Phase::Page), 3U);
    EXPECT_GE(count_in(reference, Call::Realloc, Phase::Json), 3U);
    EXPECT_EQ(count_in(reference, Call::Malloc, Phase::Page), 2U);
    EXPECT_EQ(count_in(reference, Call::Malloc, Phase::Entries), 1U);
}
