// The built program with less and less memory: at each stage it ends with that
// stage's message and leaves what stood there before. Only without sanitizers, which
// reserve more addresses than such a limit allows.

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
#include "cli/listed_files.h"
#include "cli/process_limits.h"

namespace {

constexpr rlim_t STEP = rlim_t{128} * 1024; // bytes
constexpr rlim_t PLENTY = rlim_t{32} * 1024 * 1024;
constexpr int FILES = 1000;

// Beside "empty", "in" has so many files that each stage needs several steps more than
// the one before.
class MemoryStages : public testing::Test
{
protected:
    // A control character takes six bytes in the JSON and one in the page, so there is
    // memory with which only the JSON cannot be made.
    void SetUp() override
    {
        temp.make_folder("empty");
        for (int i = 0; i < FILES; ++i) {
            temp.write("in/" + std::string(220, '\x01') + std::to_string(i) + ".html", "");
        }
    }

    ProcessResult run_with(const std::string& input, rlim_t bytes) const
    {
        return run_fthsummary({"--input", input, "-o", "s.html", "--json"},
                              {.folder = temp.path(),
                               .environment = {"LC_ALL=C"},
                               .before_exec = [bytes] { limit(RLIMIT_AS, bytes); }});
    }

    // The least memory, to a step, with which the program starts and has nothing to do.
    rlim_t least_memory() const
    {
        rlim_t least = PLENTY;
        for (rlim_t too_little = 0; least - too_little > STEP;) {
            const rlim_t middle = too_little + (least - too_little) / 2;
            (run_with("empty", middle).status == 0 ? least : too_little) = middle;
        }
        return least;
    }

    // Checks everything about one run but which stage it ended in, and names that.
    std::string stage_with(rlim_t bytes) const
    {
        temp.write("s.html", "older page");
        temp.write("s.json", "older json");
        const ProcessResult result = run_with("in", bytes);
        if (result.errors.empty()) {
            expect_run(result, 0, wrote_with_json("s.html", "s.json", {}), "");
            expect_whole_page(temp.read("s.html"));
            EXPECT_EQ(files_in(temp.read("s.json")).size(), std::size_t{FILES});
            return "complete";
        }
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(temp.read("s.json"), "older json");
        if (result.errors == write_message("s.json")) {
            expect_whole_page(temp.read("s.html"));
        } else {
            EXPECT_EQ(temp.read("s.html"), "older page");
        }
        return result.errors;
    }

    // Adds the stages that more than `low` bytes, which lead to the last stage so far,
    // lead to, up to the one of `high` bytes. Between two of one stage there is no other.
    void add_stages(rlim_t low, rlim_t high, const std::string& last)
    {
        if (stages.back() == last) {
            return;
        }
        if (high - low <= STEP) {
            stages.push_back(last);
            return;
        }
        const rlim_t middle = low + (high - low) / 2;
        const std::string stage = stage_with(middle);
        add_stages(low, middle, stage);
        add_stages(middle, high, last);
    }

    TempFolder temp;
    std::vector<std::string> stages; // one behind the other, as the memory grows
};

} // namespace

TEST_F(MemoryStages, FollowOneAnotherAsTheMemoryGrows)
{
    const rlim_t least = least_memory();
    stages.push_back(stage_with(least));
    add_stages(least, least + PLENTY, stage_with(least + PLENTY));
    EXPECT_EQ(stages, (std::vector<std::string>{input_message("in"), "error: out of memory\n",
                                                write_message("s.html"), write_message("s.json"),
                                                "complete"}));
}

// Each lists everything once more for each that was followed before it.
TEST_F(MemoryStages, EndARunOverLinksWhoseLoopsMultiply)
{
    temp.link(".", "in/one");
    temp.link(".", "in/two");
    expect_run(run_with("in", PLENTY), 1, "", input_message("in"));
}
