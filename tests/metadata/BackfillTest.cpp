#include "metadata/Backfill.h"

#include "tests/support/ManualMainThread.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

namespace fs = std::filesystem;

/// A library of photos that have a camera, a date and a position in their files, none of it read.
struct Unread : TestLibrary {
    explicit Unread(int count)
    {
        for (int i = 0; i < count; ++i)
            add(std::to_string(i) + ".jpg", readFile(std::string(KORVO_TEST_DATA) + "/metadata/camera.jpg"));
    }

    PhotoID add(const std::string& name, const std::string& contents)
    {
        NewPhoto photo{.path = folder.write("photos/" + name, contents)};
        return catalog->addPhotos(std::span(&photo, 1)).front().id;
    }

    std::vector<PhotoID> read(Backfill kind) { return readBatch(*catalog, kind, 0, {}).photos; }
};

struct RunningBackfills {
    explicit RunningBackfills(Unread& library)
        : store(main, std::move(library.catalog)), backfills(main, store)
    {
        connection = store.changed.connect(
            [this](const LibraryChange& change) { published.push_back(change.photos.size()); });
    }

    ManualMainThread main;
    LibraryStore store;
    Backfills backfills;
    std::vector<std::size_t> published;
    Connection connection;
};

} // namespace

TEST(Backfill, storesWhatFilesSayForVersionsTooAndKeepsWhatTheUserSet)
{
    Unread library(2);
    const auto broken = library.add("broken.jpg", "x"), gone = library.add("gone.jpg", "x");
    fs::remove(library.folder / "photos/gone.jpg");
    const auto version = library.version(1);
    library.catalog->database().exec(
        "UPDATE photos SET capture_date = 7, capture_read = 1, latitude = 1, longitude = 2 WHERE id = 2");
    EXPECT_EQ(library.read(Backfill::camera), (std::vector<PhotoID>{1, 2, broken, gone}));
    EXPECT_EQ(library.read(Backfill::positions), (std::vector<PhotoID>{1, 2, broken, gone}));
    const auto first = library.item(1), second = library.item(2), copy = library.item(version);
    EXPECT_NE(first.camera, "");
    EXPECT_TRUE(first.captureDate && first.latitude && first.longitude);
    EXPECT_EQ(copy.camera, first.camera);
    EXPECT_EQ(copy.captureDate, first.captureDate);
    EXPECT_EQ(copy.latitude, first.latitude);
    EXPECT_EQ(second.camera, first.camera);
    EXPECT_EQ(second.captureDate, 7);
    EXPECT_EQ(second.latitude, 1);
    EXPECT_EQ(library.item(broken).camera, "");
    for (const auto kind : {Backfill::camera, Backfill::positions})
        EXPECT_TRUE(library.read(kind).empty()) << "nothing is read twice";
}

TEST(Backfills, publishBatchByBatchUntilAllIsRead)
{
    Unread library(201);
    RunningBackfills run(library);
    run.backfills.startExifBackfill();
    run.backfills.startExifBackfill(); // goes on as it is
    ASSERT_TRUE(run.main.runUntil([&] { return !run.backfills.exifBackfillRunning(); }));
    EXPECT_EQ(run.published, (std::vector<std::size_t>{100, 100, 1}));
    EXPECT_NE(run.store.list().find(201)->camera, "");
    run.published.clear();
    run.backfills.startLocationBackfill();
    ASSERT_TRUE(run.main.runUntil([&] { return !run.backfills.locationBackfillRunning(); }));
    EXPECT_EQ(run.published, (std::vector<std::size_t>{200, 1}));
    EXPECT_TRUE(run.store.list().find(201)->latitude);
}

TEST(Backfills, readWhatIsAddedWhileTheyRun)
{
    Unread library(1);
    const auto contents = readFile(std::string(KORVO_TEST_DATA) + "/metadata/camera.jpg");
    const NewPhoto late{.path = library.folder.write("photos/late.jpg", contents)};
    RunningBackfills run(library);
    const auto connection = run.store.changed.connect([&](const LibraryChange&) {
        if (run.store.catalog().addPhotos(std::span(&late, 1)).front().isNew) // its only batch is through
            run.backfills.startExifBackfill();
    });
    run.backfills.startExifBackfill();
    ASSERT_TRUE(run.main.runUntil([&] { return !run.backfills.exifBackfillRunning(); }));
    EXPECT_TRUE(run.store.catalog().photosToRead(1).empty());
}

TEST(Backfills, stopWithTheLibraryAndGoOnWithTheNextOne)
{
    Unread library(250);
    {
        RunningBackfills run(library);
        run.backfills.startExifBackfill();
        run.main.runUntil([&] { return !run.published.empty(); });
    }
    library.catalog = std::make_unique<Catalog>(library.folder / "Library", library.clock);
    const auto left = library.catalog->photosToRead(1000).size();
    EXPECT_LE(left, 150U);
    RunningBackfills run(library);
    run.backfills.startExifBackfill();
    ASSERT_TRUE(run.main.runUntil([&] { return !run.backfills.exifBackfillRunning(); }));
    EXPECT_TRUE(run.store.catalog().photosToRead(1).empty());
}

} // namespace korvo
