#include "catalog/store/LibraryActions.h"
#include "tests/metadata/OpenLibrary.h"

#include <gtest/gtest.h>

#include <thread>

namespace korvo {

namespace {

using namespace std::chrono_literals;
using Autosave = MetadataWriteBack::Autosave;
using Texts = std::vector<std::string>;

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
    EXPECT_THROW(requireRevertible(aperture.store->catalog(), aperture.ids), RevertRefused);
    aperture.writeBack->revertMetadataToAsFound(aperture.ids);
    ASSERT_TRUE(aperture.finish());
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
    EXPECT_TRUE(library.writeBack->statusMessage().ends_with(": apt install libimage-exiftool-perl"));
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

} // namespace korvo
