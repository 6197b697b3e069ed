#include "metadata/DateAndPlaceSteps.h"

#include "catalog/store/LibraryActions.h"
#include "metadata/ExifReader.h"
#include "tests/metadata/FakeTool.h"
#include "tests/metadata/Fixture.h"
#include "tests/metadata/OpenLibrary.h"

namespace korvo {

namespace {

using Texts = std::vector<std::string>;

} // namespace

TEST(DateAndPlaceSteps, shiftsDatesAsAStepThatTakesThemBackWhereTheyWereMoved)
{
    OpenLibrary library(3);
    auto& store = *library.store;
    const auto dates = [&] {
        std::vector<double> all;
        for (const PhotoID id : library.ids)
            all.push_back(store.list().find(id)->captureDate.value_or(0));
        return all;
    };
    for (const PhotoID id : library.ids)
        store.catalog().shiftCaptureDate(id, 0); // from then on the date is the catalog's
    store.reload();
    const auto before = dates();
    library.exiftool.failing = "2.jpg";
    shiftDates(*library.writeBack, store, library.ids, 60);
    EXPECT_THROW(shiftDates(*library.writeBack, store, library.ids, 60), FilesBusy);
    setRating(store, only(1), 5);
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(library.writeBack->statusMessage(), "Moved 2, failed 1 — see marked photos.");
    EXPECT_EQ(store.undoTitle(), "Set Rating") << "which was done meanwhile";
    store.undo();
    EXPECT_EQ(store.undoTitle(), "Shift Capture Dates");
    for (std::size_t i = 0; i < before.size(); ++i)
        EXPECT_EQ(dates()[i], before[i] + 60);
    library.exiftool.failing = "3.jpg";
    const auto made = library.calls();
    store.undo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(dates(), before);
    EXPECT_EQ(library.calls(), made + 2) << "the second file was never moved";
    EXPECT_EQ(store.undoTitle(), "Shift Capture Dates") << "for the third file still is";
    library.exiftool.failing.clear();
    store.undo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(dates(), before);
    EXPECT_EQ(library.exiftool.calls().back(), "-AllDates-=0:0:0 0:1:0 3.jpg");
    EXPECT_EQ(library.calls(), made + 3);
    EXPECT_EQ(store.undoTitle(), std::nullopt);
    store.redo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(library.calls(), made + 6);
    for (std::size_t i = 0; i < before.size(); ++i)
        EXPECT_EQ(dates()[i], before[i] + 60);
}

TEST(DateAndPlaceSteps, takesPositionsBackToWhatEachPhotoHad)
{
    OpenLibrary library(2);
    auto& store = *library.store;
    store.catalog().setUserPosition(1, 10, 20);
    setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(store.list().find(2)->latitude, 48);
    store.undo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(library.said,
        (Texts{"Locating 1 of 2…", "Locating 2 of 2…", "Located 2 photos.", "Taking back 1 of 2…",
            "Taking back 2 of 2…", "Took back “Set Position” for 2 photos."}));
    EXPECT_EQ(store.list().find(1)->latitude, 10);
    EXPECT_FALSE(store.list().find(2)->latitude);
    EXPECT_EQ(library.exiftool.calls(),
        (Texts{"-GPSLatitude=48 1.jpg", "-GPSLatitude=48 2.jpg", "-GPS:all= 1.jpg", "-GPS:all= 2.jpg"}));
    store.redo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(store.list().find(1)->longitude, 11);
    store.undo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(store.list().find(1)->longitude, 20);
}

TEST(DateAndPlaceSteps, takesNoPositionFromAFileThatItNeverWrote)
{
    OpenLibrary library(2);
    auto& store = *library.store;
    library.exiftool.failing = "2.jpg";
    setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
    ASSERT_TRUE(library.finish());
    library.exiftool.failing.clear();
    const auto made = library.exiftool.calls().size();
    store.undo();
    ASSERT_TRUE(library.finish());
    const auto calls = library.exiftool.calls();
    EXPECT_EQ(
        Texts(calls.begin() + static_cast<std::ptrdiff_t>(made), calls.end()), Texts{"-GPS:all= 1.jpg"});
    EXPECT_FALSE(store.list().find(2)->latitude);
    EXPECT_FALSE(store.catalog().isPositionRead(2)) << "its own is still to be read";
}

TEST(DateAndPlaceSteps, givesAPhotoThatWasNeverReadThePositionOfItsFile)
{
    OpenLibrary library(1);
    auto& store = *library.store;
    const auto file = store.list().find(1)->path();
    std::filesystem::copy_file(
        fixture("camera.jpg"), file, std::filesystem::copy_options::overwrite_existing);
    library.exiftool.failing = "1.jpg";
    setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
    ASSERT_TRUE(library.finish());
    store.undo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(store.list().find(1)->latitude, readGPS(file)->latitude);
}

TEST(DateAndPlaceSteps, givesAFileBackThePositionThatItHeldAndThePhotoItsOwn)
{
    const FakeTool real(FakeTool::Real{});
    OpenLibrary library(1, "photos", &real.tool);
    auto& store = *library.store;
    const auto file = store.list().find(1)->path(), away = library.folder / "away.jpg";
    const Coordinate held{-33.86, -70.5}; // in its XMP
    std::filesystem::copy_file(fixture("plain.jpg"), file, std::filesystem::copy_options::overwrite_existing);
    real.tool.run({"-q", "-overwrite_original", "-XMP-exif:GPSLatitude=33.86S",
                      "-XMP-exif:GPSLongitude=70.5W", file.string()},
        {});
    store.catalog().setUserPosition(1, 10, 20); // another program has written the file since
    setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(readGPS(file), (Coordinate{48, 11}));
    std::filesystem::rename(file, away);
    store.undo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(store.list().find(1)->latitude, 10) << "also where the file cannot be put back";
    setRating(store, only(1), 3);
    store.undo();
    std::filesystem::rename(away, file);
    store.undo();
    ASSERT_TRUE(library.finish());
    const auto back = readGPS(file);
    EXPECT_TRUE(back && isSamePlace(*back, held));
    EXPECT_EQ(store.list().find(1)->latitude, 10);
}

TEST(DateAndPlaceSteps, keepsWhatAPhotoHadUntilItIsBackWhateverEndsTheWayBack)
{
    OpenLibrary library(2);
    auto& store = *library.store;
    store.catalog().setUserPosition(1, 10, 20);
    store.catalog().setUserPosition(2, 30, 40);
    setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
    ASSERT_TRUE(library.finish());
    store.catalog().database().exec("CREATE TRIGGER full BEFORE UPDATE ON photos WHEN NEW.id = 2 "
                                    "BEGIN SELECT RAISE(ABORT, 'disk full'); END");
    store.undo();
    ASSERT_TRUE(library.finish());
    EXPECT_TRUE(library.writeBack->hasFailed());
    EXPECT_EQ(store.list().find(1)->latitude, 10) << "and it is shown";
    EXPECT_EQ(store.list().find(2)->latitude, 48);
    store.catalog().database().exec("DROP TRIGGER full");
    store.undo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(store.list().find(1)->latitude, 10);
    EXPECT_EQ(store.list().find(2)->latitude, 30);
}

TEST(DateAndPlaceSteps, takesBackWhatTheToolWroteThoughTheCatalogCouldNotNoteIt)
{
    OpenLibrary library(1);
    auto& store = *library.store;
    store.catalog().database().exec("CREATE TRIGGER full BEFORE UPDATE OF mtime ON photos "
                                    "BEGIN SELECT RAISE(ABORT, 'disk full'); END");
    setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
    ASSERT_TRUE(library.finish());
    EXPECT_TRUE(library.writeBack->hasFailed());
    store.catalog().database().exec("DROP TRIGGER full");
    const auto made = library.calls();
    store.undo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(library.calls(), made + 1) << "the file was written";
}

TEST(DateAndPlaceSteps, takesBackWhatTheToolWroteThoughTheFileWentAwayBehindIt)
{
    const auto position = [](auto&... work) { setPosition(work..., only(1), Coordinate{48, 11}); };
    const auto dates = [](auto&... work) { shiftDates(work..., only(1), 60); };
    using Adjust = std::function<void(FileWork&, LibraryStore&)>;
    for (const auto& correct : {Adjust(position), Adjust(dates)}) {
        const FakeTool tool("for file; do :; done\nmv \"$file\" \"$file.away\"");
        OpenLibrary library(1, "photos", &tool.tool);
        const auto file = library.store->list().find(1)->path(), called = tool.folder / "called";
        correct(*library.writeBack, *library.store);
        ASSERT_TRUE(library.finish());
        EXPECT_NE(library.writeBack->failureOf(1), nullptr);
        std::filesystem::rename(file.native() + ".away", file);
        tool.folder.write("exiftool", "#!/bin/sh\n: > '" + called.native() + "'");
        library.store->undo();
        ASSERT_TRUE(library.finish());
        EXPECT_TRUE(std::filesystem::exists(called));
    }
}

TEST(DateAndPlaceSteps, keepsAStepInItsPlaceUntilItIsTakenBackOrTheSamePhotosFailAgain)
{
    const FakeTool tool("exit 0");
    const auto program = tool.folder / "exiftool", away = tool.folder / "away";
    OpenLibrary library(1, "photos", &tool.tool);
    auto& store = *library.store;
    setRating(store, only(1), 3);
    setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
    ASSERT_TRUE(library.finish());
    const auto undo = [&] {
        store.undo();
        EXPECT_TRUE(library.finish());
        return store.undoTitle();
    };
    std::filesystem::rename(program, away);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(undo(), "Set Position");
    EXPECT_TRUE(library.writeBack->exiftoolMissing());
    setRating(store, only(1), 5);
    EXPECT_EQ(undo(), "Set Position") << "which nothing else could take back";
    std::filesystem::rename(away, program);
    tool.folder.write("exiftool", "#!/bin/sh\nexit 1");
    EXPECT_EQ(undo(), "Set Position");
    EXPECT_EQ(undo(), "Set Rating") << "the file may be gone for good";
    tool.folder.write("exiftool", "#!/bin/sh\nexit 0");
    store.redo();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(store.list().find(1)->latitude, 48);
    EXPECT_EQ(undo(), "Set Rating");
    EXPECT_FALSE(store.list().find(1)->latitude);
    EXPECT_EQ(store.redoTitle(), "Set Position");
}

TEST(DateAndPlaceSteps, putsAStepInItsPlaceWhateverIsDoneWhileItIsTakenBackOrDoneAgain)
{
    for (const std::string failing : {"", "1.jpg"}) {
        OpenLibrary library(1);
        auto& store = *library.store;
        setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
        ASSERT_TRUE(library.finish());
        const auto rateDuring = [&](auto action) {
            library.exiftool.hold();
            action();
            EXPECT_THROW(store.undo(), DatabaseError);
            EXPECT_THROW(store.redo(), DatabaseError);
            setRating(store, only(1), 3);
            library.exiftool.letGo();
            ASSERT_TRUE(library.finish());
        };
        library.exiftool.failing = failing;
        rateDuring([&] { store.undo(); });
        library.exiftool.failing.clear();
        EXPECT_EQ(store.undoTitle(), "Set Rating");
        store.undo();
        EXPECT_EQ(store.undoTitle(), failing.empty() ? std::nullopt : std::optional("Set Position"));
        if (failing.empty())
            continue;
        store.undo();
        ASSERT_TRUE(library.finish());
        rateDuring([&] { store.redo(); });
        EXPECT_FALSE(store.redoTitle());
        store.undo();
        EXPECT_EQ(store.undoTitle(), "Set Position");
    }
}

TEST(DateAndPlaceSteps, doesAgainOnlyWhatWasTakenBack)
{
    OpenLibrary library(2);
    auto& store = *library.store;
    library.exiftool.hold();
    setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
    ASSERT_TRUE(library.main.runUntil([&] { return !library.said.empty(); }));
    library.writeBack->stopSaving();
    ASSERT_TRUE(library.finish());
    library.exiftool.letGo();
    for (const auto& retrace : {&LibraryStore::undo, &LibraryStore::redo}) {
        (store.*retrace)();
        ASSERT_TRUE(library.finish());
    }
    EXPECT_EQ(store.list().find(1)->latitude, 48);
    EXPECT_FALSE(store.list().find(2)->latitude) << "which the stop had spared";
}

TEST(DateAndPlaceSteps, takesBackWhatTheToolWroteThoughItIsNotWhatItShouldBe)
{
    const auto copy = [](const char* name) {
        return "#!/bin/sh\nfor file; do :; done\ncp '" + fixture(name).string() + "' \"$file\"";
    };
    const FakeTool tool(copy("camera.jpg"));
    OpenLibrary library(1, "photos", &tool.tool);
    auto& store = *library.store;
    const auto file = store.list().find(1)->path();
    std::filesystem::copy_file(fixture("plain.jpg"), file, std::filesystem::copy_options::overwrite_existing);
    setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
    ASSERT_TRUE(library.finish());
    EXPECT_NE(library.writeBack->failureOf(1), nullptr);
    tool.folder.write("exiftool", copy("plain.jpg"));
    store.undo();
    ASSERT_TRUE(library.finish());
    EXPECT_FALSE(readGPS(file));
    EXPECT_FALSE(store.undoTitle());
}

} // namespace korvo
