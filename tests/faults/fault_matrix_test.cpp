// Every call that can fail, fails: each by itself, and each with all later ones of its
// kind. One test for each kind of failure, each of both lengths and each scene.

#include <algorithm>
#include <iostream>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "faults/checked_run.h"

namespace {

struct Case
{
    FaultKind kind;
    bool from_then_on;
    Scene scene;

    // 0: there is nothing to run.
    std::uint64_t runs() const
    {
        return kind.calls[static_cast<std::size_t>(scene)];
    }
};

std::string name_of_case(const Case& tested)
{
    return std::string(name_of(tested.kind.call)) + '_' + name_of(tested.kind.answer) + '_' +
           (tested.from_then_on ? "FromThenOn" : "Once") + '_' + name_of(tested.scene);
}

// How GoogleTest shows a case; else it prints the bytes.
void PrintTo(const Case& tested, std::ostream* output)
{
    *output << name_of_case(tested);
}

constexpr Scene SCENES[] = {Scene::NoOlderPage, Scene::OlderPage, Scene::MissingFolders,
                            Scene::AllPassed,   Scene::NoJson,    Scene::ManyReports};

std::vector<Case> all_cases()
{
    std::vector<Case> cases;
    for (const FaultKind& kind : fault_kinds()) {
        for (const bool from_then_on : {false, true}) {
            for (const Scene scene : SCENES) {
                const Case tested = {kind, from_then_on, scene};
                if (tested.runs() > 0) {
                    cases.push_back(tested);
                }
            }
        }
    }
    return cases;
}

class EveryFault : public testing::TestWithParam<Case>
{
};

} // namespace

TEST_P(EveryFault, EndsAsTheFailedCallHasIt)
{
    const Case& tested = GetParam();
    const World world(tested.scene);
    const Reference reference(world);
    const std::vector<std::string> names = world.names();
    const std::uint64_t calls = reference.count(tested.kind.call);

    std::uint64_t runs = 0;
    while (runs < calls && !HasFailure()) {
        ++runs;
        check_run(world, reference,
                  {{tested.kind.call, tested.kind.answer, runs, tested.from_then_on}});
    }
    std::cout << name_of_case(tested) << ": " << runs << " runs\n";
    EXPECT_GE(runs, tested.runs());
    EXPECT_TRUE(runs == tested.runs() || tested.kind.may_be_more()) << runs;
    world.reset();
    std::vector<std::string> left = world.names();
    EXPECT_TRUE(std::includes(names.begin(), names.end(), left.begin(), left.end()));
}

// Each test above makes at least as many runs as are counted here, or fails.
TEST(Matrix, HasAtLeastAsManyRunsAsRecorded)
{
    const std::vector<Case> cases = all_cases();
    std::uint64_t runs = 0;
    for (const Case& tested : cases) {
        runs += tested.runs();
    }
    std::cout << cases.size() << " cases, " << runs << " runs\n";
    EXPECT_GE(cases.size(), 246U);
    EXPECT_GE(runs, 11044U);
}

INSTANTIATE_TEST_SUITE_P(Matrix, EveryFault, testing::ValuesIn(all_cases()),
                         [](const testing::TestParamInfo<Case>& named) {
                             return name_of_case(named.param);
                         });
