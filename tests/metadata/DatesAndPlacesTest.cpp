#include "metadata/DatesAndPlaces.h"

#include "metadata/FileFields.h"
#include "tests/metadata/FakeExifTool.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

using Texts = std::vector<std::string>;

void nowhere(std::size_t, std::size_t) { }

struct Adjusted : TestLibrary {
    PhotoID add(const std::string& name)
    {
        const auto path = folder.write(name, readFile(std::string(KORVO_TEST_DATA) + "/metadata/camera.jpg"));
        NewPhoto photo{.path = path, .fileDate = 100};
        return catalog->addPhotos(std::span(&photo, 1)).front().id;
    }

    FilesWritten shift(std::vector<PhotoID> photos, double seconds, const std::stop_token& stop = {})
    {
        return shiftDates(*catalog, photos, seconds, exiftool.tool, stop, nowhere);
    }

    FilesWritten locate(std::vector<PhotoID> photos, const std::optional<Coordinate>& position)
    {
        return setLocation(*catalog, photos, position, exiftool.tool, {}, nowhere);
    }

    FakeExifTool exiftool;
};

} // namespace

TEST(DatesAndPlaces, shiftTheDatesOfPhotosOnceInCatalogAndFiles)
{
    Adjusted library;
    const auto photo = library.add("a.jpg"), undated = library.add("b.jpg");
    const auto original = library.add("A.aplibrary/c.jpg");
    library.folder.write("b.jpg", "x");
    const auto version = library.version(photo);
    EXPECT_EQ(library.shift({photo, version, undated, original}, -90).done, 3U);
    const auto date = library.item(photo).captureDate;
    ASSERT_TRUE(date) << "it was read from the file first";
    EXPECT_EQ(library.item(version).captureDate, date);
    EXPECT_EQ(library.item(undated).captureDate, 10) << "the file's date stands in";
    EXPECT_EQ(library.item(original).captureDate, date);
    EXPECT_EQ(
        library.exiftool.calls(), (Texts{"-AllDates-=0:0:0 0:1:30 a.jpg", "-AllDates-=0:0:0 0:1:30 b.jpg"}));
    library.shift({version}, 90.0);
    EXPECT_EQ(library.item(photo).captureDate, *date + 90);
}

TEST(DatesAndPlaces, setAndTakePositions)
{
    Adjusted library;
    const auto photo = library.add("a.jpg"), version = library.version(photo);
    EXPECT_EQ(library.locate({version}, Coordinate{-33.5, 18.25}).done, 1U);
    EXPECT_EQ(library.item(photo).latitude, -33.5);
    EXPECT_EQ(library.item(version).longitude, 18.25);
    library.locate({photo}, std::nullopt);
    EXPECT_FALSE(library.item(version).latitude);
    EXPECT_EQ(library.exiftool.calls(), (Texts{"-GPSLatitude=33.5 a.jpg", "-GPS:all= a.jpg"}));
    EXPECT_TRUE(library.catalog->photosToLocate(10).empty()) << "the file's position does not come back";
}

TEST(DatesAndPlaces, countFilesThatFailAndGoOn)
{
    Adjusted library;
    const auto first = library.add("a.jpg"), second = library.add("b.jpg"), gone = library.add("gone.jpg");
    std::filesystem::remove(library.folder / "gone.jpg");
    library.exiftool.failing = "a.jpg";
    const auto result = library.shift({first, second, gone}, 1);
    EXPECT_EQ(result.done, 1U);
    ASSERT_EQ(result.failures.size(), 2U);
    EXPECT_EQ(result.failures.front().message, (library.folder / "a.jpg").string() + ": Error: no");
}

TEST(DatesAndPlaces, tellWhatIsDoneWhenTheCatalogFails)
{
    Adjusted library;
    const auto first = library.add("a.jpg"), second = library.add("b.jpg"), third = library.add("c.jpg");
    library.catalog->database().exec(
        "CREATE TRIGGER full BEFORE UPDATE ON photos WHEN NEW.filename = 'b.jpg' "
        "BEGIN SELECT RAISE(ABORT, 'disk full'); END");
    const auto result = library.shift({first, second, third}, 1);
    EXPECT_EQ(result.done, 1U);
    EXPECT_NE(result.fault.find("b.jpg: "), std::string::npos) << result.fault;
    EXPECT_EQ(library.exiftool.calls(), Texts{"-AllDates+=0:0:0 0:0:1 a.jpg"});
}

TEST(DatesAndPlaces, doNothingWithoutTheToolOrOnceStopped)
{
    Adjusted library;
    const auto photo = library.add("a.jpg");
    FakeProcessLauncher launcher;
    const ExifTool missing(launcher, {.bundled = "/nowhere", .installed = {}, .searchPath = ""});
    EXPECT_THROW(shiftDates(*library.catalog, only(photo), 1, missing, {}, nowhere), ExifToolError);
    EXPECT_THROW(
        setLocation(*library.catalog, only(photo), std::nullopt, missing, {}, nowhere), ExifToolError);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(library.shift({photo}, 1, stop.get_token()).stopped);
    EXPECT_FALSE(library.item(photo).captureDate);
    EXPECT_TRUE(library.exiftool.calls().empty());
}

} // namespace korvo
