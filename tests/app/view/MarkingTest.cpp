#include "app/view/Marking.h"
#include "catalog/store/LibraryActions.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/StoreActions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

struct TestMarking : TestLibrary {
    TestMarking()
    {
        for (const char* name : {"a.jpg", "b.jpg", "c.jpg"})
            photo(name);
        store = std::make_unique<LibraryStore>(main, std::move(catalog));
        store->arrange({}, {}); // also what is rejected
    }

    void give(PhotoID id, int rating, bool flagged)
    {
        setRating(*store, only(id), rating);
        setFlagged(*store, only(id), flagged);
    }
    /// "3f" for three stars and a flag, "x" for a rejected photo.
    std::string marks(PhotoID id) const
    {
        const auto& item = *store->list().find(id);
        return (item.isRejected() ? "x" : std::to_string(item.rating)) + (item.flagged ? "f" : "");
    }

    ManualMainThread main;
    std::unique_ptr<LibraryStore> store;
};

} // namespace

TEST(Marking, ofOnePhoto)
{
    struct Case {
        int rating;
        bool flagged;
        Mark mark;
        std::string after;
    };
    for (const auto& [rating, flagged, mark, after] : {
             Case{3, false, Mark::pick, "3f"},
             {rejectedWith(3), false, Mark::pick, "3f"},
             {3, true, Mark::reject, "x"},
             {rejectedWith(3), false, Mark::reject, "3"},
             {rejectedRating, false, Mark::reject, "0"},
             {3, true, Mark::clear, "3"},
             {rejectedWith(2), false, Mark::clear, "2"},
             {3, false, Mark::toggleFlag, "3f"},
             {3, true, Mark::toggleFlag, "3"},
             {rejectedWith(3), false, Mark::toggleFlag, "3f"},
             {4, true, Mark::oneStarMore, "5f"},
             {5, false, Mark::oneStarMore, "5"},
             {0, false, Mark::oneStarLess, "0"},
             {rejectedWith(2), false, Mark::oneStarMore, "2"},
             {rejectedWith(2), false, Mark::oneStarLess, "x"},
             {-77, false, Mark::reject, "5"},
         }) {
        TestMarking t;
        t.give(1, rating, flagged);
        setMark(*t.store, only(1), mark);
        EXPECT_EQ(t.marks(1), after) << rating << (flagged ? "f" : "") << " and mark " << int(mark);
    }
}

TEST(Marking, flagsAlsoWhatIsNotListed)
{
    TestMarking t;
    t.give(1, rejectedWith(3), false);
    t.give(2, 0, false);
    t.store->chooseSource(LibrarySource{LibrarySource::Kind::videos, 0, {}});
    flag(*t.store, std::vector<PhotoID>{1, 2});
    t.store->chooseSource(std::nullopt);
    EXPECT_EQ(t.marks(1), "3f");
    EXPECT_EQ(t.marks(2), "0f");
}

TEST(Marking, isTakenBackOnlyWhenAllHaveItAndUndoneInOneStep)
{
    TestMarking t;
    t.give(1, 4, true);
    t.give(2, rejectedWith(2), false);
    const std::vector<PhotoID> both{1, 2};
    setMark(*t.store, both, Mark::reject);
    EXPECT_EQ(t.store->undoTitle(), "Reject");
    EXPECT_EQ(t.marks(1) + t.marks(2), "xx");
    setMark(*t.store, both, Mark::reject);
    EXPECT_EQ(t.store->undoTitle(), "Take Back Rejection");
    EXPECT_EQ(t.marks(1) + t.marks(2), "42");
    t.store->undo();
    t.store->undo();
    EXPECT_EQ(t.marks(1) + t.marks(2), "4fx");
}

TEST(Marking, aClickMeansWhatIsClicked)
{
    using Kind = MarkPart::Kind;
    TestMarking t;
    t.give(1, 3, false);
    t.give(2, rejectedWith(2), false);
    const std::vector<PhotoID> both{1, 2};
    const auto click = [&](std::span<const PhotoID> ids, MarkPart part) {
        clickMark(*t.store, ids, part);
        return t.marks(1) + " " + t.marks(2);
    };
    EXPECT_EQ(click(both, {Kind::cross}), "3 2") << "leaves what is not rejected";
    EXPECT_EQ(click(both, {Kind::flag}), "3f 2f");
    EXPECT_EQ(click(both, {Kind::flag}), "3 2");
    EXPECT_EQ(click(both, {Kind::star, 3}), "3 3");
    EXPECT_EQ(click(both, {Kind::star, 3}), "0 0") << "the last star of all";
    EXPECT_EQ(click(only(2), {Kind::label}), "0 0");
}

TEST(Marking, deleteTakesOutOfAnAlbumAndElsewhereRejects)
{
    TestMarking t;
    const auto album = createAlbum(*t.store, "Best", {});
    addToAlbum(*t.store, album, std::vector<PhotoID>{1, 2});
    t.store->chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    EXPECT_EQ(removeOrReject(*t.store, only(1)), "Took 1 photo out of the album.");
    EXPECT_EQ(t.store->list().items().size(), 1U);
    t.store->chooseSource({});
    EXPECT_EQ(t.marks(1), "0");
    removeOrReject(*t.store, only(1));
    EXPECT_EQ(t.marks(1), "x");
    removeOrReject(*t.store, only(1));
    EXPECT_EQ(t.marks(1), "x") << "the second time rejects no less";
}

TEST(Marking, goesByWhatIsStoredWhileTheListIsBehind)
{
    TestMarking t;
    std::vector<NewPhoto> photos;
    for (int i = 0; i < 20'500; ++i)
        photos.push_back({.path = "/more/" + std::to_string(i) + ".jpg"});
    auto& catalog = t.store->catalog();
    catalog.addPhotos(photos);
    LibraryStore store(t.main, std::make_unique<Catalog>(catalog.beside()), std::chrono::milliseconds(0));
    ASSERT_TRUE(t.main.runUntil([&] { return !store.isReading(); }));
    std::vector<PhotoID> ids;
    for (const auto& item : store.list().items())
        ids.push_back(item.id);
    setRating(store, ids, 5);
    ASSERT_TRUE(t.main.runUntil([&] { return !store.longStep(); }));
    ASSERT_EQ(store.list().find(1)->rating, 0) << "it is still being read";
    setMark(store, only(1), Mark::reject);
    EXPECT_EQ(catalog.photo(1)->rating, rejectedWith(5));
}

} // namespace korvo
