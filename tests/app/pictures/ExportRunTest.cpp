#include "app/pictures/ExportRun.h"
#include "metadata/ExifReader.h"
#include "platform/linux/images/SystemImageReader.h"
#include "tests/support/FakeProcessLauncher.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

namespace korvo {

namespace {

/// While it reads, somebody else takes a name.
class CompetingReader : public ImageReader {
public:
    CompetingReader(ImageReader& reader, std::filesystem::path name) : reader_(reader), name_(std::move(name))
    { }

    DecodedImage read(
        const std::filesystem::path& file, const ImageRequest& request, const std::stop_token& stop) override
    {
        std::ofstream(name_) << "another's";
        return reader_.read(file, request, stop);
    }

private:
    ImageReader& reader_;
    std::filesystem::path name_;
};

struct ExportRun : ::testing::Test, TestLibrary {
    PhotoItem file(const std::string& name, const std::string& contents)
    {
        PhotoItem item;
        const auto path = folder.write(name, contents);
        item.folder = SharedText(path.parent_path().string());
        item.filename = SharedText(name);
        return item;
    }
    static std::string picture()
    {
        return readFile(std::filesystem::path(KORVO_TEST_DATA) / "images" / "turned6.jpg");
    }

    static std::string cameraPicture()
    {
        return readFile(std::filesystem::path(KORVO_TEST_DATA) / "metadata" / "camera.jpg");
    }

    std::unique_ptr<ProcessLauncher> launcher = systemProcessLauncher();
    ExifTool tool{*launcher, {}};
    SystemImageReader reader{*launcher, KORVO_DECODER};
    std::vector<std::size_t> progress;
    std::stop_source cancel;

    ExportResult run(
        const std::vector<PhotoItem>& photos, const ExportPlan& plan, const std::stop_token& stop = {})
    {
        return runExport({*catalog, reader, tool}, photos, plan, stop,
            [this](std::size_t done) { progress.push_back(done); });
    }
};

} // namespace

TEST_F(ExportRun, leavesOutWherePhotosWereTakenIfAsked)
{
    const auto photo = file("a.jpg", cameraPicture());
    for (const auto position : {Position::keep, Position::strip}) {
        const auto out = folder / (position == Position::keep ? "kept" : "stripped");
        EXPECT_EQ(run({photo}, {.folder = out, .position = position}).written, 1U);
        EXPECT_EQ(readGPS(out / "a.jpg").has_value(), position == Position::keep);
    }
}

TEST_F(ExportRun, saysWhereAPhotoWasTakenAsTheLibraryDoes)
{
    auto photo = file("a.jpg", cameraPicture());
    auto bare = file("b.jpg", picture());
    photo.gpsRead = true; // and cleared, in the library alone
    bare.latitude = -33.86;
    bare.longitude = -70.5;
    EXPECT_EQ(run({photo, bare}, {.folder = folder / "out"}).written, 2U);
    EXPECT_FALSE(readGPS(folder / "out/a.jpg"));
    const auto given = readGPS(folder / "out/b.jpg");
    ASSERT_TRUE(given);
    EXPECT_TRUE(isSamePlace(*given, {-33.86, -70.5})) << given->latitude << ' ' << given->longitude;
}

TEST_F(ExportRun, namesByThePatternReplacesNothingAndListsWhatFails)
{
    const auto out = folder / "new" / "folder";
    const auto a = file("a.jpg", picture());
    auto version = a;
    version.editsJSON = SharedText(storedEdits({.rotation = 1}));
    auto odd = a;
    odd.editsJSON = SharedText("no record");
    const std::vector photos{a, version, file("b.jpg", "no picture"), odd};
    const ExportPlan plan{.folder = out, .format = PictureFormat::png, .size = 24, .pattern = "x {name}"};
    const auto result = run(photos, plan);
    EXPECT_EQ(result.written, 2U);
    EXPECT_EQ(progress, (std::vector<std::size_t>{1, 2, 3, 4}));
    ASSERT_EQ(result.failures.size(), 2U);
    EXPECT_NE(result.failures[0].find("b.jpg"), std::string::npos) << result.failures[0];
    EXPECT_NE(result.failures[1].find("a.jpg"), std::string::npos) << result.failures[1];
    const auto written = std::get<Bitmap>(reader.read(out / "x a.png", {}, {}).pixels);
    EXPECT_EQ(std::pair(written.width, written.height), std::pair(24, 16));
    EXPECT_EQ(std::get<Bitmap>(reader.read(out / "x a-2.png", {}, {}).pixels).height, 24);

    const auto before = readFile(out / "x a.png");
    run({version}, plan);
    EXPECT_EQ(readFile(out / "x a.png"), before);
    EXPECT_TRUE(std::filesystem::exists(out / "x a-3.png"));
}

TEST_F(ExportRun, leavesWhatAnotherRunWroteMeanwhile)
{
    const auto photo
        = file("a.png", readFile(std::filesystem::path(KORVO_TEST_DATA) / "images" / "base.png"));
    CompetingReader competing(reader, folder / "out/a.jpg");
    const auto result = runExport(
        {*catalog, competing, tool}, std::vector{photo}, {.folder = folder / "out"}, {}, [](std::size_t) {});
    EXPECT_EQ(result.written, 1U);
    EXPECT_EQ(readFile(folder / "out/a.jpg"), "another's");
    EXPECT_TRUE(std::filesystem::exists(folder / "out/a-2.jpg"));
}

TEST_F(ExportRun, removesWhatAKilledExportLeftInTheFolder)
{
    const auto left = folder.write("out/.korvo-export-1.jpg", "half"),
               living = folder.write("out/.korvo-export-2.jpg", "another's"),
               hidden = folder.write("out/.mine.jpg", "the user's");
    for (const auto& file : {left, hidden})
        std::filesystem::last_write_time(
            file, std::filesystem::file_time_type::clock::now() - std::chrono::days(2));
    run({file("a.jpg", picture())}, {.folder = folder / "out"});
    EXPECT_FALSE(std::filesystem::exists(left));
    EXPECT_TRUE(std::filesystem::exists(living));
    EXPECT_TRUE(std::filesystem::exists(hidden));
}

TEST_F(ExportRun, stopsWhenAsked)
{
    const auto photo = file("a.jpg", picture());
    ExportResult result;
    std::jthread([&](const std::stop_token& stop) {
        while (!stop.stop_requested())
            std::this_thread::yield();
        result = run({photo}, {.folder = folder / "out"}, stop);
    }).request_stop();
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(result.written, 0U);
    EXPECT_TRUE(result.failures.empty());
}

TEST_F(ExportRun, keepsNothingOfAPhotoThatACancelCutOff)
{
    FakeProcessLauncher cancelling;
    cancelling.answer = [&](const auto&, const auto&) -> ProcessOutput {
        cancel.request_stop();
        throw ProcessError(ProcessError::Case::stopped, "The program was stopped.");
    };
    const ExifTool cut(cancelling, {.bundled = "/bin/true", .installed = {}, .searchPath = ""});
    const auto photo = file("a.jpg", cameraPicture());
    const auto result = runExport({*catalog, reader, cut}, std::vector{photo}, {.folder = folder / "out"},
        cancel.get_token(), [](std::size_t) {});
    EXPECT_EQ(result.written, 0U);
    EXPECT_TRUE(result.failures.empty());
    EXPECT_TRUE(std::filesystem::is_empty(folder / "out"));
}

} // namespace korvo
