#include "platform/Orientation.h"

#include <gtest/gtest.h>

#include <string>

namespace korvo {

namespace {

/// A picture of rows of letters, one a pixel.
Bitmap pictureOf(const std::vector<std::string>& rows)
{
    Bitmap image(static_cast<int>(rows.front().size()), static_cast<int>(rows.size()));
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            for (int channel = 0; channel < 4; ++channel)
                image.row(y)[4 * x + channel] = static_cast<std::uint8_t>(
                    rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] + channel);
    return image;
}

} // namespace

TEST(Orientation, eachOfTheEightTurnsAsExifSays)
{
    const auto stored = pictureOf({"ABC", "DEF"});
    const std::vector<std::string> upright[] = {{"ABC", "DEF"}, {"CBA", "FED"}, {"FED", "CBA"},
        {"DEF", "ABC"}, {"AD", "BE", "CF"}, {"DA", "EB", "FC"}, {"FC", "EB", "DA"}, {"CF", "BE", "AD"}};
    for (int number = 1; number <= 8; ++number) {
        const auto orientation = orientationOf(number);
        EXPECT_EQ(turned(stored, orientation), pictureOf(upright[number - 1])) << number;
        EXPECT_EQ(swapsSides(orientation), upright[number - 1].size() == 3) << number;
    }
    for (const int undefined : {0, 9, -1, 65535})
        EXPECT_EQ(turned(stored, orientationOf(undefined)), stored) << undefined;
}

TEST(Orientation, turnsLargePicturesAndAllPlanesWithoutLosingAPixel)
{
    LinearImage image(
        131, 67, AlphaPlane::present); // more than what is copied at once, and no multiple of it
    for (std::size_t i = 0; i < image.pixels(); ++i) {
        image.red[i] = static_cast<float>(i);
        image.green[i] = -static_cast<float>(i);
        image.blue[i] = 0.5F * static_cast<float>(i);
        image.alpha[i] = static_cast<float>(i % 7) / 7;
    }
    using enum Orientation;
    for (const auto& [there, back] : {std::pair{quarterRight, quarterLeft}, {quarterLeft, quarterRight},
             {mirrored, mirrored}, {upsideDown, upsideDown}, {flipped, flipped}, {transposed, transposed},
             {transversed, transversed}}) {
        const auto once = turned(image, there);
        EXPECT_EQ(once.width, swapsSides(there) ? image.height : image.width);
        EXPECT_NE(once, image);
        EXPECT_EQ(turned(once, back), image) << static_cast<int>(there);
    }
}

} // namespace korvo
