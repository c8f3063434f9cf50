// Whether the tests of this folder see every call that they are meant to see.

#include <algorithm>
#include <array>
#include <set>
#include <sstream>
#include <string>
#include <utility>
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
    static const std::vector<std::string> NAMES =
        split("memcpy memmove memset memcmp bcmp memchr strlen strcmp strncmp strchr "
              "strstr dirfd signal getenv getpgrp stdout stderr __errno_location __stack_chk_fail "
              "_GLOBAL_OFFSET_TABLE_",
              ' ');
    static const std::vector<std::string> COMPILER = {
        "__asan_", "__ubsan_", "__gcov_", "_ZSt24__throw_", "_ZSt20__throw_", "_ZTVN10__cxxabiv1"};
    return std::find(NAMES.begin(), NAMES.end(), name) != NAMES.end() ||
           std::any_of(COMPILER.begin(), COMPILER.end(),
                       [&](const std::string& prefix) { return name.starts_with(prefix); });
}

// Fails, of each kind of call in each phase, the first, and all that is printed besides:
// a message that cannot be printed changes neither files nor status. Returns the names of
// the calls that failed.
Names strike_all(const World& world)
{
    const Reference reference(world);
    std::array<std::uint64_t, CALL_COUNT> counts = {};
    std::set<std::pair<Call, Phase>> done;
    Names names;
    for (const CallRecord& record : reference.trace) {
        const std::uint64_t number = ++counts[static_cast<std::size_t>(record.call)];
        if (done.emplace(record.call, record.phase).second) {
            for (const CallRecord& failed : check_run(world, reference,
                                                      {{record.call, Answer::Refuse, number, false},
                                                       {Call::Print, Answer::Refuse, 1, true}})) {
                names.emplace(failed.name);
            }
        }
    }
    return names;
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

// Large pages are asked for in a scene that is too large for all of this.
TEST(Interception, EveryWrappedNameThatTheProgramCallsIsStruck)
{
    Names struck = {"free", "madvise"};
    for (const Scene scene : SMALL_SCENES) {
        struck.merge(strike_all(World(scene)));
    }
    const Names wrapped = wrapped_names();
    for (const std::string& name : program_symbols().undefined) {
        EXPECT_TRUE(wrapped.count(name) == 0 || struck.count(name) > 0) << name;
    }
}
