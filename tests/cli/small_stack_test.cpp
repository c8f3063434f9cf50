// The built program on a stack of 256 KiB, on the inputs that would need most of it if
// anything grew with them.

#include <string>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "support/deep_tree.h"
#include "cli/expected_texts.h"
#include "cli/process_limits.h"
#include "cli/program_run.h"
#include "cli/sample_reports.h"

namespace {

ProcessResult run_on_small_stack(const TempFolder& temp, const std::string& page)
{
    return run_fthsummary({"--input", "in", "-o", page, "--json"},
                          {.folder = temp.path(), .before_exec = [] {
                               limit(RLIMIT_STACK, rlim_t{256} * 1024);
                               limit(RLIMIT_NOFILE, 4096);
                           }});
}

} // namespace

// "in", 2,043 times "/d" and "/r.html" are 4,095 characters.
TEST(SmallStack, ATreeAsDeepAsPathsAllowIsRead)
{
    const TempFolder temp;
    temp.make_folder("in");
    const DeepTree tree(temp.path("in"), 2043);
    tree.write_innermost("r.html", passed_report());
    // On the second run the page is there: each candidate is compared with it.
    for (int i = 0; i < 2; ++i) {
        expect_run(run_on_small_stack(temp, "r.html"), 0,
                   "wrote r.html (1 fathomix reports: 1 passed, 0 failed) + json\nwrote r.json\n",
                   "");
    }
    EXPECT_NE(temp.read("r.json").find('"' + repeated("d/", 2043) + "r.html\""), std::string::npos);
}

TEST(SmallStack, LongNamesLongTextsAndTheLongestPagePathAreWritten)
{
    const TempFolder temp;
    const std::string folders = repeated(std::string(250, 'f') + "/", 14);
    for (const char first : std::string("abc")) {
        temp.write("in/" + folders + std::string(249, first) + "\".html",
                   errored_report(std::string(5000, '\x01')));
    }
    const std::string page = "out/" + repeated("./", 2040) + "page.html";
    ASSERT_EQ(page.size(), 4093U);
    const std::string json = page.substr(0, page.size() - 5) + ".json";
    expect_run(run_on_small_stack(temp, page), 1,
               "wrote " + page +
                   " (3 fathomix reports: 0 passed, 0 failed, 3 errored) + json\nwrote " + json +
                   "\n",
               "");
    expect_whole_page(temp.read("out/page.html"));
    EXPECT_NE(temp.read("out/page.json").find("\"errored\": 3,"), std::string::npos);
}

TEST(SmallStack, AnArgumentOfAHundredThousandBytesIsRejected)
{
    const TempFolder temp;
    const std::string longest(100000, '-');
    const ProcessResult result =
        run_fthsummary({longest}, {.folder = temp.path(),
                                   .before_exec = [] { limit(RLIMIT_STACK, rlim_t{256} * 1024); }});
    expect_run(result, 1, "", unrecognized_message(longest));
}
