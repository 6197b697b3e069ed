// What the store shows while a list is being read in the background.

#include "catalog/store/LibraryActions.h"
#include "catalog/store/LibraryStore.h"
#include "catalog/store/SourceReading.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/StoreActions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace korvo {

namespace {

/// A store that waits for nothing, over 300 photos, every tenth of them in an album. On a busy machine a list
/// may be there all the same.
struct StoreReading : ::testing::Test {
    StoreReading()
    {
        for (int i = 0; i < 300; ++i)
            ids.push_back(library.photo("photo" + std::to_string(1000 + i) + ".jpg"));
        album = library.catalog->createAlbum("Some", std::nullopt);
        std::vector<PhotoID> some;
        for (std::size_t i = 0; i < ids.size(); i += 10)
            some.push_back(ids[i]);
        library.catalog->addToAlbum(album, some);
        store
            = std::make_unique<LibraryStore>(main, std::move(library.catalog), std::chrono::milliseconds(0));
    }

    bool isRead()
    {
        return main.runUntil([&] { return !store->isReading(); });
    }
    LibrarySource albumSource() const { return {LibrarySource::Kind::album, album}; }

    TestLibrary library;
    std::vector<PhotoID> ids;
    std::int64_t album = 0;
    ManualMainThread main;
    std::unique_ptr<LibraryStore> store;
};

} // namespace

TEST(BackgroundReading, endsInTheMiddleOfAStatement)
{
    TestLibrary library;
    ManualMainThread main;
    BackgroundReading<std::int64_t> reading(
        main, *library.catalog,
        [](Database& database, const std::stop_token&) {
            return database.scalar(
                "WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) SELECT COUNT(*) FROM n");
        },
        [] {});
    EXPECT_FALSE(reading.waitFor(std::chrono::milliseconds(20))) << "it would never end by itself";
}

TEST(Background, isLeftWithoutWaitingForItsEndNorForWhatCameOfItToBeFreed)
{
    /// Says on which thread it goes.
    struct Result {
        explicit Result(std::atomic<std::thread::id>& at) : freedAt(&at) { }
        Result(Result&& other) noexcept : freedAt(std::exchange(other.freedAt, nullptr)) { }
        ~Result()
        {
            if (freedAt)
                *freedAt = std::this_thread::get_id();
        }
        std::atomic<std::thread::id>* freedAt;
    };
    for (const bool isDone : {false, true}) {
        ManualMainThread main;
        std::atomic<std::thread::id> freedAt{};
        std::atomic<bool> goOn = isDone, sawStop = false;
        bool delivered = false;
        {
            LeftTasks left;
            Background<Result> background(
                main,
                [&](const std::stop_token& stop) {
                    while (!goOn)
                        std::this_thread::yield();
                    sawStop = stop.stop_requested();
                    return Result(freedAt);
                },
                [&] { delivered = true; });
            ASSERT_TRUE(!isDone || background.waitFor(std::chrono::seconds(30)));
            background.leaveTo(left);
            goOn = true; // not before it was left
        }
        EXPECT_EQ(sawStop, !isDone);
        EXPECT_NE(freedAt.load(), std::thread::id());
        EXPECT_NE(freedAt.load(), std::this_thread::get_id()) << isDone;
        main.runPending();
        EXPECT_FALSE(delivered);
    }
}

TEST_F(StoreReading, whatHappensMeanwhileIsInTheListThatComes)
{
    const bool wasReading = store->isReading();
    setRating(*store, only(ids[5]), 4);
    removePhotos(*store, only(ids[6]));
    store->select({ids[5], ids[6], ids[7]});
    EXPECT_EQ(store->selection().empty(), wasReading) << "nobody can see them yet";
    int lists = 0;
    const auto connection = store->changed.connect(
        [&](const LibraryChange& change) { lists += change.list && !store->list().items().empty() ? 1 : 0; });
    ASSERT_TRUE(isRead());
    EXPECT_EQ(lists, wasReading ? 1 : 0);
    EXPECT_EQ(store->list().items().size(), 299U);
    EXPECT_EQ(store->list().find(ids[5])->rating, 4);
    EXPECT_EQ(store->selection(), (std::vector{ids[5], ids[7]}));
    store->undo();
    EXPECT_EQ(store->list().items().size(), 300U);
}

