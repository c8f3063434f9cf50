// Two faults in one run, in the pairs that make sense.

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "faults/checked_run.h"

namespace {

using Faults = std::vector<Fault>;

// A disk that is full after a part of the page, or of the JSON, which is written next.
const Faults CUT_PAGE = {{Call::Write, Answer::Short, 1, false},
                         {Call::Write, Answer::Refuse, 2, true}};
const Faults CUT_JSON = {{Call::Write, Answer::Short, 2, false},
                         {Call::Write, Answer::Refuse, 3, true}};

// A file that shrinks while it is read.
const Faults SHRINKING_FILE = {{Call::Pread, Answer::Short, 9, false},
                               {Call::Pread, Answer::Nothing, 10, false}};

class FaultPairs : public testing::TestWithParam<Scene>
{
};

} // namespace

TEST_P(FaultPairs, EndAsTheFailedCallsHaveIt)
{
    const World world(GetParam());
    const Reference reference(world);
    EXPECT_EQ(check_run(world, reference, CUT_PAGE).size(), 2U);
    EXPECT_EQ(check_run(world, reference, SHRINKING_FILE).size(), 2U);
    if (world.wants_json) {
        EXPECT_EQ(check_run(world, reference, CUT_JSON).size(), 2U);
    }
}

INSTANTIATE_TEST_SUITE_P(Scenes, FaultPairs, testing::ValuesIn(SMALL_SCENES),
                         [](const testing::TestParamInfo<Scene>& named) {
                             return std::string(name_of(named.param));
                         });
