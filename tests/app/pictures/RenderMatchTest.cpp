#include "app/pictures/RenderMatch.h"

#include <gtest/gtest.h>

#include <cmath>

namespace korvo {

namespace {

/// Makes pictures up: an original that is a ramp in linear light, and a preview of it with another gamma.
class Pictures : public ImageReader {
public:
    DecodedImage read(const std::filesystem::path& file, const ImageRequest&, const std::stop_token&) override
    {
        if (file == "gone.jpg")
            throw ImageError(ImageError::Case::open, file, "is gone");
        if (file == "preview.jpg")
            return {bitmap(), 256, 3, {}};
        return {linear(), 256, 4, {}};
    }

private:
    static LinearImage linear()
    {
        LinearImage image(256, 4);
        for (std::size_t i = 0; i < image.pixels(); ++i)
            image.red[i] = image.green[i] = image.blue[i] = std::pow(static_cast<float>(i % 256) / 255, 2.2F);
        return image;
    }

    static Bitmap bitmap()
    {
        Bitmap image(256, 3); // shrinking rounds differently
        for (std::size_t i = 0; i < image.bytes.size(); ++i)
            image.bytes[i] = i % 4 == 3
                ? 255
                : static_cast<std::uint8_t>(255 * std::pow(static_cast<double>(i / 4 % 256) / 255, 0.7));
        return image;
    }
};

} // namespace

TEST(RenderMatch, fitsACurveOverTheBasicAdjustments)
{
    Pictures pictures;
    const auto curve = matchRender(pictures, "a.jpg", {}, "preview.jpg", {});
    ASSERT_TRUE(curve);
    EXPECT_NEAR(curve->rgb[8].y, std::pow(0.5, 0.7), 0.02);
    const auto brighter = matchRender(pictures, "a.jpg", {.exposure = 0.3}, "preview.jpg", {});
    ASSERT_TRUE(brighter);
    EXPECT_LT(brighter->rgb[8].y, curve->rgb[8].y); // our exposure does a part of it
}

TEST(RenderMatch, leavesWhatCannotBeCompared)
{
    Pictures pictures;
    EXPECT_FALSE(matchRender(pictures, "gone.jpg", {}, "preview.jpg", {}));
    EXPECT_FALSE(matchRender(pictures, "a.jpg", {.crop = CropRect{0, 0, 0.5, 0.5}}, "preview.jpg", {}));
    EXPECT_FALSE(matchRender(pictures, "a.jpg", {.rotation = 1}, "preview.jpg", {}));
    EXPECT_FALSE(matchRender(pictures, "a.jpg", {.sepia = 1}, "preview.jpg", {}));
}

} // namespace korvo