TEST_F(StoreReading, whatWasToBeSelectedIsToldWithTheList)
{
    bool told = !store->isReading();
    const auto connection
        = store->changed.connect([&](const LibraryChange& change) { told |= change.selection; });
    store->select({ids[5]});
    EXPECT_EQ(store->wishedSelection(), only(ids[5]));
    ASSERT_TRUE(isRead());
    EXPECT_EQ(store->selection(), only(ids[5]));
    EXPECT_TRUE(told);
}

TEST_F(StoreReading, aSourceThatIsChosenListsNothingOfTheOneBefore)
{
    ASSERT_TRUE(isRead());
    store->select({ids[10]});
    store->chooseSource(albumSource());
    EXPECT_EQ(store->list().items().size(), store->isReading() ? 0U : 30U);
    EXPECT_TRUE(store->selection().empty());
    store->arrange(SortKey::name, GridFilter::starred);
    setRating(*store, only(ids[20]), 3);
    ASSERT_TRUE(isRead());
    EXPECT_EQ(store->list().items().size(), 30U);
    EXPECT_EQ(store->list().shown().size(), 1U);
    store->chooseSource(std::nullopt);
    store->chooseSource(albumSource()); // before the first one is there
    ASSERT_TRUE(isRead());
    EXPECT_EQ(store->list().items().size(), 30U);
}

TEST_F(StoreReading, aListThatIsReadAgainStaysInUse)
{
    ASSERT_TRUE(isRead());
    store->chooseSource(albumSource());
    ASSERT_TRUE(isRead());
    store->select({ids[0]});
    Catalog other(store->catalog().libraryURL(), library.clock);
    other.removeFromAlbum(album, only(ids[10]));
    store->reloadIfChangedElsewhere();
    EXPECT_EQ(store->list().items().size(), store->isReading() ? 30U : 29U);
    addToAlbum(*store, album, only(ids[1])); // read again, after what is being read
    setRating(*store, only(ids[0]), 2);
    EXPECT_EQ(store->list().find(ids[0])->rating, 2);
    EXPECT_EQ(store->selection(), only(ids[0]));
    ASSERT_TRUE(isRead());
    EXPECT_EQ(store->list().items().size(), 30U);
    EXPECT_TRUE(store->list().find(ids[1]));
    EXPECT_FALSE(store->list().find(ids[10]));
    EXPECT_EQ(store->list().find(ids[0])->rating, 2);
    EXPECT_EQ(store->selection(), only(ids[0]));
    deleteAlbum(*store, album);
    ASSERT_TRUE(isRead());
    EXPECT_TRUE(store->list().items().empty());
}

TEST_F(StoreReading, aListIsReadOnceHoweverItIsArrangedMeanwhile)
{
    const bool wasReading = store->isReading();
    setRating(*store, only(ids[5]), 4);
    int lists = 0;
    const auto connection = store->changed.connect(
        [&](const LibraryChange& change) { lists += change.list && !store->list().items().empty() ? 1 : 0; });
    store->arrange(SortKey::rating, GridFilter::starred);
    store->narrow(std::vector{
        SmartAlbumRules{{{SmartAlbumRule::Field::text, SmartAlbumRule::Op::contains, "none"}}, true}});
    store->narrow({});
    ASSERT_TRUE(isRead());
    EXPECT_TRUE(lists == 1 || !wasReading) << lists;
    EXPECT_EQ(store->list().shown().size(), 1U);
    EXPECT_EQ(store->list().sortKey(), SortKey::rating);
}

