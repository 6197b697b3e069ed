#include "platform/PictureWriter.h"
#include "platform/linux/images/PictureRows.h"
#include "platform/linux/images/SystemImageReader.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace korvo {

namespace {

namespace fs = std::filesystem;

using Color = std::array<double, 3>;

/// The four fields that every picture of tests/data/images shows.
constexpr std::array<Color, 4> fields{{{200, 40, 40}, {40, 180, 60}, {50, 60, 190}, {128, 128, 128}}};

fs::path picture(const std::string& name)
{
    return fs::path(KORVO_TEST_DATA) / "images" / name;
}

double encoded(double light)
{
    return 255 * (light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055);
}

/// The colour, in sRGB's codes, in the middle of a field. Alpha is taken out again.
Color colorOf(const DecodedImage& image, std::size_t field)
{
    const auto middle = [&](int side, bool second) { return side * (second ? 3 : 1) / 4; };
    if (const auto* const bitmap = std::get_if<Bitmap>(&image.pixels)) {
        const auto* const pixel
            = bitmap->row(middle(bitmap->height, field >= 2)) + 4 * middle(bitmap->width, field % 2 == 1);
        Color color;
        for (std::size_t i = 0; i < 3; ++i)
            color[i] = pixel[3] == 0 ? 0 : pixel[i] * 255.0 / pixel[3];
        return color;
    }
    const auto& linear = std::get<LinearImage>(image.pixels);
    const auto at = linear.offset(middle(linear.height, field >= 2))
        + static_cast<std::size_t>(middle(linear.width, field % 2 == 1));
    return {encoded(linear.red[at]), encoded(linear.green[at]), encoded(linear.blue[at])};
}

void expectFields(const DecodedImage& image, double tolerance, bool isGrey = false)
{
    for (std::size_t field = 0; field < fields.size(); ++field) {
        const auto found = colorOf(image, field);
        auto wanted = fields[field];
        if (isGrey)
            wanted.fill(0.2126 * wanted[0] + 0.7152 * wanted[1] + 0.0722 * wanted[2]);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(found[i], wanted[i], tolerance) << "field " << field << ", channel " << i;
    }
}

template <typename Image>
std::pair<int, int> sizeOf(const Image& image)
{
    return {image.width, image.height};
}

class ImageReading : public ::testing::Test {
protected:
    DecodedImage read(const fs::path& file, const ImageRequest& request = {})
    {
        return reader.read(file, request, {});
    }

    /// The error that reading a file gives.
    ImageError::Case failure(const fs::path& file, const std::string& text = {})
    {
        try {
            read(file);
        } catch (const ImageError& error) {
            EXPECT_NE(std::string(error.what()).find(text), std::string::npos) << error.what();
            EXPECT_TRUE(std::string(error.what()).starts_with(file.string())) << error.what();
            return error.which();
        }
        ADD_FAILURE() << file << " was read";
        return {};
    }

    std::unique_ptr<ProcessLauncher> launcher = systemProcessLauncher();
    SystemImageReader reader{*launcher, KORVO_DECODER};
    TemporaryFolder folder;
};

} // namespace

