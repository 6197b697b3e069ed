#include "app/pictures/ExportRun.h"
#include "metadata/ExifReader.h"
#include "platform/linux/images/SystemImageReader.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <thread>

namespace korvo {

namespace {

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

    std::unique_ptr<ProcessLauncher> launcher = systemProcessLauncher();
    ExifTool tool{*launcher, {}};
    SystemImageReader reader{*launcher, KORVO_DECODER};
    std::vector<std::size_t> progress;

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
    const auto photo
        = file("a.jpg", readFile(std::filesystem::path(KORVO_TEST_DATA) / "metadata" / "camera.jpg"));
    for (const auto position : {Position::keep, Position::strip}) {
        const auto out = folder / (position == Position::keep ? "kept" : "stripped");
        EXPECT_EQ(run({photo}, {.folder = out, .position = position}).written, 1U);
        EXPECT_EQ(readGPS(out / "a.jpg").has_value(), position == Position::keep);
    }
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

} // namespace korvo
