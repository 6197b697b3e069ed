#include "base/Dates.h"
#include "base/Base64.h"
#include "tests/support/TimeZone.h"

#include <gtest/gtest.h>

namespace korvo {

TEST(Dates, aDayIsAsLongAsItsClocksMakeIt)
{
    constexpr auto berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
    constexpr auto saoPaulo = "BRT3BRST,M11.1.0/0,M2.3.0/0"; // where a day begins at one o'clock
    struct Case {
        const char* zone;
        const char* day;
        double hours;
        std::string start;
    };
    for (const auto& [zone, day, hours, start] : {Case{berlin, "2024-03-31", 23, "2024-03-31 00:00:00"},
             {berlin, "2024-10-27", 25, "2024-10-27 00:00:00"},
             {berlin, "2024-06-01", 24, "2024-06-01 00:00:00"},
             {"UTC", "2024-03-31", 24, "2024-03-31 00:00:00"},
             {saoPaulo, "2018-11-04", 23, "2018-11-04 01:00:00"},
             {"NPT-5:45", "2024-01-01", 24, "2024-01-01 00:00:00"}}) {
        const TimeZone local(zone);
        const auto span = localDaySpan(day);
        ASSERT_TRUE(span) << day;
        EXPECT_EQ((span->end - span->start) / 3600, hours) << zone << " " << day;
        EXPECT_EQ(localDateTime(span->start), start);
        EXPECT_EQ(localDay(span->end - 1), day);
        EXPECT_NE(localDay(span->start - 1), day);
        EXPECT_NE(localDay(span->end), day);
    }
}

TEST(Dates, daysThatNoCalendarHasAreNone)
{
    for (const char* text : {"", "2024-02-30", "2023-02-29", "2024-13-01", "2024-00-10", "2024-1-01",
             "24-01-01", "2024/01/01", "2024-01-01 ", "2024-01-0x", "-024-01-01"})
        EXPECT_FALSE(localDaySpan(text)) << text;
    EXPECT_TRUE(localDaySpan("2024-02-29"));
}

TEST(Dates, aFilesTimeComesBackAsItWas)
{
    for (const UnixTime time : {0.0, 1'714'557'600.25, -1'000'000.5, 4'102'444'800.0})
        EXPECT_NEAR(unixTime(fileTime(time)), time, 1e-6);
}

TEST(Base64, isAsPublished)
{
    const std::pair<std::string, std::string> cases[] = {{"", ""}, {"f", "Zg=="}, {"fo", "Zm8="},
        {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"},
        {"\xFF\xFE\xFB", "//77"}}; // RFC 4648, section 10, and the last two characters
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(base64(std::vector<std::uint8_t>(bytes.begin(), bytes.end())), text);
}

} // namespace korvo
