// The time of generation and the footer that shows it.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/summary_page.h"

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

std::string utc_now()
{
    const std::time_t now = std::time(nullptr);
    std::tm utc = {};
    gmtime_r(&now, &utc);
    std::array<char, 80> text = {};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d UTC", utc.tm_year + 1900,
                  utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec);
    return text.data();
}

// What lies in 64 bytes of 0x55 after the time was written with this size.
std::string bytes_after(std::size_t size)
{
    std::string bytes(64, '\x55');
    format_generated_time(bytes.data(), size);
    return bytes;
}

std::string footer(const char* version)
{
    SummaryModel model = model_of({});
    model.version = version;
    return appended([&](TextBuffer& buffer) { return append_page_footer(buffer, model); });
}

constexpr std::array<const char*, 5> ZONES = {"UTC", "EAST-14", "WEST+12", "HALF-05:30",
                                              "MEZ-1MESZ,M3.5.0,M10.5.0/3"};

} // namespace

TEST(GeneratedTime, NeedsExactly24Bytes)
{
    const std::string bytes = bytes_after(24);
    EXPECT_EQ(std::strlen(bytes.c_str()), 23U);
    EXPECT_TRUE(bytes.substr(0, 23).ends_with(" UTC"));
    EXPECT_EQ(bytes.substr(24), std::string(40, '\x55'));
}

TEST(GeneratedTime, IsEmptyWhenItDoesNotFit)
{
    for (const std::size_t size : {23U, 22U, 10U, 2U, 1U}) {
        const std::string bytes = bytes_after(size);
        EXPECT_EQ(bytes[0], '\0') << size;
        EXPECT_EQ(bytes.substr(size), std::string(64 - size, '\x55')) << size;
    }
}

TEST(GeneratedTime, LeavesADestinationOfNoBytesAlone)
{
    EXPECT_EQ(bytes_after(0), std::string(64, '\x55'));
}

TEST(PageFooter, HoldsTheTimeAndTheVersionAsItIs)
{
    EXPECT_EQ(with_time_replaced(footer("<&>\"%d")), R"(<footer>
<div class="footer-row-top">
<span><b>Fathomix Summary</b> v<&>"%d</span>
<span>summary generated TIME</span>
</div>
</footer>
)");
}

TEST(PageFooter, TimeEndsInUtcAndShowsUtcWhateverTheLocalZone)
{
    for (const char* zone : ZONES) {
        const TimeZone local(zone);
        const std::string before = utc_now();
        const std::string markup = footer("1");
        const std::string after = utc_now();
        const std::string time = markup.substr(markup.find(" UTC") - 19, 23);
        EXPECT_LE(before, time) << zone;
        EXPECT_LE(time, after) << zone;
    }
}
