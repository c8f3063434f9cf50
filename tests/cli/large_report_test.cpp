// Reports larger than the memory that the program may have.

#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
#include "cli/listed_files.h"
#include "cli/process_limits.h"
#include "cli/sample_reports.h"
#include "support/build_speed.h"

namespace {

constexpr off_t MEBIBYTE = 1024 * 1024;
constexpr rlim_t MEMORY = 256 * MEBIBYTE;

// AddressSanitizer reserves more addresses than any limit on them allows, so there its
// own allocator is told to refuse what is beyond the limit.
ProcessResult run_with_little_memory(const TempFolder& temp)
{
    ProcessOptions options = {.folder = temp.path()};
    if (IS_SANITIZED) {
        // Its remark on a refused allocation goes to a file instead of standard error.
        options.environment = {"ASAN_OPTIONS=max_allocation_size_mb=256:"
                               "allocator_may_return_null=1:log_path=" +
                               temp.path("remarks")};
    } else {
        options.before_exec = [] { limit(RLIMIT_AS, MEMORY); };
    }
    return run_fthsummary({"--input", "in", "-o", "s.html", "--json"}, options);
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

} // namespace

TEST(LargeReport, OfThreeGibibytesIsUnreadableAndTheOthersAreSummarised)
{
    const TempFolder temp;
    temp.write("in/a.html", passed_report());
    temp.write("in/b/z.html", passed_report());
    write_sparse(temp.path("in/large.html"), 3072 * MEBIBYTE, failed_report(), passed_report());
    expect_run(run_with_little_memory(temp), 1, wrote_with_json("s.html", "s.json", {.passed = 2}),
               "");
    EXPECT_EQ(files_in(temp.read("s.json")).back(), (ListedFile{"large.html", "unreadable", ""}));
}

// Each is read whole, and what stands behind its first NUL is not looked at. The block of
// one does not take the place of the next one's.
TEST(LargeReport, EachOfThreeIsReadAlthoughTogetherTheyAreLargerThanTheMemory)
{
    const TempFolder temp;
    temp.write("in/a.html", passed_report());
    for (const char* name : {"in/b.html", "in/c.html", "in/d.html"}) {
        write_sparse(temp.path(name), 100 * MEBIBYTE, failed_report(), passed_report());
    }
    expect_run(run_with_little_memory(temp), 1,
               wrote_with_json("s.html", "s.json", {.passed = 1, .failed = 3}), "");
}
