// Two faults in one run, drawn at random with fixed seeds, and the pairs that make sense
// on purpose.

#include <array>
#include <iostream>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "faults/checked_run.h"
#include "faults/forecast.h"

namespace {

constexpr int PAIRS_PER_SEED = 200;

// Draws of one seed; the same on every machine, as std::uniform_int_distribution is not.
class Draws
{
public:
    explicit Draws(unsigned seed) : engine_(seed) {}

    std::uint64_t below(std::uint64_t limit)
    {
        return engine_() % limit;
    }

private:
    std::mt19937 engine_;
};

Fault draw_fault(Draws& draws, const Reference& reference)
{
    for (;;) {
        const auto& [call, answer] = fault_kinds()[draws.below(fault_kinds().size())];
        const std::uint64_t calls = reference.count(call);
        if (calls > 0) {
            return {call, answer, 1 + draws.below(calls), draws.below(4) == 0};
        }
    }
}

class RandomPairs : public testing::TestWithParam<std::tuple<Scene, unsigned>>
{
};

class OnPurpose : public testing::TestWithParam<Scene>
{
protected:
    OnPurpose() : world(GetParam()), reference(world) {}

    std::size_t check(const std::vector<Fault>& faults) const
    {
        return check_run(world, reference, faults).size();
    }

    const World world;
    const Reference reference;
};

class OnPurposeWithJson : public OnPurpose
{
};

std::string name_of_scene(const testing::TestParamInfo<Scene>& named)
{
    return name_of(named.param);
}

constexpr Scene SCENES_WITH_JSON[] = {Scene::NoOlderPage, Scene::OlderPage, Scene::MissingFolders,
                                      Scene::AllPassed};

} // namespace

TEST_P(RandomPairs, EndAsTheFailedCallsHaveIt)
{
    const World world(std::get<0>(GetParam()));
    const Reference reference(world);
    Draws draws(std::get<1>(GetParam()));
    int runs = 0;
    int struck_twice = 0;
    while (runs < PAIRS_PER_SEED && !HasFailure()) {
        ++runs;
        const Fault first = draw_fault(draws, reference);
        const Fault second = draw_fault(draws, reference);
        struck_twice += check_run(world, reference, {first, second}).size() > 1 ? 1 : 0;
    }
    std::cout << runs << " pairs, more than one call failed in " << struck_twice << " runs\n";
    EXPECT_EQ(runs, PAIRS_PER_SEED);
    EXPECT_GE(struck_twice, 120);
}

INSTANTIATE_TEST_SUITE_P(Pairs, RandomPairs,
                         testing::Combine(testing::ValuesIn(SMALL_SCENES),
                                          testing::Values(1U, 2U, 3U, 4U)),
                         [](const testing::TestParamInfo<std::tuple<Scene, unsigned>>& named) {
                             return std::string(name_of(std::get<0>(named.param))) + "_Seed" +
                                    std::to_string(std::get<1>(named.param));
                         });

TEST_P(OnPurpose, AFullDiskCutsThePage)
{
    EXPECT_EQ(
        check({{Call::Write, Answer::Short, 1, false}, {Call::Write, Answer::Refuse, 2, true}}),
        2U);
}

TEST_P(OnPurposeWithJson, AFullDiskCutsTheJson)
{
    EXPECT_EQ(
        check({{Call::Write, Answer::Short, 2, false}, {Call::Write, Answer::Refuse, 3, true}}),
        2U);
}

TEST_P(OnPurpose, AFileThatShrinksWhileItIsReadIsUnreadable)
{
    EXPECT_EQ(
        check({{Call::Pread, Answer::Short, 9, false}, {Call::Pread, Answer::Nothing, 10, false}}),
        2U);
}

// Whatever else fails, a message that cannot be printed changes neither files nor status.
TEST_P(OnPurpose, AMessageThatCannotBePrintedIsAllThatIsLost)
{
    const Fault unprintable = {Call::Print, Answer::Refuse, 1, true};
    std::array<std::uint64_t, CALL_COUNT> counts = {};
    std::set<std::pair<Call, Phase>> done;
    for (const CallRecord& record : reference.trace) {
        const std::uint64_t number = ++counts[static_cast<std::size_t>(record.call)];
        if (record.call != Call::Print && done.emplace(record.call, record.phase).second) {
            EXPECT_GE(check({{record.call, Answer::Refuse, number, false}, unprintable}), 2U);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Pairs, OnPurpose, testing::ValuesIn(SMALL_SCENES), name_of_scene);
INSTANTIATE_TEST_SUITE_P(Pairs, OnPurposeWithJson, testing::ValuesIn(SCENES_WITH_JSON),
                         name_of_scene);
