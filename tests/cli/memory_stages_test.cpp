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
constexpr int FILES = 2000;
constexpr int MOST_STEPS = 400;

ProcessResult run_with_memory(const TempFolder& temp, const std::string& input, rlim_t bytes)
{
    return run_fthsummary({"--input", input, "-o", "s.html", "--json"},
                          {.folder = temp.path(),
                           .environment = {"LC_ALL=C"},
                           .before_exec = [bytes] { limit(RLIMIT_AS, bytes); }});
}

// The least memory, in whole steps, with which the program starts and has nothing to do.
rlim_t least_memory(const TempFolder& temp)
{
    for (rlim_t bytes = STEP; bytes < MOST_STEPS * STEP; bytes += STEP) {
        if (run_with_memory(temp, "empty", bytes).status == 0) {
            return bytes;
        }
    }
    ADD_FAILURE() << "the program does not start at all";
    return 0;
}

// Checks everything about one run but which stage it ended in, and names that.
std::string stage_of(const TempFolder& temp, const ProcessResult& result)
{
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

} // namespace

// A control character takes six bytes in the JSON and one in the page, so there is
// memory with which only the JSON cannot be made.
TEST(MemoryStages, FollowOneAnotherAsTheMemoryGrows)
{
    const TempFolder temp;
    temp.make_folder("empty");
    temp.make_folder("in");
    for (int i = 0; i < FILES; ++i) {
        const std::string name = std::string(100, '\x01') + std::to_string(i) + ".html";
        temp.write("in/" + name, "");
    }
    std::vector<std::string> stages;
    rlim_t bytes = least_memory(temp);
    for (int i = 0; i < MOST_STEPS && (stages.empty() || stages.back() != "complete"); ++i) {
        temp.write("s.html", "older page");
        temp.write("s.json", "older json");
        const std::string stage = stage_of(temp, run_with_memory(temp, "in", bytes));
        if (stages.empty() || stages.back() != stage) {
            stages.push_back(stage);
        }
        bytes += STEP;
    }
    EXPECT_EQ(stages, (std::vector<std::string>{input_message("in"), "error: out of memory\n",
                                                write_message("s.html"), write_message("s.json"),
                                                "complete"}));
}