TEST_F(StoreReading, manyPhotosAreSortedAndSearchedMeanwhile)
{
    ASSERT_TRUE(isRead());
    store->catalog().database().exec(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30000) INSERT INTO photos "
        "(path, filename, added_at, rating, title) SELECT printf('/many/%05d.jpg', i), "
        "printf('%05d.jpg', i), 1e9 - i, i % 6, iif(i % 1000, '', 'Mönch') FROM n");
    store->reload();
    ASSERT_TRUE(isRead());
    const auto many = store->list().shown().size();
    ASSERT_EQ(many, 30'300U);
    const auto isOrdered = [&] { return main.runUntil([&] { return !store->isOrdering(); }); };
    const auto first = [&] { return store->list().items()[store->list().shown().front()].id; };
    store->arrange(SortKey::imported, GridFilter::unratedOrBetter);
    EXPECT_EQ(store->list().sortKey(), SortKey::imported) << "what is asked for can be seen at once";
    const auto last = store->list().items().back().id; // the earliest
    removePhotos(*store, only(last)); // while it is sorted
    setRating(*store, only(last - 1), rejectedRating);
    ASSERT_TRUE(isOrdered());
    EXPECT_EQ(first(), last - 2);
    EXPECT_EQ(store->list().shown().size(), many - 2);
    store->select({last - 2, last - 30});
    bool told = false;
    const auto connection = store->changed.connect(
        [&](const LibraryChange& change) { told |= change.list && change.selection; });
    store->narrow(std::vector{
        SmartAlbumRules{{{SmartAlbumRule::Field::text, SmartAlbumRule::Op::contains, "mönch"}}, true}});
    ASSERT_TRUE(isOrdered());
    EXPECT_TRUE(told) << "those selected have gone";
    EXPECT_EQ(store->list().shown().size(), 29U);
    store->chooseSource(albumSource());
    store->arrange(std::nullopt, std::nullopt);
    store->chooseSource(std::nullopt); // before it is sorted, maybe
    ASSERT_TRUE(isRead() && isOrdered());
    EXPECT_EQ(store->list().shown().size(), 29U);
    store->narrow({});
    ASSERT_TRUE(isOrdered());
    EXPECT_EQ(store->list().shown().size(), many - 1);
}

TEST_F(StoreReading, batchesOfBackgroundWorkDoNotKeepALongListFromBeingSorted)
{
    ASSERT_TRUE(isRead());
    Database& database = store->catalog().database();
    database.exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 60000) INSERT "
                  "INTO photos (path, filename, added_at) SELECT printf('/many/%05d.jpg', i), "
                  "printf('%05d.jpg', i), 1e9 - i FROM n");
    store->reload();
    ASSERT_TRUE(isRead());
    const auto last = store->list().items().back().id; // the earliest
    store->arrange(SortKey::imported, GridFilter::unratedOrBetter);
    int batches = 0;
    ASSERT_TRUE(main.runUntil([&] {
        database.run("UPDATE photos SET title = ?, rating = ? WHERE id = ?", ++batches, rejectedRating, last);
        store->photosChanged(only(last));
        return !store->isOrdering();
    })) << batches;
    EXPECT_EQ(store->list().items()[store->list().shown().front()].id, last - 1) << "the last is hidden";
    EXPECT_EQ(store->list().find(last)->metadata.title.view(), std::to_string(batches));
    store->arrange(SortKey::name, GridFilter::unratedOrBetter);
    database.run("UPDATE photos SET title = 'late' WHERE id = ?", last);
    store->photosChanged(only(last));
    setRating(*store, only(last), 0); // begins anew
    EXPECT_EQ(store->list().find(last)->metadata.title.view(), "late");
    ASSERT_TRUE(main.runUntil([&] { return !store->isOrdering(); }));
    EXPECT_EQ(store->list().shown().size(), 60'300U);
}

TEST_F(StoreReading, whatUndoBringsBackIsSelectedOnceTheOrderShowsIt)
{
    ASSERT_TRUE(isRead());
    store->catalog().database().exec(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 60000) INSERT INTO photos "
        "(path, filename, added_at, rating) SELECT printf('/many/%05d.jpg', i), printf('%05d.jpg', i), "
        "1e9 - i, 3 FROM n");
    store->reload();
    ASSERT_TRUE(isRead());
    store->arrange(SortKey::name, GridFilter::starred);
    ASSERT_TRUE(main.runUntil([&] { return !store->isOrdering(); }));
    setFlagged(*store, only(ids[5]), true); // which the filter hides
    store->arrange(SortKey::imported, std::nullopt);
    store->undo();
    ASSERT_TRUE(main.runUntil([&] { return !store->isOrdering(); }));
    EXPECT_EQ(store->selection(), only(ids[5]));
}

TEST(StoreReadingCounts, areToldThoughAShortListIsChosenMeanwhile)
{
    TestLibrary library;
    const auto photo = library.photo("a.jpg");
    library.catalog->database().exec(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) INSERT INTO photos "
        "(path, filename, added_at) SELECT printf('/many/%05d.jpg', i), printf('%05d.jpg', i), i FROM n");
    const auto album = library.catalog->createAlbum("Some", std::nullopt);
    library.catalog->addToAlbum(album, only(photo));
    ManualMainThread main;
    LibraryStore store(main, std::move(library.catalog), std::chrono::milliseconds(10));
    store.tree(); // the sidebar
    const auto connection = store.changed.connect([&](const LibraryChange& change) {
        if (change.tree)
            store.tree();
    });
    store.chooseSource(LibrarySource{LibrarySource::Kind::album, album});
    EXPECT_TRUE(main.runUntil([&] { return store.isCounted() && !store.isReading(); }));
}

