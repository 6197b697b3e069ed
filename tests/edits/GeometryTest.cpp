#include "edits/Geometry.h"

#include <gtest/gtest.h>

#include <string>

namespace korvo {

namespace {

/// A picture of grey pixels whose codes are letters: "ab/cd" are two rows of two.
Bitmap pictureOf(const std::string& rows)
{
    const auto width = static_cast<int>(std::min(rows.find('/'), rows.size()));
    Bitmap image(width, static_cast<int>((rows.size() + 1) / (static_cast<std::size_t>(width) + 1)));
    std::uint8_t* to = image.bytes.data();
    for (const char letter : rows)
        if (letter != '/') {
            to = std::fill_n(to, 3, static_cast<std::uint8_t>(letter));
            *to++ = 255;
        }
    return image;
}

std::string textOf(const Bitmap& image)
{
    std::string text;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x)
            text += static_cast<char>(image.row(y)[4 * x]);
        text += y + 1 < image.height ? "/" : "";
    }
    return text;
}

} // namespace

TEST(Geometry, aTurnTurnsWhatIsShown)
{
    for (const PhotoEdits& before : {PhotoEdits{}, PhotoEdits{.rotation = 3, .flipHorizontal = true},
             PhotoEdits{.crop = CropRect{0, 0, 0.67, 0.5}},
             PhotoEdits{.rotation = 1, .crop = CropRect{0.5, 0, 0.5, 0.67}, .flipVertical = true}}) {
        const auto shown = withGeometry(pictureOf("abc/def"), geometryOf(before));
        for (const int quarters : {-1, 1, 2}) {
            auto edits = before;
            turn(edits, quarters);
            EXPECT_EQ(textOf(withGeometry(pictureOf("abc/def"), geometryOf(edits))),
                textOf(withGeometry(shown, geometryOf({.rotation = quarters}))));
            turn(edits, -quarters);
            EXPECT_EQ(geometryOf(edits).quarterTurns, geometryOf(before).quarterTurns);
        }
    }
    PhotoEdits edits;
    turn(edits, 1);
    turn(edits, 3);
    EXPECT_TRUE(isIdentity(edits));
}

TEST(Geometry, turnsFlipsAndCropsTheVeryPixels)
{
    struct Case {
        PhotoEdits edits;
        std::string result;
    };
    for (const auto& [edits, result] : {
             Case{{}, "abc/def"},
             Case{{.rotation = 1}, "da/eb/fc"},
             Case{{.rotation = -1}, "cf/be/ad"},
             Case{{.rotation = 6}, "fed/cba"},
             Case{{.flipHorizontal = true}, "cba/fed"},
             Case{{.flipVertical = true}, "def/abc"},
             Case{{.rotation = 1, .flipHorizontal = true}, "ad/be/cf"},
             Case{{.crop = CropRect{0.33, 0, 0.34, 1}}, "b/e"},
             Case{{.rotation = 1, .crop = CropRect{0, 0, 1, 0.34}}, "da"},
             Case{{.crop = CropRect{-1, 0.5, 9, 9}}, "def"},
             Case{{.crop = CropRect{0.5, 0.5, 0, 0}}, "abc/def"},
             Case{{.crop = CropRect{0.99, 0.99, 0.001, 0.001}}, "f"},
         })
        EXPECT_EQ(textOf(withGeometry(pictureOf("abc/def"), geometryOf(edits))), result);
}

TEST(Geometry, straightensClockwiseWithoutShowingABorder)
{
    Bitmap image(60, 40);
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            for (int channel = 0; channel < 4; ++channel)
                image.row(y)[4 * x + channel] = channel == 3 || x == 30 ? 255 : 100;
    const auto turned = withGeometry(image, geometryOf({.straighten = 10}));
    EXPECT_EQ(turned.width, 60);
    EXPECT_EQ(turned.height, 40);
    const auto brightest = [&](int y) {
        int best = 0;
        for (int x = 0; x < turned.width; ++x)
            if (turned.row(y)[4 * x] > turned.row(y)[4 * best])
                best = x;
        return best;
    };
    EXPECT_GT(brightest(2), 32) << "the top of an upright line leans to the right";
    EXPECT_LT(brightest(37), 28);
    for (const std::size_t at : {std::size_t(0), turned.bytes.size() - 4})
        EXPECT_NEAR(turned.bytes[at], 100, 1);
    EXPECT_EQ(turned.bytes[3], 255);
}

} // namespace korvo
