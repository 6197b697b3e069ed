#include "metadata/CaptureDate.h"

#include "tests/support/TimeZone.h"

#include <gtest/gtest.h>

namespace korvo {

TEST(CaptureDate, takesTheOffsetAndElseTheUsersZone)
{
    const TimeZone berlin("CET-1CEST,M3.5.0,M10.5.0/3");
    struct Case {
        const char *date, *offset;
        std::optional<UnixTime> instant;
    };
    constexpr UnixTime noonUtc = 1714564800; // 2024-05-01 12:00 UTC
    for (const auto& [date, offset, instant] : {
             Case{"2024:05:01 12:00:00", "+02:00", noonUtc - 7200},
             {"2024:05:01 12:00:00", "-03:30", noonUtc + 12600},
             {"2024:05:01 12:00:00", "", noonUtc - 7200},
             {"2024:05:01 12:00:00", "+5:00", noonUtc - 7200}, // too short
             {"2024:05:01 12:00:00", "   :  ", noonUtc - 7200},
             {"2024:05:01 12:00:00", "+99:00", noonUtc - 7200},
             {" 2024:05:01 12:00:00 ", "+00:00", noonUtc},
             {"2024:05:01 12:00:00.75", "+00:00", noonUtc},
             {"2024:5:1 12:0:0", "+00:00", noonUtc},
             {"1969:12:31 23:59:59", "+00:00", -1},
             {"2024:03:31 02:30:00", "", 1711848600}, // left out: 03:30 in summer time
             {"2024:10:27 02:30:00", "", 1729992600}, // happens twice: the second, in winter time
             {"2024:10:27 01:30:00", "", 1729985400},
             {"0000:00:00 00:00:00", "", std::nullopt},
             {"    :  :     :  :  ", "", std::nullopt},
             {"2023:02:29 12:00:00", "", std::nullopt},
             {"2024:05:01 24:00:00", "", std::nullopt},
             {"2024:05:01 12:00:60", "", std::nullopt},
             {"2024:05:-1 12:00:00", "", std::nullopt},
             {"2024-05-01 12:00:00", "", std::nullopt},
             {"2024:05:01", "", std::nullopt},
             {"2024:05:01 12:00:00 and more", "", std::nullopt},
             {"", "+02:00", std::nullopt},
         })
        EXPECT_EQ(parseCaptureDate(date, offset), instant) << date << " " << offset;
}

} // namespace korvo
