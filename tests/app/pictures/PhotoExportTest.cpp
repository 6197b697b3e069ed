#include "app/pictures/PhotoExport.h"
#include "metadata/ExifTagReader.h"
#include "metadata/containers/Containers.h"
#include "platform/linux/images/SystemImageReader.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace korvo {

namespace {

namespace fs = std::filesystem;

fs::path picture(const std::string& name)
{
    return fs::path(KORVO_TEST_DATA) / "images" / name;
}

class PhotoExport : public ::testing::Test {
protected:
    ExportedPhoto exported(
        const fs::path& from, const fs::path& to, const PhotoEdits& edits = {}, int size = 0)
    {
        return exportPhoto(
            reader, tool, {{from, edits, size}, to, 95, {}, {}}, [](const fs::path&) { return false; }, {});
    }

    Bitmap bitmap(const fs::path& file) { return std::get<Bitmap>(reader.read(file, {}, {}).pixels); }

    /// A photo of noise, 300 × 700, as a file.
    fs::path noise() const
    {
        const auto writer = pictureWriter(PictureFormat::png, {300, 700}, 0, "noise");
        std::vector<std::uint8_t> row(1200, 255);
        unsigned state = 1;
        for (int y = 0; y < 700; ++y) {
            for (std::size_t i = 0; i < row.size(); ++i)
                if (i % 4 != 3)
                    row[i] = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
            writer->write(row.data());
        }
        const auto bytes = writer->finish();
        return folder.write("noise.png", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }

    TemporaryFolder folder;
    std::unique_ptr<ProcessLauncher> launcher = systemProcessLauncher();
    ExifTool tool{*launcher, {}};
    SystemImageReader reader{*launcher, KORVO_DECODER};
};

/// Ends the reading as soon as there are enough rows to be worked on.
class StoppingReader : public ImageReader {
public:
    explicit StoppingReader(ImageReader& reader) : reader_(reader) { }

    DecodedImage read(const fs::path& file, const ImageRequest& request, const std::stop_token& stop) override
    {
        auto watched = request;
        watched.rowsReady = [&](const Bitmap& image, int rows) {
            announced = rows;
            request.rowsReady(image, rows);
            if (rows > 300)
                throw ImageError(ImageError::Case::stopped, file, "was stopped");
        };
        return reader_.read(file, watched, stop);
    }

