// The headline counts and the suite verdict.

#include <string>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/summary_page.h"

namespace {

std::string kpi_grid(std::uint64_t total, std::uint64_t passed, std::uint64_t failed,
                     std::uint64_t errored, std::uint64_t other)
{
    return appended([&](TextBuffer& buffer) {
        return append_kpi_grid(buffer, total, passed, failed, errored, other);
    });
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

TEST(KpiGrid, HasFiveTilesWithErroredRunsAndWritesEachCountAsAnUnsignedNumber)
{
    EXPECT_EQ(kpi_grid(18446744073709551615U, 4294967296, 9223372036854775808U, 10, 0),
              "<div class=\"kpi-grid with-errored\">\n" +
                  tile("Total Reports", "18446744073709551615") + tile("Passed", "4294967296") +
                  tile("Failed", "9223372036854775808") + tile("Errored", "10") + VERDICT_FAIL +
                  "</div>\n");
}

TEST(KpiGrid, PassesTheSuiteOnlyWhenNothingFailedErroredOrIsOther)
{
    EXPECT_TRUE(kpi_grid(0, 0, 0, 0, 0).ends_with(VERDICT_PASS + "</div>\n"));
    EXPECT_TRUE(kpi_grid(9, 9, 0, 0, 0).ends_with(VERDICT_PASS + "</div>\n"));
    EXPECT_TRUE(kpi_grid(9, 8, 1, 0, 0).ends_with(VERDICT_FAIL + "</div>\n"));
    EXPECT_TRUE(kpi_grid(9, 8, 0, 1, 0).ends_with(VERDICT_FAIL + "</div>\n"));
    EXPECT_TRUE(kpi_grid(8, 8, 0, 0, 1).ends_with(VERDICT_FAIL + "</div>\n"));
    EXPECT_TRUE(kpi_grid(9, 7, 1, 1, 1).ends_with(VERDICT_FAIL + "</div>\n"));
}
