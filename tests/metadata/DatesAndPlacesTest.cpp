#include "metadata/DatesAndPlaces.h"

#include "metadata/ExifReader.h"
#include "metadata/FileFields.h"
#include "tests/metadata/ExifTool.h"
#include "tests/metadata/FakeExifTool.h"
#include "tests/metadata/FakeTool.h"
#include "tests/metadata/Fixture.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

using Texts = std::vector<std::string>;

void nowhere(std::size_t, std::size_t) { }

struct Adjusted : TestLibrary {
    PhotoID add(const std::string& name, const std::string& contents = "camera.jpg")
    {
        const auto path = folder.write(name, readFile(fixture(contents)));
        NewPhoto photo{.path = path, .fileDate = 100};
        return catalog->addPhotos(std::span(&photo, 1)).front().id;
    }

    FilesWritten shift(std::vector<PhotoID> photos, double seconds, const std::stop_token& stop = {})
    {
        return correctPhotos(*catalog, photos, dateShiftBy(*catalog, seconds), exiftool.tool, stop, nowhere);
    }

    FilesWritten locate(std::vector<PhotoID> photos, const std::optional<Coordinate>& position)
    {
        return correctPhotos(
            *catalog, photos, positionChangeTo(*catalog, position), exiftool.tool, {}, nowhere);
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

TEST(DatesAndPlaces, writeNoPositionIntoDamagedXmpWhichTheToolWouldMakeAnew)
{
    Adjusted library;
    const FakeTool real(FakeTool::Real{});
    const auto photo = library.add("a.jpg", "plain.jpg");
    const auto file = library.folder / "a.jpg";
    real.tool.run(
        {"-q", "-overwrite_original", "-XMP-dc:Title=Kept", "-XMP-exif:GPSLatitude=10N", file.string()}, {});
    auto half = readFile(file);
    half.replace(half.find("</rdf:RDF>"), 10, "</rdf:XXX>");
    library.folder.write("a.jpg", half);
    const auto result = correctPhotos(*library.catalog, only(photo),
        positionChangeTo(*library.catalog, Coordinate{48, 11}), real.tool, {}, nowhere);
    ASSERT_EQ(result.failures.size(), 1U);
    EXPECT_NE(result.failures.front().message.find("its XMP is damaged"), std::string::npos);
    EXPECT_EQ(readFile(file), half);
    EXPECT_EQ(library.item(photo).latitude, 48);
}

TEST(DatesAndPlaces, shiftTheDateThatAFilmIsKnownBy)
{
    Adjusted library;
    const FakeTool real(FakeTool::Real{});
    const auto film = library.add("a.mov", "phone.mov");
    EXPECT_EQ(
        correctPhotos(*library.catalog, only(film), dateShiftBy(*library.catalog, 90), real.tool, {}, nowhere)
            .done,
        1U);
    const auto inFile = readExif(library.folder / "a.mov").value_or(PhotoExifInfo());
    EXPECT_EQ(library.item(film).captureDate, inFile.captureTimestamp);
    EXPECT_NE(readExif(fixture("phone.mov"))->captureTimestamp, inFile.captureTimestamp);
}

TEST(DatesAndPlaces, setAndTakePositionsInFilesOfEveryKind)
{
    const Coordinate south{-33.86, -70.5};
    const Texts written{"camera.jpg", "camera.tif", "camera.png", "camera.heic", "canon.cr3", "canon.crw",
        "titled.gif", "place.mp4", "phone.mov"};
    const FakeTool real(FakeTool::Real{});
    Adjusted library;
    std::vector<PhotoID> photos;
    std::vector<std::filesystem::path> files;
    for (const auto& name : written) {
        photos.push_back(library.add(name, name));
        files.push_back(library.folder / name);
    }
    real.tool.run({"-q", "-overwrite_original", "-XMP-exif:GPSLatitude=10N", "-XMP-exif:GPSLongitude=20E",
                      files.front().string()},
        {});
    const auto locate = [&](const std::optional<Coordinate>& position) {
        const auto result = correctPhotos(
            *library.catalog, photos, positionChangeTo(*library.catalog, position), real.tool, {}, nowhere);
        EXPECT_EQ(result.done, photos.size());
        for (const auto& failure : result.failures)
            ADD_FAILURE() << failure.message;
        return askExifTool(files, "-G1",
            {"Composite:GPSLatitude", "Composite:GPSLongitude", "XMP-exif:GPSLatitude",
                "XMP-exif:GPSLongitude", "ItemList:GPSCoordinates", "Keys:GPSCoordinates",
                "UserData:GPSCoordinates"});
    };
    for (const auto& [file, answer] : locate(south)) {
        const auto held = readGPS(file);
        EXPECT_TRUE(held && isSamePlace(*held, south)) << file;
        EXPECT_GT(answer.size(), 1U) << file;
        for (const auto& [tag, values] : answer) {
            const auto* const start = tag == "SourceFile" ? "/"
                : tag.ends_with("Longitude")              ? "-70.5"
                                                          : "-33.86";
            EXPECT_TRUE(values.front().starts_with(start)) << file << ' ' << tag << ' ' << values.front();
        }
    }
    EXPECT_EQ(library.item(photos.front()).latitude, -33.86);
    for (const auto& [file, answer] : locate(std::nullopt)) {
        EXPECT_FALSE(readGPS(file)) << file;
        EXPECT_EQ(answer.size(), 1U) << file;
    }
    EXPECT_FALSE(library.item(photos.front()).latitude);
    EXPECT_TRUE(library.catalog->photosToLocate(10).empty()) << "the file's position does not come back";
}

TEST(DatesAndPlaces, failWhereTheToolLeavesAPositionAsItWas)
{
    Adjusted library; // whose tool writes nothing, and does not say so
    const auto photo = library.add("a.jpg"), version = library.version(photo);
    const auto result = library.locate({version}, Coordinate{-33.5, 18.25});
    EXPECT_EQ(result.done, 0U);
    ASSERT_EQ(result.failures.size(), 1U);
    EXPECT_EQ(library.item(photo).latitude, -33.5);
    EXPECT_EQ(library.item(version).longitude, 18.25);
    EXPECT_EQ(library.locate({photo}, std::nullopt).failures.size(), 1U);
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

TEST(DatesAndPlaces, leaveTheOtherPhotosAloneWhenTheToolVanishes)
{
    Adjusted library;
    const FakeTool once("rm \"$0\"");
    const std::vector photos{library.add("a.jpg"), library.add("b.jpg"), library.add("c.jpg")};
    const auto result
        = correctPhotos(*library.catalog, photos, dateShiftBy(*library.catalog, 1), once.tool, {}, nowhere);
    EXPECT_EQ(result.done, 1U);
    EXPECT_EQ(result.failures.size(), 1U);
    EXPECT_TRUE(result.fault.starts_with("exiftool not found."));
    EXPECT_FALSE(library.item(photos.back()).captureDate);
}

TEST(DatesAndPlaces, doNothingWithoutTheToolOrOnceStopped)
{
    Adjusted library;
    const auto photo = library.add("a.jpg");
    FakeProcessLauncher launcher;
    const ExifTool missing(launcher, {.bundled = "/nowhere", .installed = {}, .searchPath = ""});
    EXPECT_THROW(
        correctPhotos(*library.catalog, only(photo), dateShiftBy(*library.catalog, 1), missing, {}, nowhere),
        ExifToolError);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(library.shift({photo}, 1, stop.get_token()).stopped);
    EXPECT_FALSE(library.item(photo).captureDate);
    EXPECT_TRUE(library.exiftool.calls().empty());
}

} // namespace korvo
