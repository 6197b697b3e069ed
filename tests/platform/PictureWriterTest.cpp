#include "platform/PictureWriter.h"
#include "platform/linux/images/ColorConversion.h"
#include "platform/linux/images/IccProfiles.h"
#include "platform/linux/images/PictureWriters.h"
#include "platform/linux/images/SystemImageReader.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace korvo {

namespace {

constexpr int width = 61, height = 47;

/// Soft slopes, which all formats hold well, from see-through to opaque.
Bitmap slopes(AlphaPlane alpha)
{
    Bitmap image(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            auto* const pixel = image.row(y) + 4 * x;
            const int opacity = alpha == AlphaPlane::present ? 55 + 4 * y : 255;
            const int straight[] = {4 * x, 5 * y, 255 - 2 * x - 2 * y};
            for (int channel = 0; channel < 3; ++channel)
                pixel[channel] = static_cast<std::uint8_t>((straight[channel] * opacity + 127) / 255);
            pixel[3] = static_cast<std::uint8_t>(opacity);
        }
    return image;
}

Bitmap overWhite(Bitmap image)
{
    for (std::size_t i = 0; i < image.bytes.size(); i += 4) {
        for (std::size_t channel = 0; channel < 3; ++channel)
            image.bytes[i + channel] += static_cast<std::uint8_t>(255 - image.bytes[i + 3]);
        image.bytes[i + 3] = 255;
    }
    return image;
}

int largestDifference(const Bitmap& a, const Bitmap& b)
{
    int largest = 0;
    for (std::size_t i = 0; i < a.bytes.size(); ++i)
        largest = std::max(largest, std::abs(a.bytes[i] - b.bytes[i]));
    return largest;
}

std::vector<std::uint8_t> written(PictureWriter& writer, const Bitmap& image)
{
    for (int y = 0; y < image.height; ++y)
        writer.write(image.row(y));
    return writer.finish();
}

} // namespace

TEST(PictureWriter, everyFormatComesBackAsItWasWithTheProfileOfSrgb)
{
    const TemporaryFolder folder;
    const auto launcher = systemProcessLauncher();
    SystemImageReader reader(*launcher, KORVO_DECODER);
    for (const auto& [name, opaque, seeThrough] :
        {std::tuple("a.jpg", 6, 6), {"a.png", 0, 0}, {"a.webp", 16, 16}, {"a.tif", 0, 0}})
        for (const auto alpha : {AlphaPlane::absent, AlphaPlane::present}) {
            SCOPED_TRACE(name);
            const auto image = slopes(alpha);
            const auto writer = pictureWriter(*pictureFormat(name), {width, height, alpha}, 95, name);
            const auto bytes = written(*writer, image);
            const auto profile = srgbProfile();
            const auto file = folder.write(name, std::string(bytes.begin(), bytes.end()));
            // a PNG packs it
            EXPECT_EQ(std::search(bytes.begin(), bytes.end(), profile.begin(), profile.end()) != bytes.end(),
                std::string_view(name) != "a.png");
            const auto found = std::get<Bitmap>(reader.read(file, {}, {}).pixels);
            ASSERT_EQ(found.bytes.size(), image.bytes.size());
            const bool isFlat = std::string_view(name) == "a.jpg";
            EXPECT_LE(largestDifference(found, isFlat ? overWhite(image) : image),
                alpha == AlphaPlane::absent ? opaque : seeThrough);
        }
}

TEST(PictureWriter, refusesSizesBeyondItsFormatAndCanBeGivenUpAtAnyRow)
{
    EXPECT_THROW(pictureWriter(PictureFormat::jpeg, {65'501, 1}, 90, "a.jpg"), ImageError);
    EXPECT_THROW(pictureWriter(PictureFormat::webp, {1, 16'384}, 90, "a.webp"), ImageError);
    Bitmap noise(500, 200);
    for (std::size_t i = 0; i < noise.bytes.size(); ++i)
        noise.bytes[i] = static_cast<std::uint8_t>(i * i * 2654435761U >> 13);
    for (const auto format :
        {PictureFormat::jpeg, PictureFormat::png, PictureFormat::webp, PictureFormat::tiff}) {
        const auto writer = pictureWriter(format, {noise.width, noise.height * 2}, 100, "given up");
        for (int y = 0; y < noise.height; ++y)
            writer->write(noise.row(y));
    }
}

/// Rows of premultiplied colours in each way that a picture without, and one with, a profile is converted.
TEST(ColorConversion, premultipliedColoursComeOutAsTheStraightOnesDo)
{
    PictureInfo straight;
    straight.format.alpha = RowFormat::Alpha::straight;
    auto premultiplied = straight;
    premultiplied.format.alpha = RowFormat::Alpha::premultiplied;
    constexpr std::array<std::uint8_t, 4> pixel{200, 100, 50, 128};
    constexpr std::array<std::uint8_t, 4> multiplied{100, 50, 25, 128};
    const auto wide = iccBytes(gammaProfile(displayP3Primaries, 2.2));
    for (const auto& each : {std::vector<std::uint8_t>(), wide}) {
        straight.profile = premultiplied.profile = each;
        std::array<std::uint8_t, 4> in = pixel, wanted{}, found{};
        ColorConversion(straight, ColorConversion::Target::bitmap).toBitmap(in.data(), wanted.data(), 1);
        in = multiplied;
        ColorConversion(premultiplied, ColorConversion::Target::bitmap).toBitmap(in.data(), found.data(), 1);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(found[i], wanted[i], 1) << "channel " << i << ", profile " << each.size();
        std::array<float, 4> light{}, same{};
        in = pixel;
        ColorConversion(straight, ColorConversion::Target::linear).toLinear(in.data(), light.data(), 1);
        in = multiplied;
        ColorConversion(premultiplied, ColorConversion::Target::linear).toLinear(in.data(), same.data(), 1);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(same[i], light[i], 0.01) << "channel " << i;
    }
}

TEST(ColorConversion, aBitmapsOwnNumbersStayAsTheyAre)
{
    PictureInfo info;
    info.format.alpha = RowFormat::Alpha::premultiplied;
    ColorConversion conversion(info, ColorConversion::Target::bitmap);
    std::vector<std::uint8_t> row;
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int colour = 0; colour <= alpha; ++colour)
            for (const int number : {colour, 0, alpha, alpha})
                row.push_back(static_cast<std::uint8_t>(number));
    auto in = row, out = row;
    conversion.toBitmap(in.data(), out.data(), static_cast<int>(row.size() / 4));
    EXPECT_EQ(out, row);
}

} // namespace korvo