TEST_F(ImageReading, everyKindShowsTheSameColoursUpright)
{
    struct Case {
        std::string name;
        double tolerance; // of what the kind itself can hold
        bool isGrey = false;
    };
    for (const auto& [name, tolerance, isGrey] : {Case{"base.png", 0}, {"interlaced.png", 0},
             {"palette.png", 0}, {"deep.png", 0.5}, {"half.png", 1.1}, {"p3deep.png", 1}, {"turned6.png", 0},
             {"plain.jpg", 2}, {"progressive.jpg", 6}, {"grey.jpg", 2, true}, {"cmyk.jpg", 3},
             {"turned3.jpg", 2}, {"turned6.jpg", 2}, {"turned8.jpg", 2}, {"p3.jpg", 3}, {"lossy.webp", 8},
             {"half.webp", 1.1}, {"animated.webp", 8}, {"packed.tif", 0}, {"deep.tif", 0.5}, {"tiled.tif", 0},
             {"palette.tif", 0}, {"cmyk.tif", 1}, {"real.tif", 1}, {"turned6.tif", 0}, {"animated.gif", 0},
             {"plain.bmp", 0}, {"plain.heic", 4}, {"deep.avif", 4}, {"turned6.avif", 4}, {"camera.dng", 4},
             {"film.mp4", 6}, {"turned.mov", 6}, {"oblong.mp4", 6}, {"film.avi", 6}, {"film.mpg", 8}}) {
        SCOPED_TRACE(name);
        const auto bitmap = read(picture(name));
        expectFields(bitmap, tolerance, isGrey);
        EXPECT_EQ(sizeOf(std::get<Bitmap>(bitmap.pixels)), std::pair(bitmap.fullWidth, bitmap.fullHeight));
        EXPECT_EQ(bitmap.fullWidth * 2, bitmap.fullHeight * 3);
        EXPECT_EQ(bitmap.note, "");
        expectFields(read(picture(name), {0, PixelKind::linear}), tolerance + 0.01, isGrey);
        const auto small = read(picture(name), {18, PixelKind::asStored, PictureSource::quick});
        expectFields(small, std::max(tolerance, 3.0) + 1, isGrey);
        EXPECT_EQ(
            std::visit([](const auto& pixels) { return sizeOf(pixels); }, small.pixels), std::pair(18, 12));
        EXPECT_EQ(small.fullWidth, bitmap.fullWidth);
    }
}

TEST_F(ImageReading, keepsAllThatAFileHoldsWhenAsked)
{
    for (const auto& [name, isLinear] : {std::pair("base.png", false), {"half.png", false},
             {"grey.jpg", false}, {"deep.png", true}, {"p3.jpg", true}, {"cmyk.tif", true},
             {"real.tif", true}, {"camera.dng", true}, {"deep.avif", true}, {"film.mp4", false}})
        EXPECT_EQ(std::holds_alternative<LinearImage>(read(picture(name), {0, PixelKind::asStored}).pixels),
            isLinear)
            << name;
    const auto half = std::get<LinearImage>(read(picture("half.png"), {0, PixelKind::linear}).pixels);
    EXPECT_NEAR(half.alpha.at(0), 0.5, 0.01);
}

