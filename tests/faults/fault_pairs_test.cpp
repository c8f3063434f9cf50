// Two faults in one run, in the pairs that make sense.

#include <array>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "faults/checked_run.h"

namespace {

class FaultPairs : public testing::TestWithParam<Scene>
{
protected:
    FaultPairs() : world(GetParam()), reference(world) {}

    std::size_t check(const std::vector<Fault>& faults) const
    {
        return check_run(world, reference, faults).size();
    }

    const World world;
    const Reference reference;
};

class FaultPairsWithJson : public FaultPairs
{
};

std::string name_of_scene(const testing::TestParamInfo<Scene>& named)
{
    return name_of(named.param);
}

constexpr Scene SCENES_WITH_JSON[] = {Scene::NoOlderPage, Scene::OlderPage, Scene::MissingFolders,
                                      Scene::AllPassed};

} // namespace

TEST_P(FaultPairs, AFullDiskCutsThePage)
{
    EXPECT_EQ(
        check({{Call::Write, Answer::Short, 1, false}, {Call::Write, Answer::Refuse, 2, true}}),
        2U);
}

TEST_P(FaultPairsWithJson, AFullDiskCutsTheJson)
{
    EXPECT_EQ(
        check({{Call::Write, Answer::Short, 2, false}, {Call::Write, Answer::Refuse, 3, true}}),
        2U);
}

TEST_P(FaultPairs, AFileThatShrinksWhileItIsReadIsUnreadable)
{
    EXPECT_EQ(
        check({{Call::Pread, Answer::Short, 9, false}, {Call::Pread, Answer::Nothing, 10, false}}),
        2U);
}

// Whatever else fails, a message that cannot be printed changes neither files nor status.
TEST_P(FaultPairs, AMessageThatCannotBePrintedIsAllThatIsLost)
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

INSTANTIATE_TEST_SUITE_P(Scenes, FaultPairs, testing::ValuesIn(SMALL_SCENES), name_of_scene);
INSTANTIATE_TEST_SUITE_P(Scenes, FaultPairsWithJson, testing::ValuesIn(SCENES_WITH_JSON),
                         name_of_scene);