    int announced = -1;

private:
    ImageReader& reader_;
};

bool contains(const fs::path& file, std::string_view text)
{
    return readFile(file).find(text) != std::string::npos;
}

} // namespace

TEST_F(PhotoExport, writesEachFormatUprightWithItsProfileAndTheCamerasExif)
{
    const auto source = folder.write("camera.jpg", readFile(picture("turned6.jpg")));
    ASSERT_EQ(
        std::system(
            ("exiftool -q -overwrite_original -Make=Korvo -Model=One '" + source.string() + "'").c_str()),
        0);
    for (const auto* const name : {"out.jpg", "out.png", "out.webp", "out.tif"}) {
        SCOPED_TRACE(name);
        const auto result = exported(source, folder / name);
        EXPECT_EQ(result.exifFailure, std::nullopt);
        const auto image = bitmap(folder / name); // turned once, not twice
        EXPECT_EQ(image.width, 48);
        EXPECT_EQ(image.height, 32);
        EXPECT_NEAR(image.row(8)[4 * 12], 200, 10);
        EXPECT_NEAR(image.row(8)[4 * 36 + 1], 180, 10);
        FileWindow window(folder / name);
        const auto tags = readExifTags(window, *findMetadata(window));
        EXPECT_EQ(tags.model, "One");
        EXPECT_EQ(tags.size, (PixelSize{48, 32}));
        EXPECT_TRUE(contains(folder / name, name == std::string("out.png") ? "iCCPsRGB" : "acsp"));
    }
}

TEST_F(PhotoExport, rendersInBandsWhatItRendersAsAWhole)
{
    const auto file = noise();
    for (const auto& edits : {PhotoEdits{}, PhotoEdits{.exposure = 0.3, .sharpness = 0.8}}) {
        exported(file, folder / "bands.png", edits);
        EXPECT_EQ(bitmap(folder / "bands.png"), renderPhoto(reader, {file, edits}, {}).image);
    }
}

TEST_F(PhotoExport, looksAtNoRowsThatAreGone)
{
    StoppingReader stopping(reader);
    EXPECT_THROW(encodePhoto(stopping, {noise(), {.sharpness = 1}}, PictureFormat::png, 90, {}), ImageError);
    EXPECT_EQ(stopping.announced, 0) << "the rows were taken back";
}

TEST_F(PhotoExport, appliesEditsAndGeometryAndShrinksWhatIsLeft)
{
    const PhotoEdits edits{.exposure = 1,
        .rotation = 1,
        .crop = CropRect{0, 0, 1, 0.5},
        .disabledBricks = std::vector<std::string>{}};
    const auto result = exported(picture("base.png"), folder / "out.png", edits, 10);
    EXPECT_EQ(result.width, 10);
    EXPECT_EQ(result.height, 8);
    const auto image = bitmap(folder / "out.png");
    EXPECT_GT(image.row(4)[4 * 2 + 2], 200) << "the blue field came to the left, and is brighter";
    EXPECT_GT(image.row(4)[4 * 8], 220);
}

TEST_F(PhotoExport, keepsAlphaWhereTheFormatHasIt)
{
    exported(picture("half.png"), folder / "out.webp");
    EXPECT_NEAR(bitmap(folder / "out.webp").bytes.at(3), 128, 1);
    exported(picture("half.png"), folder / "out.jpg");
    EXPECT_NEAR(bitmap(folder / "out.jpg").bytes.at(0), (200 + 255) / 2, 4) << "over white";
}

TEST_F(PhotoExport, neverWritesOverAnOriginal)
{
    const auto source = folder.write("a.png", readFile(picture("base.png")));
    fs::create_symlink(source, folder / "link.png");
    fs::create_hard_link(source, folder / "twin.png");
    const auto held = folder / "held.png";
    fs::create_symlink(folder.write("target.png", "target"), held);
    fs::create_symlink(folder / "target.png", folder / "another link.png");
    fs::create_symlink(folder / "nothing", folder / "dangling.png");
    fs::create_directories(folder / "Old.aplibrary/Masters");
    fs::create_directories(folder / "Old.migratedaplibrary");
    folder.write("Renamed/Database/apdb/Library.apdb", "");
    fs::create_directory_symlink(folder / "Renamed", folder / "led");
    const auto isOriginal = [&](const fs::path& file) { return file == held; };
    for (const auto* const name : {"a.png", "./a.png", "link.png", "twin.png", "held.png", "another link.png",
             "dangling.png", "Old.aplibrary/Masters/new.jpg", "Old.migratedaplibrary/new.jpg",
             "Renamed/new.jpg", "led/new.jpg"})
        EXPECT_THROW(exportPhoto(reader, tool, {{source, {}, 0}, folder / name, 90, {}, {}}, isOriginal, {}),
            std::runtime_error)
            << name;
    EXPECT_EQ(readFile(source), readFile(picture("base.png")));
    EXPECT_EQ(readFile(held), "target");
}

TEST_F(PhotoExport, leavesNothingBehindWhereItFails)
{
    const auto source = folder.write("a.png", readFile(picture("base.png")));
    EXPECT_THROW(exported(source, folder / "out.heic"), std::invalid_argument);
    EXPECT_THROW(exported(source, folder / "nowhere/out.jpg"), std::system_error);
    EXPECT_THROW(
        exported(folder.write("broken.png", "\x89PNG\r\n\x1A\n???"), folder / "out.jpg"), ImageError);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2);
}

TEST_F(PhotoExport, takesAsLongANameAsThereCanBe)
{
    const auto name = std::string(251, 'n') + ".jpg";
    const auto source = folder.write("a.jpg", readFile(picture("turned6.jpg")));
    EXPECT_EQ(exported(source, folder / name).exifFailure, std::nullopt);
    EXPECT_EQ(bitmap(folder / name).width, 48);
}

} // namespace korvo
