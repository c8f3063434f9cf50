// The headline counts and the suite verdict.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/summary_page.h"

namespace {

std::string kpi_grid(std::uint64_t total, std::uint64_t passed, std::uint64_t failed,
                     std::uint64_t errored, std::uint64_t other)
{
    AppendedText grid;
    EXPECT_TRUE(append_kpi_grid(grid.buffer, total, passed, failed, errored, other));
    return grid.text();
}

std::string tile(const std::string& label, const std::string& value)
{
    return "<div class=\"kpi\">\n<div class=\"k\">" + label + "</div>\n<div class=\"v\">" + value +
           "</div>\n</div>\n";
}

const std::string VERDICT_FAIL = R"(<div class="kpi verdict">
<div class="k">Suite Verdict</div>
<div class="v">FAIL</div>
</div>
)";
const std::string VERDICT_PASS = R"(<div class="kpi verdict ok">
<div class="k">Suite Verdict</div>
<div class="v">PASS</div>
</div>
)";

} // namespace

TEST(KpiGrid, HasFourTilesWithoutErroredRuns)
{
    EXPECT_EQ(kpi_grid(12, 9, 3, 0, 4), "<div class=\"kpi-grid\">\n" + tile("Total Reports", "12") +
                                            tile("Passed", "9") + tile("Failed", "3") +
                                            VERDICT_FAIL + "</div>\n");
}

TEST(KpiGrid, HasFiveTilesWithErroredRuns)
{
    EXPECT_EQ(kpi_grid(12, 9, 2, 1, 0), "<div class=\"kpi-grid with-errored\">\n" +
                                            tile("Total Reports", "12") + tile("Passed", "9") +
                                            tile("Failed", "2") + tile("Errored", "1") +
                                            VERDICT_FAIL + "</div>\n");
}

TEST(KpiGrid, PassesTheSuiteOnlyWhenNothingFailedErroredOrIsOther)
{
    const std::vector<std::uint64_t> counts = {0, 1, 2, 1000000};
    for (const std::uint64_t passed : counts) {
        for (const std::uint64_t failed : counts) {
            for (const std::uint64_t errored : counts) {
                for (const std::uint64_t other : counts) {
                    const std::uint64_t total = passed + failed + errored;
                    const bool passes = failed == 0 && errored == 0 && other == 0;
                    EXPECT_EQ(kpi_grid(total, passed, failed, errored, other),
                              (errored > 0 ? "<div class=\"kpi-grid with-errored\">\n"
                                           : "<div class=\"kpi-grid\">\n") +
                                  tile("Total Reports", std::to_string(total)) +
                                  tile("Passed", std::to_string(passed)) +
                                  tile("Failed", std::to_string(failed)) +
                                  (errored > 0 ? tile("Errored", std::to_string(errored)) : "") +
                                  (passes ? VERDICT_PASS : VERDICT_FAIL) + "</div>\n");
                }
            }
        }
    }
}

TEST(KpiGrid, WritesEachCountItIsGivenAsAnUnsignedNumber)
{
    EXPECT_EQ(kpi_grid(18446744073709551615U, 4294967296, 9223372036854775808U, 10, 0),
              "<div class=\"kpi-grid with-errored\">\n" +
                  tile("Total Reports", "18446744073709551615") + tile("Passed", "4294967296") +
                  tile("Failed", "9223372036854775808") + tile("Errored", "10") + VERDICT_FAIL +
                  "</div>\n");
}
