#include "platform/Srgb.h"

#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace korvo {

TEST(Srgb, codesComeBackFromTheirLinearValues)
{
    for (std::size_t code = 0; code < 256; ++code)
        EXPECT_EQ(srgbOfLinear(linearOfSrgb()[code]), code);
    EXPECT_EQ(linearOfSrgb()[255], 1);
    EXPECT_NEAR(linearOfSrgb()[10], 10 / 255.0 / 12.92, 1e-9);
    EXPECT_NEAR(linearOfSrgb()[188], 0.502886, 1e-6);
}

TEST(Srgb, everyFloatGetsTheNearestCode)
{
    const auto exact = [](std::uint32_t bits) {
        const long double x = std::bit_cast<float>(bits);
        const long double encoded = x <= 0.0031308L ? 12.92L * x : 1.055L * std::pow(x, 1 / 2.4L) - 0.055L;
        return static_cast<int>(std::floor(255 * encoded + 0.5L));
    };
    // The code never falls and is right on both sides of each of its steps, so it is right everywhere.
    int steps = 0;
    for (std::uint32_t slot = 0x38000000; slot < std::bit_cast<std::uint32_t>(1.0F); slot += 0x10000) {
        std::uint32_t from = slot, to = slot + 0x10000;
        const int before = srgbOfLinear(std::bit_cast<float>(from));
        ASSERT_EQ(before, exact(from));
        if (srgbOfLinear(std::bit_cast<float>(to)) == before)
            continue;
        ++steps;
        ASSERT_EQ(srgbOfLinear(std::bit_cast<float>(to)), before + 1);
        while (to - from > 1) {
            const std::uint32_t middle = from + (to - from) / 2;
            (srgbOfLinear(std::bit_cast<float>(middle)) == before ? from : to) = middle;
        }
        ASSERT_EQ(exact(from), before);
        ASSERT_EQ(exact(to), before + 1);
    }
    EXPECT_EQ(steps, 255);
}

TEST(Srgb, clampsWhatIsNoColor)
{
    using Limits = std::numeric_limits<float>;
    for (const float black : {-1.0F, -0.0F, Limits::denorm_min(), -Limits::infinity(), Limits::quiet_NaN()})
        EXPECT_EQ(srgbOfLinear(black), 0) << black;
    for (const float white : {1.0F, 1.0001F, 12.0F, Limits::infinity()})
        EXPECT_EQ(srgbOfLinear(white), 255) << white;
}

} // namespace korvo
