// The time of generation and the footer that shows it.

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/summary_page.h"
#include "support/call_faults.h"

namespace {

// The local time zone for as long as it lives.
class TimeZone
{
public:
    explicit TimeZone(const char* zone)
    {
        if (const char* before = std::getenv("TZ")) {
            before_ = before;
        }
        setenv("TZ", zone, 1);
        tzset();
    }

    ~TimeZone()
    {
        if (before_) {
            setenv("TZ", before_->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
        tzset();
    }

    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::optional<std::string> before_;
};

// What lies in 64 bytes of 0x55 after the time was written with this size.
std::string bytes_after(std::size_t size)
{
    std::string bytes(64, '\x55');
    format_generated_time(bytes.data(), size);
    return bytes;
}

std::string time_at(std::time_t now)
{
    const StoppedClock clock(now);
    return bytes_after(GENERATED_TIME_SIZE).c_str();
}

} // namespace

TEST(GeneratedTime, EndsInUtcAndShowsUtcWhateverTheLocalZone)
{
    for (const char* zone : {"UTC", "EAST-14", "WEST+12", "MEZ-1MESZ,M3.5.0,M10.5.0/3"}) {
        const TimeZone local(zone);
        EXPECT_EQ(time_at(1751328000), "2025-07-01 00:00:00 UTC") << zone;
    }
    EXPECT_EQ(time_at(0), "1970-01-01 00:00:00 UTC");
    EXPECT_EQ(time_at(1709164799), "2024-02-28 23:59:59 UTC");
    EXPECT_EQ(time_at(1709164800), "2024-02-29 00:00:00 UTC");
}

TEST(GeneratedTime, NeedsExactly24BytesAndIsEmptyWhenItDoesNotFit)
{
    const std::string bytes = bytes_after(24);
    EXPECT_EQ(std::strlen(bytes.c_str()), 23U);
    EXPECT_EQ(bytes.substr(24), std::string(40, '\x55'));
    for (const std::size_t size : {23U, 22U, 10U, 2U, 1U}) {
        const std::string cut = bytes_after(size);
        EXPECT_EQ(cut[0], '\0') << size;
        EXPECT_EQ(cut.substr(size), std::string(64 - size, '\x55')) << size;
    }
    EXPECT_EQ(bytes_after(0), std::string(64, '\x55'));
}

TEST(GeneratedTime, IsEmptyWhenTheTimeHasNoDate)
{
    const CallFault fault(gmtime_r_call, 1, nullptr, EOVERFLOW);
    EXPECT_EQ(bytes_after(64)[0], '\0');
}

TEST(PageFooter, HoldsTheTimeAndTheVersionAsItIs)
{
    const StoppedClock clock(1751328000);
    SummaryModel model = model_of({});
    model.version = "<&>\"%d";
    EXPECT_EQ(appended([&](TextBuffer& buffer) { return append_page_footer(buffer, model); }),
              R"(<footer>
<div class="footer-row-top">
<span><b>Fathomix Summary</b> v<&>"%d</span>
<span>summary generated 2025-07-01 00:00:00 UTC</span>
</div>
</footer>
)");
}
