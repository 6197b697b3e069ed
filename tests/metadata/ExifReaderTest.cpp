#include "metadata/ExifReader.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

PhotoExifInfo read(const std::string& name)
{
    return readExif(std::filesystem::path(KORVO_TEST_DATA) / "metadata" / name).value_or(PhotoExifInfo());
}

} // namespace

TEST(ExifReader, showsTheFactsAsPhotographersReadThem)
{
    const auto little = read("camera.jpg");
    EXPECT_EQ(little.camera, "Canon EOS R5");
    EXPECT_EQ(little.lens, "RF85mm F1.2 L USM");
    EXPECT_EQ(little.exposure, "1/250 s");
    EXPECT_EQ(little.aperture, "ƒ/2.8");
    EXPECT_EQ(little.focalLength, "85 mm");
    EXPECT_EQ(little.isoValue, 400);
    EXPECT_EQ(little.captureTimestamp, 1714557600); // 10:00 UTC
    EXPECT_EQ(little.pixelSize, "16 × 12");
    ASSERT_TRUE(little.coordinate);
    EXPECT_NEAR(little.coordinate->latitude, 48.8584, 1e-9);

    const auto big = read("big-endian.jpg");
    EXPECT_EQ(big.camera, "NIKON Z 6");
    EXPECT_EQ(big.exposure, "2.0 s");
    EXPECT_EQ(big.focalValue, 23.6);
    ASSERT_TRUE(big.coordinate);
    EXPECT_NEAR(big.coordinate->latitude, -33.9249, 1e-9);
    EXPECT_NEAR(big.coordinate->longitude, -70.4241, 1e-9);
}

TEST(ExifReader, leavesOutWhatIsNoValue)
{
    PhotoExifInfo expected;
    expected.camera = "Acme";
    expected.pixelSize = "16 × 12";
    EXPECT_EQ(read("undefined.jpg"), expected);
    EXPECT_EQ(read("no-references.jpg").coordinate, (Coordinate{10.5, 20.25}));
}

} // namespace korvo
