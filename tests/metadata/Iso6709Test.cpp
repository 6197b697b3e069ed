#include "metadata/Iso6709.h"

#include <gtest/gtest.h>

namespace korvo {

TEST(Iso6709, readsDegreesMinutesAndSecondsByTheNumberOfDigits)
{
    struct Case {
        const char* text;
        double latitude, longitude;
    };
    for (const auto& [text, latitude, longitude] : {
             Case{"+48.8577+002.2950+035.00/", 48.8577, 2.295},
             {"-33.9249-070.4241/", -33.9249, -70.4241},
             {"+00-025", 0, -25},
             {"+4851.5-00217.7/", 48 + 51.5 / 60, -(2 + 17.7 / 60)},
             {"-485130.6+0021742.0+8850CRSWGS_84/", -(48 + 51.0 / 60 + 30.6 / 3600),
                 2 + 17.0 / 60 + 42.0 / 3600},
         }) {
        const auto position = parseIso6709(text);
        ASSERT_TRUE(position) << text;
        EXPECT_NEAR(position->latitude, latitude, 1e-9) << text;
        EXPECT_NEAR(position->longitude, longitude, 1e-9) << text;
    }
    for (const auto* text :
        {"", "+", "+48.8", "48.8+2.3", "+91+002/", "+48+181/", "+4.8.5+002/", "+a+b", "++48+002"})
        EXPECT_FALSE(parseIso6709(text)) << text;
}

} // namespace korvo