TEST_F(StoreReading, anActionThatIsStoredIsToldThoughTheListCannotFollow)
{
    TestLibrary other;
    const auto photo = other.photo("a.jpg");
    const auto some = other.catalog->createAlbum("Some", std::nullopt);
    const auto catalog = other.catalog->libraryURL() / "catalog.sqlite";
    LibraryStore shown(main, std::move(other.catalog));
    shown.chooseSource(LibrarySource{LibrarySource::Kind::album, some});
    bool told = false;
    const auto connection = shown.changed.connect([&](const LibraryChange&) { told = true; });
    std::filesystem::rename(catalog, catalog.string() + ".away"); // no further connection can be made
    EXPECT_NO_THROW(addToAlbum(shown, some, only(photo)));
    EXPECT_TRUE(told);
    EXPECT_TRUE(shown.undoTitle());
    EXPECT_TRUE(shown.list().items().empty());
    EXPECT_EQ(shown.tree().albums.size(), 1U) << "what can be read is there without the counts";
    std::filesystem::rename(catalog.string() + ".away", catalog);
    shown.reloadIfChangedElsewhere();
    EXPECT_EQ(shown.list().items().size(), 1U);
    EXPECT_EQ(shown.tree().totals.photos, 1) << "counted after all";
}

TEST(MetadataBase, comesBackWithAPhotoThatWasRemoved)
{
    TestLibrary library;
    const auto photo = library.photo("a.jpg", {.title = SharedText("in the file")});
    ManualMainThread main;
    LibraryStore store(main, std::move(library.catalog));
    setMetadata(store, only(photo), {.title = SharedText("")});
    removePhotos(store, only(photo));
    store.undo();
    const auto record = store.catalog().fileRecord(photo);
    ASSERT_TRUE(record && record->dirty && record->base);
    EXPECT_EQ(record->base->title.view(), "in the file")
        << "or a save would take it for new and bring it back";
}

TEST(AllPhotos, ofBothHalvesOfTheTableAreRead)
{
    TestLibrary library;
    for (const char* name : {"d.jpg", "b.jpg", "c.jpg", "a.jpg"})
        library.photo(name);
    library.version(2);
    struct Case {
        const char* spread; // so that there is something to be halved
        std::vector<PhotoID> masters;
    };
    for (const auto& [spread, masters] :
        {Case{"UPDATE photos SET id = 1000000 WHERE version_of IS NOT NULL", {1, 2, 3, 4}},
            {"UPDATE photos SET id = id + 200000 WHERE id IN (3, 4)", {1, 2, 200'003, 200'004}},
            {"UPDATE photos SET id = 999999 WHERE id = 1", {2, 200'003, 200'004, 999'999}}}) {
        library.catalog->database().exec(spread);
        std::vector<PhotoID> read;
        for (const auto& item : allPhotos(library.catalog->database())) {
            read.push_back(item.id);
            EXPECT_EQ(item, library.item(item.id));
        }
        EXPECT_EQ(read, masters) << spread;
    }
}

TEST_F(StoreReading, whatIsBeingDoneWithAPhotoGoesOnWhileItIsReadAnew)
{
    ASSERT_TRUE(isRead());
    const PhotoItem::Status failed{PhotoItem::Status::Kind::error, "the file is gone"};
    std::vector<PhotoID> told;
    const auto connection
        = store->changed.connect([&](const LibraryChange& change) { told = change.photos; });
    store->setStatuses(std::vector{std::pair(ids[1], failed), std::pair(ids[2], failed)});
    EXPECT_EQ(told, (std::vector{ids[1], ids[2]}));
    store->setStatuses(
        std::vector{std::pair(ids[1], PhotoItem::Status()), std::pair(ids[3], PhotoItem::Status())});
    EXPECT_EQ(told, only(ids[1])) << "the other was idle before";
    store->reload();
    ASSERT_TRUE(isRead());
    EXPECT_EQ(store->status(ids[2]), failed);
    EXPECT_EQ(store->status(ids[1]), PhotoItem::Status());
}

} // namespace korvo
