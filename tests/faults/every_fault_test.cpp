// Every call that can fail, fails: each by itself, and each with all later ones of its
// kind. The calls are those of a run without faults, which is counted first.

#include <algorithm>
#include <iostream>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "faults/checked_run.h"
#include "faults/forecast.h"

namespace {

using Case = std::tuple<Scene, bool>;

class EveryFault : public testing::TestWithParam<Case>
{
protected:
    EveryFault() : world(std::get<0>(GetParam())), reference(world) {}

    // Fails each of the calls of that kind, one a run. Returns the number of runs.
    std::uint64_t fail_each(const FaultKind& kind) const
    {
        const auto& [call, answer] = kind;
        const std::uint64_t calls = reference.count(call);
        std::uint64_t number = 0;
        while (number < calls && !HasFailure()) {
            ++number;
            check_run(world, reference, {{call, answer, number, std::get<1>(GetParam())}});
        }
        return number;
    }

    const World world;
    const Reference reference;
};

std::set<std::string> calls_of(const Reference& reference)
{
    std::set<std::string> calls;
    for (const CallRecord& record : reference.trace) {
        calls.insert(name_of(record.call));
    }
    return calls;
}

std::string name_of_case(const testing::TestParamInfo<Case>& named)
{
    return std::string(name_of(std::get<0>(named.param))) +
           (std::get<1>(named.param) ? "_FromThenOn" : "_Once");
}

} // namespace

TEST_P(EveryFault, EndsAsTheFailedCallHasIt)
{
    const std::vector<std::string> names = world.names();
    std::set<std::string> struck;
    std::uint64_t runs = 0;
    for (const FaultKind& kind : fault_kinds()) {
        const std::uint64_t runs_of_kind = fail_each(kind);
        if (runs_of_kind > 0) {
            struck.insert(name_of(kind.first));
        }
        runs += runs_of_kind;
    }
    std::cout << runs << " runs, " << struck.size() << " kinds of calls\n";
    EXPECT_EQ(struck, calls_of(reference));
    world.reset();
    const std::vector<std::string> left = world.names();
    EXPECT_TRUE(std::includes(names.begin(), names.end(), left.begin(), left.end()));
}

INSTANTIATE_TEST_SUITE_P(Scenes, EveryFault,
                         testing::Combine(testing::ValuesIn(SMALL_SCENES), testing::Bool()),
                         name_of_case);

// Of a large block only: its calls are too many for each to fail in turn.
TEST(ManyReports, EndAsTheyDoWhenLargePagesAreRefused)
{
    const World world(Scene::ManyReports);
    const Reference reference(world);
    EXPECT_GE(reference.count(Call::Madvise), 1U);
    check_run(world, reference, {{Call::Madvise, Answer::Refuse, 1, true}});
}
