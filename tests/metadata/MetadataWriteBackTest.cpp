#include "metadata/MetadataWriteBack.h"

#include "catalog/store/LibraryActions.h"
#include "metadata/AdjustmentSteps.h"
#include "metadata/ExifReader.h"
#include "platform/FileDefaults.h"
#include "tests/metadata/FakeExifTool.h"
#include "tests/metadata/FakeTool.h"
#include "tests/metadata/Fixture.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/StoreActions.h"
#include "tests/support/TestLibrary.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace korvo {

namespace {

using namespace std::chrono_literals;
using Autosave = MetadataWriteBack::Autosave;
using Texts = std::vector<std::string>;

/// An open library of photos "1.jpg", "2.jpg" ... that nobody has described yet.
struct OpenLibrary : TestLibrary {
    explicit OpenLibrary(int count, const std::string& where = "photos", const ExifTool* tool = nullptr)
    {
        for (int i = 1; i <= count; ++i) {
            const auto path = folder.write(where + "/" + std::to_string(i) + ".jpg", "x");
            NewPhoto photo{.path = path, .fileDate = modificationTime(path), .fileSize = 1};
            ids.push_back(catalog->addPhotos(std::span(&photo, 1)).front().id);
        }
        store.emplace(main, std::move(catalog));
        writeBack.emplace(main, *store, tool ? *tool : exiftool.tool, defaults);
        connection = writeBack->changed.connect([this] {
            if (writeBack->statusMessage() != (said.empty() ? "" : said.back()))
                said.push_back(writeBack->statusMessage());
        });
    }

    void title(PhotoID id, const char* title) { setMetadata(*store, only(id), {.title = title}); }
    bool isDirty(PhotoID id) { return store->list().find(id)->dirty; }
    bool finish()
    {
        return main.runUntil([this] { return !writeBack->isSaving(); });
    }
    std::size_t calls() const { return exiftool.launcher.commands().size(); }

    FakeExifTool exiftool;
    FileDefaults defaults{folder / "config"};
    ManualMainThread main;
    std::vector<PhotoID> ids;
    std::optional<LibraryStore> store;
    std::optional<MetadataWriteBack> writeBack;
    Texts said;
    Connection connection;
};

} // namespace

TEST(MetadataWriteBack, savesAllThatWaitsAMomentAfterTheLastChange)
{
    OpenLibrary library(2);
    library.title(1, "first");
    EXPECT_EQ(library.writeBack->dirtyCount(), 1);
    library.main.advance(1h);
    EXPECT_FALSE(library.writeBack->isSaving()) << "only when it is wanted";

    library.writeBack->setAutosaveToFiles(Autosave::on);
    library.main.advance(2499ms);
    library.title(2, "second");
    library.main.advance(2499ms);
    EXPECT_FALSE(library.writeBack->isSaving());
    setRating(*library.store, only(1), 5); // is no metadata of the kind
    library.main.advance(1ms);
    ASSERT_TRUE(library.writeBack->isSaving());
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(library.said, (Texts{"Saving 1 of 2…", "Saving 2 of 2…", "Saved metadata into 2 files."}));
    EXPECT_EQ(library.exiftool.calls(),
        (Texts{"read 2.jpg", "-XMP-iptcCore:AltTextAccessibility= 1.jpg",
            "-XMP-iptcCore:AltTextAccessibility= 2.jpg"}));
    EXPECT_EQ(library.writeBack->dirtyCount(), 0);
    EXPECT_FALSE(library.isDirty(1));
    library.main.advance(1h);
    EXPECT_EQ(library.calls(), 3U);

    library.title(1, "again");
    library.writeBack->setAutosaveToFiles(Autosave::off);
    library.main.advance(1h);
    EXPECT_EQ(library.calls(), 3U) << "what was about to be saved waits";
    EXPECT_EQ(MetadataWriteBack(library.main, *library.store, library.exiftool.tool, library.defaults)
                  .autosaveToFiles(),
        Autosave::off);
}

TEST(MetadataWriteBack, countsWhatFailsAndDoesNotTryAgainByItself)
{
    OpenLibrary library(3);
    library.writeBack->setAutosaveToFiles(Autosave::on);
    library.exiftool.failing = "2.jpg";
    for (const PhotoID id : library.ids)
        library.title(id, "new");
    library.main.advance(2500ms);
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(library.writeBack->statusMessage(), "Saved 2, failed 1 — see marked photos.");
    EXPECT_EQ(library.writeBack->dirtyCount(), 1);
    EXPECT_TRUE(library.isDirty(2));
    EXPECT_FALSE(library.writeBack->failureOf(1));
    EXPECT_NE(library.writeBack->failureOf(2)->find("2.jpg"), std::string::npos);
    library.main.advance(1h);
    EXPECT_FALSE(library.writeBack->isSaving());

    library.exiftool.failing.clear();
    library.writeBack->saveMetadataToFiles();
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(library.writeBack->statusMessage(), "Saved metadata into 1 file.");
    EXPECT_FALSE(library.writeBack->failureOf(2)) << "the mark goes with the save";
    library.writeBack->saveMetadataToFiles();
    EXPECT_FALSE(library.writeBack->isSaving()) << "nothing waits";
}