TEST_F(ImageReading, refusesWhatClaimsTooManyPixelsBeforeAskingForMemory)
{
    // 60,000 × 60,000 in the header of each kind, whose pixels would need gigabytes.
    auto jpeg = readFile(picture("plain.jpg"));
    jpeg.replace(jpeg.find("\xFF\xC0") + 5, 4, "\xEA\x60\xEA\x60");
    auto bitmap = readFile(picture("plain.bmp"));
    bitmap.replace(18, 8, std::string("\x60\xEA\0\0\x60\xEA\0\0", 8));
    auto tiff = readFile(picture("packed.tif"));
    for (const char tag : {'\0', '\1'}) {
        const auto entry = tiff.rfind(std::string{tag, '\1', '\3', '\0', '\1', '\0', '\0', '\0'});
        ASSERT_NE(entry, tiff.npos);
        tiff.replace(entry + 8, 2, "\x60\xEA");
    }
    auto png = readFile(picture("base.png"));
    png.replace(16, 8, std::string("\0\0\xEA\x60\0\0\xEA\x60", 8)).replace(29, 4, "\xFD\xBC\x9D\xD1");
    auto gif = readFile(picture("animated.gif"));
    gif.replace(6, 4, "\x60\xEA\x60\xEA");
    for (const auto& [name, contents] : {std::pair("huge.jpg", jpeg), {"huge.bmp", bitmap},
             {"huge.tif", tiff}, {"huge.png", png}, {"huge.gif", gif}})
        EXPECT_EQ(failure(folder.write(name, contents + std::string(100'000, '\0')), "60000 × 60000 pixels"),
            ImageError::Case::tooLarge)
            << name;
}

TEST_F(ImageReading, saysWhatIsWrongWithAFile)
{
    using Case = ImageError::Case;
    EXPECT_EQ(failure(folder / "absent.jpg", "No such file"), Case::open);
    EXPECT_EQ(failure(folder.path(), "is not a file"), Case::open);
    EXPECT_EQ(failure(folder.write("empty.jpg", ""), "empty"), Case::damaged);
    EXPECT_EQ(failure(folder.write("text.jpg", "this is no picture"), "no picture"), Case::unknown);
    EXPECT_EQ(failure(folder.write("raw.x3f", "FOVb" + std::string(500, 'x')), "camera is not known"),
        Case::unsupported);
    auto markers = readFile(picture("plain.jpg"));
    for (std::string many = std::string("\xFF\xE1\0\2", 4); many.size() < 4 << 20;)
        markers.insert(2, many += many);
    EXPECT_EQ(failure(folder.write("markers.jpg", markers), "markers have no end"), Case::damaged);
    SystemImageReader without(*launcher, folder / "nothing");
    EXPECT_THROW(without.read(picture("plain.heic"), {}, {}), ImageError);
    std::stop_source stop;
    stop.request_stop();
    for (const auto* const name : {"plain.jpg", "plain.heic"})
        EXPECT_THROW(reader.read(picture(name), {}, stop.get_token()), ImageError) << name;
    expectFields(
        read(picture("plain.heic")), 4); // a new decoder has taken the place of the one that was stopped
}

TEST_F(ImageReading, everyDamagedFileIsReadInPartOrRefused)
{
    for (const auto& entry : fs::directory_iterator(picture(""))) {
        const auto whole = readFile(entry.path());
        for (const int eighths : {1, 3, 5, 7}) {
            auto mixed = whole;
            for (auto at = mixed.size() * static_cast<std::size_t>(eighths) / 8; at < mixed.size(); at += 31)
                mixed[at] = static_cast<char>(mixed[at] * 7 + 113);
            for (const auto& contents :
                {whole.substr(0, whole.size() * static_cast<std::size_t>(eighths) / 8), mixed})
                try {
                    const auto file = folder.write("damaged" + entry.path().extension().string(), contents);
                    const auto image = read(file);
                    EXPECT_GT(image.fullWidth, 0);
                } catch (const ImageError& error) {
                    for (const auto each :
                        {ImageError::Case::open, ImageError::Case::crashed, ImageError::Case::timedOut})
                        EXPECT_NE(error.which(), each) << entry.path() << ": " << error.what();
                }
        }
    }
    expectFields(read(picture("plain.heic")), 4);
}

TEST_F(ImageReading, whatIsCutOffShowsItsFirstRows)
{
    constexpr int width = 600, height = 400;
    Bitmap image(width, height);
    for (std::size_t i = 0; i < image.bytes.size(); ++i)
        image.bytes[i] = static_cast<std::uint8_t>(i % 4 == 3 ? 255 : 90 + i * i * 2654435761U / 7 % 60);
    for (const auto* const name : {"a.jpg", "a.png", "a.webp", "a.tif"}) {
        SCOPED_TRACE(name);
        const auto writer = pictureWriter(*pictureFormat(name), {width, height}, 90, name);
        for (int y = 0; y < height; ++y)
            writer->write(image.row(y));
        const auto bytes = writer->finish();
        auto contents = std::string(bytes.begin(), bytes.end());
        if (std::string_view(name) == "a.tif") // whose end is its table of contents
            std::fill(contents.begin() + static_cast<long>(contents.size() / 2),
                contents.begin() + static_cast<long>(contents.size() * 3 / 4), '\0');
        else
            contents.resize(contents.size() * 3 / 4);
        const auto found = read(folder.write(name, contents));
        EXPECT_NE(found.note.find("damaged"), std::string::npos);
        const auto& bitmap = std::get<Bitmap>(found.pixels);
        EXPECT_TRUE(isOpaque(bitmap));
        for (int channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(bitmap.row(0)[channel], image.row(0)[channel], 40);
    }
}

TEST(PictureRows, whatHoldsTheWholePictureIsBoundedInMemory)
{
    for (const auto& [name, open] : {std::pair("progressive.jpg", OpenRows(openJpeg)),
             {"interlaced.png", OpenRows(openPng)}, {"lossy.webp", OpenRows(openWebp)}}) {
        PictureFile file(picture(name));
        EXPECT_NE(open(file, {.mostMemory = 20'000}), nullptr);
        try {
            open(file, {.mostMemory = 1000});
            ADD_FAILURE() << name;
        } catch (const ImageError& error) {
            EXPECT_EQ(error.which(), ImageError::Case::memory);
        }
    }
}

TEST_F(ImageReading, aCutOffPhotoShowsWhatThereIs)
{
    const auto whole = readFile(picture("turned3.jpg"));
    const auto cut = read(folder.write("cut.jpg", whole.substr(0, whole.size() - 40)));
    EXPECT_NE(cut.note.find("damaged"), std::string::npos);
    EXPECT_NEAR(colorOf(cut, 3)[0], 128, 3) << "the first rows, which are the last ones upright";
}

TEST_F(ImageReading, aProfileThatDescribesNoPicturesColoursIsPassedOver)
{
    const auto whole = readFile(picture("p3.jpg"));
    const auto profile = whole.find("ICC_PROFILE") + 14;
    const auto stored = colorOf(read(picture("p3.jpg"), {0, PixelKind::linear}), 0);
    for (const auto& [at, text] : {std::pair(12, "link"), {12, "abst"}, {12, "nmcl"}, {20, "?!?!"}}) {
        auto changed = whole;
        changed.replace(profile + static_cast<std::size_t>(at), 4, text);
        const auto file = folder.write("changed.jpg", changed);
        const auto bitmap = colorOf(read(file), 0), linear = colorOf(read(file, {0, PixelKind::linear}), 0);
        EXPECT_LT(bitmap[0], stored[0] - 5) << text << ": wide colours, as if they were sRGB's";
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(bitmap[i], linear[i], 0.5) << text << ", channel " << i;
    }
}

TEST_F(ImageReading, aProfileThatIsNoMoreThanAHeaderIsPassedOver)
{
    std::string profile(132, '\0');
    profile.replace(0, 48,
        std::string("\0\0\0\x84\0\0\0\0\2\x10\0\0mntrRGB XYZ \7\xE6\0\1\0\1\0\0\0\0\0\0"
                    "acsp\0\0\0\0\0\0\0\0",
            48));
    auto jpeg = readFile(picture("plain.jpg"));
    const auto length = static_cast<char>(2 + 14 + profile.size());
    jpeg.insert(2, std::string("\xFF\xE2\0", 3) + length + std::string("ICC_PROFILE\0\1\1", 14) + profile);
    const auto file = folder.write("empty profile.jpg", jpeg);
    for (const auto kind : {PixelKind::bitmap, PixelKind::linear, PixelKind::asStored}) {
        const auto image = read(file, {0, kind});
        expectFields(image, 2.01);
        EXPECT_EQ(std::holds_alternative<LinearImage>(image.pixels), kind == PixelKind::linear);
    }
}

TEST_F(ImageReading, aRawFileThatCannotBeDevelopedShowsItsPreviewAndSaysSo)
{
    const auto whole = readFile(picture("camera.dng"));
    const auto image = read(folder.write("broken.dng", whole.substr(0, whole.size() * 9 / 10)));
    EXPECT_EQ(image.note, "its raw data are damaged: the preview that the camera stored is shown");
    EXPECT_EQ(std::pair(image.fullWidth, image.fullHeight), std::pair(192, 128));
    expectFields(image, 4);
    auto blind = whole; // without a preview that could be shown
    blind.replace(blind.find("\xFF\xD8\xFF"), 300, std::string(300, '\0'));
    expectFields(read(folder.write("blind.dng", blind), {0, PixelKind::bitmap, PictureSource::quick}), 4);
    EXPECT_EQ(
        failure(folder.write("none.dng", blind.substr(0, blind.size() / 2))), ImageError::Case::damaged);
}

TEST_F(ImageReading, aPreviewOfAnotherShapeIsNotSqueezed)
{
    auto file = readFile(picture("camera.dng"));
    Bitmap square(32, 32); // whose file is not longer than the one it replaces
    std::ranges::fill(square.bytes, std::uint8_t(255));
    const auto preview = encodedPreview(square, 50);
    ASSERT_LE(preview.size(), 687U);
    file.replace(file.find("\xFF\xD8\xFF"), preview.size(), std::string(preview.begin(), preview.end()));
    const auto image = read(folder.write("square.dng", file), {16, PixelKind::bitmap, PictureSource::quick});
    EXPECT_EQ(sizeOf(std::get<Bitmap>(image.pixels)), std::pair(16, 16));
    EXPECT_EQ(image.fullWidth, 192);
}

TEST_F(ImageReading, aRawFileKeepsWhatIsBrighterThanWhite)
{
    auto file = readFile(picture("camera.dng"));
    // The camera sees red at half its strength, so that its white is twice as bright once balanced.
    const std::string one("\x10\x27\0\0", 4);
    const auto neutral = file.rfind(one + one + one + one + one + one);
    ASSERT_NE(neutral, file.npos);
    file.replace(neutral, 4, std::string("\x88\x13\0\0", 4));
    const auto image
        = std::get<LinearImage>(read(folder.write("warm.dng", file), {0, PixelKind::linear}).pixels);
    const auto at = [&](int x, int y) { return image.offset(y) + static_cast<std::size_t>(x); };
    EXPECT_GT(image.red[at(48, 32)], 1.03F);
    EXPECT_NEAR(image.green[at(144, 32)], 0.456F, 0.005F) << "as bright as it was, the headroom taken out";
}

TEST_F(ImageReading, rawFilesAreTurnedAndMirroredAsTheySay)
{
    auto file = readFile(picture("camera.dng"));
    const auto entry = file.find(std::string("\x12\1\3\0\1\0\0\0", 8));
    ASSERT_NE(entry, file.npos);
    // Where the fields of the upright picture come from: 0 and 1 are the upper ones.
    constexpr std::array<std::array<std::size_t, 4>, 8> sources{{{0, 1, 2, 3}, {1, 0, 3, 2}, {3, 2, 1, 0},
        {2, 3, 0, 1}, {0, 2, 1, 3}, {2, 0, 3, 1}, {3, 1, 2, 0}, {1, 3, 0, 2}}};
    for (std::size_t number = 0; number < sources.size(); ++number) {
        file[entry + 8] = static_cast<char>(number + 1);
        const auto image = read(folder.write("turned.dng", file));
        EXPECT_EQ(image.fullWidth > image.fullHeight, number < 4);
        for (std::size_t field = 0; field < 4; ++field)
            for (std::size_t i = 0; i < 3; ++i)
                EXPECT_NEAR(colorOf(image, field)[i], fields[sources[number][field]][i], 4)
                    << "orientation " << number + 1 << ", field " << field;
    }
}

TEST_F(ImageReading, rawFilesOfUnknownCamerasShowTheirPreview)
{
    const auto preview = readFile(picture("plain.jpg"));
    const auto file = folder.write("new.x3f", "FOVb" + std::string(5000, '\xFF') + preview);
    const auto image = read(file, {0, PixelKind::bitmap, PictureSource::whole});
    EXPECT_EQ(image.note, "the camera is not known: the preview that it stored is shown");
    expectFields(image, 2);
}

} // namespace korvo
