// The built program, run from inside a temporary folder.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/process.h"
#include "support/temp_folder.h"

inline ProcessResult run_in(const TempFolder& temp, const std::vector<std::string>& arguments)
{
    return run_fthsummary(arguments, {.folder = temp.path()});
}

// The same without root's rights; what the program is to write in must be open to
// everybody.
inline ProcessResult run_as_ordinary_user(const TempFolder& temp,
                                          const std::vector<std::string>& arguments)
{
    return run_fthsummary(arguments, {.folder = temp.path(), .unprivileged = true});
}

// Fails the test unless the run ended with this status and these exact bytes on
// standard output and standard error.
inline void expect_run(const ProcessResult& result, int status, std::string_view output,
                       std::string_view errors)
{
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, output);
    EXPECT_EQ(result.errors, errors);
}

// A page that was written to its end.
inline void expect_whole_page(const std::string& page)
{
    EXPECT_TRUE(page.starts_with("<!doctype html>\n"));
    EXPECT_TRUE(page.ends_with("</body>\n</html>\n"));
}