TEST(MetadataWriteBack, savesLaterWhatChangesDuringASave)
{
    OpenLibrary library(2);
    library.writeBack->setAutosaveToFiles(Autosave::on);
    library.title(1, "new");
    library.exiftool.hold();
    library.main.advance(2500ms);
    ASSERT_TRUE(library.writeBack->isSaving());
    while (library.calls() == 0) // which photos it writes is settled by then
        std::this_thread::sleep_for(1ms);
    library.writeBack->saveMetadataToFiles(); // is passed over
    try {
        library.writeBack->revertMetadataToAsFound(library.ids);
        ADD_FAILURE();
    } catch (const FilesBusy& refused) {
        EXPECT_STREQ(refused.what(), "A save or generation is running — try again when it finishes.");
    }
    library.title(1, "newer");
    library.title(2, "new");
    library.main.advance(2500ms);
    library.exiftool.letGo();
    ASSERT_TRUE(library.finish());
    EXPECT_TRUE(library.isDirty(2));
    library.main.advance(2500ms);
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(library.writeBack->dirtyCount(), 0);
    EXPECT_EQ(library.exiftool.calls().back(), "-XMP-iptcCore:AltTextAccessibility= 2.jpg");
}

TEST(MetadataWriteBack, revertsToWhatTheFilesHeld)
{
    OpenLibrary library(2);
    library.title(1, "first");
    library.writeBack->saveMetadataToFiles();
    ASSERT_TRUE(library.finish());
    library.title(1, "second");
    library.writeBack->revertMetadataToAsFound(only(1));
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(library.said,
        (Texts{"Saving 1 of 1…", "Saved metadata into 1 file.", "Reverting 1 of 1…",
            "Reverted metadata on 1 photo."}));
    EXPECT_EQ(library.store->list().find(1)->metadata.title, "found");
    EXPECT_FALSE(library.isDirty(1));

    library.title(1, "third");
    library.exiftool.failing = "1.jpg";
    library.writeBack->revertMetadataToAsFound(library.ids);
    ASSERT_TRUE(library.finish());
    EXPECT_EQ(library.writeBack->statusMessage(), "Reverted 1, failed 1 — see marked photos.");
    EXPECT_TRUE(library.isDirty(1)) << "it is to be written still";

    OpenLibrary aperture(1, "A.aplibrary/Masters");
    EXPECT_THROW(aperture.writeBack->revertMetadataToAsFound(aperture.ids), RevertRefused);
    EXPECT_EQ(aperture.calls(), 0U);
}

TEST(MetadataWriteBack, keepsWhatWaitsWhenTheToolIsMissing)
{
    FakeProcessLauncher launcher;
    const ExifTool missing(launcher, {.bundled = "/nowhere", .installed = {}, .searchPath = ""});
    OpenLibrary library(1, "photos", &missing);
    library.title(1, "new");
    library.writeBack->saveMetadataToFiles();
    ASSERT_TRUE(library.finish());
    EXPECT_TRUE(library.writeBack->exiftoolMissing());
    EXPECT_EQ(library.writeBack->dirtyCount(), 1);
    EXPECT_TRUE(library.writeBack->statusMessage().starts_with("exiftool not found."));
}

TEST(MetadataWriteBack, endsAHangingToolWhenItIsStopped)
{
    OpenLibrary library(1);
    library.title(1, "new");
    library.exiftool.hold();
    library.writeBack->saveMetadataToFiles();
    library.writeBack->stopSaving();
    ASSERT_TRUE(library.finish());
    EXPECT_TRUE(library.isDirty(1));
    library.exiftool.letGo();
    library.writeBack->saveMetadataToFiles();
    ASSERT_TRUE(library.finish());
    EXPECT_FALSE(library.isDirty(1)) << "the stop is over";
}

TEST(MetadataWriteBack, endsAHangingToolWhenItGoes)
{
    OpenLibrary library(2);
    library.title(1, "new");
    library.exiftool.hold();
    library.writeBack->saveMetadataToFiles();
    library.writeBack.reset();
    EXPECT_EQ(library.store->catalog().dirtyCount(), 1);
}

TEST(MetadataWriteBack, shiftsDatesAsAStepThatTakesThemBackWhereTheyWereMoved)
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

TEST(MetadataWriteBack, takesPositionsBackToWhatEachPhotoHad)
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

TEST(MetadataWriteBack, takesNoPositionFromAFileThatItNeverWrote)
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

TEST(MetadataWriteBack, givesAPhotoThatWasNeverReadThePositionOfItsFile)
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

TEST(MetadataWriteBack, givesAFileBackThePositionThatItHeldAndThePhotoItsOwn)
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

TEST(MetadataWriteBack, keepsWhatAPhotoHadUntilItIsBackWhateverEndsTheWayBack)
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

TEST(MetadataWriteBack, triesTwiceInVainToTakeAStepBackBeforeItIsGivenUp)
{
    OpenLibrary library(1);
    auto& store = *library.store;
    setRating(store, only(1), 3);
    setPosition(*library.writeBack, store, library.ids, Coordinate{48, 11});
    ASSERT_TRUE(library.finish());
    library.exiftool.failing = "1.jpg";
    for (const auto* const next : {"Set Position", "Set Rating"}) {
        store.undo();
        ASSERT_TRUE(library.finish());
        EXPECT_EQ(store.undoTitle(), next);
    }
    EXPECT_EQ(store.redoTitle(), "Set Position");
}

} // namespace korvo
