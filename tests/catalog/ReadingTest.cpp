// What the store shows while a list is being read in the background.

#include "catalog/LibraryStore.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

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

TEST(Reading, endsInTheMiddleOfAStatement)
{
    TestLibrary library;
    ManualMainThread main;
    Reading<std::int64_t> reading(
        main, *library.catalog,
        [](Database& database, const std::stop_token&) {
            return database.scalar(
                "WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) SELECT COUNT(*) FROM n");
        },
        [] {});
    EXPECT_FALSE(reading.waitFor(std::chrono::milliseconds(20))) << "it would never end by itself";
}

TEST_F(StoreReading, whatHappensMeanwhileIsInTheListThatComes)
{
    const bool wasReading = store->isReading();
    store->setRating(only(ids[5]), 4);
    store->removePhotos(only(ids[6]));
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
    store->setRating(only(ids[20]), 3);
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
    store->addToAlbum(album, only(ids[1])); // read again, after what is being read
    store->setRating(only(ids[0]), 2);
    EXPECT_EQ(store->list().find(ids[0])->rating, 2);
    EXPECT_EQ(store->selection(), only(ids[0]));
    ASSERT_TRUE(isRead());
    EXPECT_EQ(store->list().items().size(), 30U);
    EXPECT_TRUE(store->list().find(ids[1]));
    EXPECT_FALSE(store->list().find(ids[10]));
    EXPECT_EQ(store->list().find(ids[0])->rating, 2);
    EXPECT_EQ(store->selection(), only(ids[0]));
    store->deleteAlbum(album);
    ASSERT_TRUE(isRead());
    EXPECT_TRUE(store->list().items().empty());
}

} // namespace korvo
