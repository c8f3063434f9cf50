// Reports larger than the memory that the program may have.

#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "cli/process_limits.h"
#include "cli/program_run.h"
#include "cli/sample_reports.h"

namespace {

constexpr off_t MEBIBYTE = 1024 * 1024;
constexpr off_t GIBIBYTE = 1024 * MEBIBYTE;

// AddressSanitizer reserves more addresses than any limit on them allows, so there its
// own allocator is told to refuse what is beyond the limit.
#if defined(__SANITIZE_ADDRESS__)
#define HAS_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HAS_ADDRESS_SANITIZER 1
#endif
#endif

ProcessOptions with_a_gibibyte(const TempFolder& temp)
{
#ifdef HAS_ADDRESS_SANITIZER
    // Its remark on a refused allocation goes to a file instead of standard error.
    return {.folder = temp.path(),
            .environment = {"ASAN_OPTIONS=max_allocation_size_mb=1024:"
                            "allocator_may_return_null=1:log_path=" +
                            temp.path("remarks")}};
#else
    return {.folder = temp.path(), .before_exec = [] { limit(RLIMIT_AS, GIBIBYTE); }};
#endif
}

// A file of this size that begins and ends with these texts and is a hole between.
void write_sparse(const std::string& path, off_t size, const std::string& start,
                  const std::string& end)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    ASSERT_GE(file, 0);
    EXPECT_EQ(pwrite(file, start.data(), start.size(), 0), static_cast<ssize_t>(start.size()));
    EXPECT_EQ(pwrite(file, end.data(), end.size(), size - static_cast<off_t>(end.size())),
              static_cast<ssize_t>(end.size()));
    close(file);
}

class LargeReport : public testing::Test
{
protected:
    void SetUp() override
    {
        temp.write("in/a.html", passed_report());
        temp.write("in/z.html", passed_report());
    }

    TempFolder temp;
};

} // namespace

TEST_F(LargeReport, OfThreeGibibytesIsUnreadableWithOneGibibyteAndTheOthersAreSummarised)
{
    write_sparse(temp.path("in/large.html"), 3 * GIBIBYTE, failed_report(), passed_report());
    expect_run(run_fthsummary({"--input", "in", "-o", "s.html", "--json"}, with_a_gibibyte(temp)),
               1, "wrote s.html (2 fathomix reports: 2 passed, 0 failed) + json\nwrote s.json\n",
               "");
    EXPECT_TRUE(temp.read("s.json").ends_with(
        "    \"other_files\": [\n"
        "        { \"relative_path\": \"large.html\", \"reason\": \"unreadable\" }\n"
        "    ]\n"
        "}\n"));
    EXPECT_NE(
        temp.read("s.html").find("<tr><td>large.html <small>(unreadable)</small></td></tr>\n"),
        std::string::npos);
}

// It is read whole, and what stands behind its first NUL is not looked at.
TEST_F(LargeReport, OfTwoHundredMebibytesIsReadWithOneGibibyte)
{
    write_sparse(temp.path("in/large.html"), 200 * MEBIBYTE, failed_report(), passed_report());
    expect_run(run_fthsummary({"--input", "in", "-o", "s.html"}, with_a_gibibyte(temp)), 1,
               "wrote s.html (3 fathomix reports: 2 passed, 1 failed)\n", "");
}

// The block of a large report does not take the place of the next one's.
TEST_F(LargeReport, EachOfEightIsReadAlthoughTogetherTheyAreLargerThanTheMemory)
{
    for (int i = 0; i < 8; ++i) {
        write_sparse(temp.path("in/large" + std::to_string(i) + ".html"), 200 * MEBIBYTE,
                     i == 7 ? failed_report() : passed_report(), passed_report());
    }
    expect_run(run_fthsummary({"--input", "in", "-o", "s.html"}, with_a_gibibyte(temp)), 1,
               "wrote s.html (10 fathomix reports: 9 passed, 1 failed)\n", "");
}
