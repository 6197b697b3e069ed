#include "metadata/ExifReader.h"

#include "tests/metadata/Fixture.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

PhotoExifInfo read(const std::string& name)
{
    return readExif(fixture(name)).value_or(PhotoExifInfo());
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

TEST(ExifReader, readsEveryContainer)
{
    struct Case {
        const char *file, *camera, *size;
        UnixTime captured;
        bool hasPosition;
    };
    constexpr UnixTime noon = 1714564800; // 2024-05-01 12:00 UTC, the user's zone in this test
    for (const auto& [file, camera, size, captured, hasPosition] : {
             Case{"camera.png", "Canon EOS R5", "16 × 12", noon - 7200, true},
             {"camera.tif", "Canon EOS R5", "16 × 12", noon - 7200, true},
             {"camera.webp", "Canon EOS R5", "16 × 12", noon - 7200, true},
             {"camera.heic", "Canon EOS R5", "16 × 12", noon - 7200, true},
             {"camera.avif", "Canon EOS R5", "16 × 12", noon - 7200, true},
             {"profiles.png", "Canon EOS R5", "16 × 12", noon, true},
             {"subdirectory.nef", "NIKON CORPORATION NIKON D850", "6000 × 4000", noon, true},
             {"olympus.orf", "OLYMPUS IMAGING CORP. E-M1MarkIII", "5184 × 3888", noon, true},
             {"canon.cr2", "Canon EOS 5D Mark IV", "6720 × 4480", noon, true},
             {"canon.cr3", "Canon EOS R5", "8192 × 5464", noon, true},
             {"canon.crw", "Canon EOS 10D", "3072 × 2048", noon, false},
             {"panasonic.rw2", "Panasonic DC-GH6", "4000 × 3000", noon, true},
             {"fuji.raf", "FUJIFILM X-T5", "7728 × 5152", noon, true},
             {"minolta.mrw", "Minolta Co., Ltd. DiMAGE 7Hi", "2560 × 1920", noon, true},
             {"sigma.x3f", "SIGMA SD10", "2268 × 1512", noon, false},
             {"tiff-ep.dcr", "Kodak DCS Pro 14n", "", noon, false},
             {"phone.mov", "Apple iPhone 15", "1920 × 1080", noon, true},
             {"place.mp4", "", "1920 × 1080", noon, true},
             {"dated.avi", "", "640 × 480", 1047308683, false},
             {"titled.gif", "", "16 × 12", 0, false},
             {"rows-down.bmp", "", "1 × 12", 0, false},
             {"lossless.webp", "", "16 × 12", 0, false},
         }) {
        const auto info = read(file);
        EXPECT_EQ(info.camera.value_or(""), camera) << file;
        EXPECT_EQ(info.pixelSize.value_or(""), size) << file;
        EXPECT_EQ(info.captureTimestamp.value_or(0), captured) << file;
        EXPECT_EQ(info.coordinate.has_value(), hasPosition) << file;
        EXPECT_EQ(info.coordinate, readGPS(fixture(file))) << file;
    }
    EXPECT_EQ(readExif(fixture("make-fixtures")), std::nullopt);
}

TEST(ExifReader, leavesOutWhatIsNoValue)
{
    PhotoExifInfo expected;
    expected.camera = "Acme";
    expected.pixelSize = "16 × 12";
    EXPECT_EQ(read("undefined.jpg"), expected);
    EXPECT_EQ(read("no-references.jpg").coordinate, (Coordinate{10.5, 20.25}));
}

TEST(ExifReader, showsWholeSecondsThirdsAndNoneOfWhatIsNotAboveZero)
{
    EXPECT_EQ(read("odd-types.jpg").exposure, "1/3 s");
    EXPECT_EQ(read("odd-types.jpg").aperture, "ƒ/5.6");
    EXPECT_EQ(read("odd-types.jpg").isoValue, 25600);
    EXPECT_EQ(read("odd-types.jpg").focalLength, "36 mm");
    EXPECT_EQ(read("odd-zeros.jpg").exposure, std::nullopt);
    EXPECT_EQ(read("odd-zeros.jpg").aperture, "ƒ/0.0");
    EXPECT_EQ(read("odd-zeros.jpg").focalLength, std::nullopt);
    EXPECT_EQ(read("odd-zeros.jpg").captureDate, std::nullopt);
    EXPECT_EQ(read("odd-padded.jpg").camera, "Sony ILCE");
    EXPECT_EQ(read("odd-padded.jpg").lens, "50mm");
}

} // namespace korvo
