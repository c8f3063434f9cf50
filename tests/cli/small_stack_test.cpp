// The built program on a stack of 256 KiB, on the inputs that would need most of it if
// anything grew with them.

#include <string>

#include <gtest/gtest.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
#include "cli/listed_files.h"
#include "cli/process_limits.h"
#include "cli/sample_reports.h"
#include "support/deep_tree.h"

namespace {

ProcessResult run_on_small_stack(const TempFolder& temp, const std::string& page)
{
    return run_fthsummary({"--input", "in", "-o", page, "--json"},
                          {.folder = temp.path(), .before_exec = [] {
                               limit(RLIMIT_STACK, SMALL_STACK);
                               limit(RLIMIT_NOFILE, DEEP_DESCRIPTORS);
                           }});
}

} // namespace

// "in", 2,043 times "/d" and "/r.html" are 4,095 characters.
TEST(SmallStack, ATreeAsDeepAsPathsAllowIsReadAndWhatIsLongerIsSkipped)
{
    if (!may_set_limit(RLIMIT_NOFILE, DEEP_DESCRIPTORS)) {
        GTEST_SKIP() << "too few descriptors for a tree as deep as paths allow";
    }
    const TempFolder temp;
    temp.make_folder("in");
    DeepTree tree(temp.path("in"), 2043);
    tree.write_innermost("r.html", passed_report());
    tree.write_innermost("rr.html", failed_report());
    for (int i = 0; i < 10; ++i) {
        tree.go_deeper();
        tree.write_innermost("r.html", failed_report());
    }
    // On the second run the page is there: each candidate is compared with it.
    for (int i = 0; i < 2; ++i) {
        expect_run(run_on_small_stack(temp, "r.html"), 0,
                   wrote_with_json("r.html", "r.json", {.passed = 1}), "");
    }
    EXPECT_EQ(files_in(temp.read("r.json")).at(0).path, repeated("d/", 2043) + "r.html");
}

TEST(SmallStack, LongNamesLongTextsAndTheLongestPagePathAreWritten)
{
    const TempFolder temp;
    const std::string folders = repeated(std::string(250, 'f') + "/", 14);
    for (const char first : std::string("abc")) {
        temp.write("in/" + folders + std::string(249, first) + "\".html",
                   errored_report(std::string(5000, '\x01')));
    }
    const std::string stem = "out/" + repeated("./", 2040) + "pagepa";
    ASSERT_EQ(stem.size(), 4090U);
    expect_run(run_on_small_stack(temp, stem + ".html"), 1,
               wrote_with_json(stem + ".html", stem + ".json", {.errored = 3}), "");
    expect_whole_page(temp.read("out/pagepa.html"));
}
