#include "app/view/Browser.h"
#include "catalog/store/LibraryActions.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/StoreActions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

using IDs = std::vector<PhotoID>;

/// The photos 1 to 5, in this order.
struct TestBrowser : TestLibrary {
    explicit TestBrowser(std::chrono::milliseconds patience = LibraryStore::untilItIsRead)
    {
        for (const char* name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg"})
            photo(name);
        store = std::make_unique<LibraryStore>(main, std::move(catalog), patience);
        browser = std::make_unique<Browser>(*store);
    }

    ManualMainThread main;
    std::unique_ptr<LibraryStore> store;
    std::unique_ptr<Browser> browser;
};

} // namespace

TEST(Browser, actsOnTheSelectedInTheGridAndElsewhereOnThePhotoShown)
{
    TestBrowser t;
    t.store->select({2, 3});
    EXPECT_EQ(t.browser->targets(), (IDs{2, 3}));
    t.browser->setCurrent(3);
    for (const auto mode : {ViewMode::viewer, ViewMode::compare, ViewMode::survey, ViewMode::fullScreen}) {
        t.browser->setMode(mode);
        EXPECT_EQ(t.browser->targets(), IDs{3});
    }
    t.browser->setMode(ViewMode::grid);
    EXPECT_EQ(t.browser->targets(), (IDs{2, 3})) << "the selection is what it was";
}

TEST(Browser, steppingEndsAtBothEndsAndTakesTheSelectionAlong)
{
    TestBrowser t;
    t.browser->setMode(ViewMode::viewer);
    EXPECT_EQ(t.browser->current(), 1) << "the first photo where none was chosen";
    t.browser->step(-1);
    EXPECT_EQ(t.browser->current(), 1);
    t.browser->step(3);
    EXPECT_EQ(t.store->selection(), IDs{4});
    t.browser->step(99);
    EXPECT_EQ(t.browser->current(), 5);
}

TEST(Browser, looksAtTheNextPhotoWhenAFilterHidesTheOneShown)
{
    for (const auto& [shown, then] : {std::pair<PhotoID, PhotoID>{3, 4}, {5, 4}}) {
        TestBrowser t;
        t.browser->setCurrent(shown);
        t.browser->setMode(ViewMode::viewer);
        setRating(*t.store, only(shown), rejectedRating);
        EXPECT_EQ(t.browser->current(), then) << "instead of " << shown;
        EXPECT_EQ(t.store->selection(), IDs{then});
        t.store->undo();
        EXPECT_EQ(t.browser->current(), shown) << "undo brings it back selected";
    }
}

TEST(Browser, goesOnAfterTheHiddenPhotoThoughOthersStaySelected)
{
    TestBrowser t;
    t.store->select({1, 3, 5});
    t.browser->setCurrent(3);
    t.browser->setMode(ViewMode::viewer);
    setRating(*t.store, only(3), rejectedRating);
    EXPECT_EQ(t.browser->current(), 4);
}

TEST(Browser, goesOnBehindTheLastPhotoAndInASurveyAmongThoseOfIt)
{
    TestBrowser t;
    t.store->select({1, 3, 5});
    t.browser->setCurrent(1);
    EXPECT_EQ(t.browser->after(IDs{2, 1}), 3);
    EXPECT_EQ(t.browser->after(IDs{5}), std::nullopt);
    EXPECT_EQ(t.browser->after({}), std::nullopt);
    t.browser->setMode(ViewMode::survey);
    EXPECT_EQ(t.browser->after(IDs{1}), 3);
    EXPECT_EQ(t.browser->after(IDs{5}), std::nullopt);
}

TEST(Browser, aSurveyGoesOnWithThePhotosThatRemain)
{
    TestBrowser t;
    t.store->select({1, 3, 5});
    t.browser->setCurrent(3);
    t.browser->setMode(ViewMode::survey);
    const auto rejectCurrent = [&] { setRating(*t.store, only(*t.browser->current()), rejectedRating); };
    rejectCurrent();
    EXPECT_EQ(t.browser->current(), 5);
    EXPECT_EQ(t.store->selection(), (IDs{1, 5}));
    rejectCurrent();
    EXPECT_EQ(t.browser->current(), 1) << "the last of them was the current one";
    EXPECT_EQ(t.store->selection(), IDs{1});
}

TEST(Browser, aSurveyKeepsItsPhotosThroughUndoAndRedo)
{
    TestBrowser t;
    setFlagged(*t.store, only(2), true);
    t.store->select({1, 3, 5});
    t.browser->setCurrent(3);
    t.browser->setMode(ViewMode::survey);
    setRating(*t.store, only(3), rejectedRating);
    t.browser->undo();
    EXPECT_EQ(t.store->selection(), (IDs{1, 5, 3}));
    EXPECT_EQ(t.browser->current(), 3);
    t.browser->redo();
    EXPECT_EQ(t.store->selection(), (IDs{1, 5}));
    setRating(*t.store, only(5), 4);
    t.browser->undo();
    EXPECT_EQ(t.store->selection(), (IDs{1, 5})) << "nothing had left it";
    t.browser->undo();
    t.browser->undo();
    EXPECT_EQ(t.store->selection(), (IDs{1, 5, 3, 2})) << "what is taken back is shown";
}

TEST(Browser, inASurveyTheCurrentPhotoIsOneThatIsShown)
{
    TestBrowser t;
    t.store->select({1, 3, 5});
    t.browser->setMode(ViewMode::survey);
    t.store->select({2, 4});
    EXPECT_EQ(t.browser->current(), 2);
    t.store->select({});
    EXPECT_EQ(t.browser->mode(), ViewMode::grid);
    t.browser->setMode(ViewMode::survey);
    EXPECT_EQ(t.browser->mode(), ViewMode::survey);
    EXPECT_EQ(t.store->selection().size(), 1U) << "the one under the cursor";
}

TEST(Browser, returnsToTheGridWhenNoPhotoIsLeft)
{
    TestBrowser t;
    t.browser->setMode(ViewMode::viewer);
    t.store->chooseSource(LibrarySource{LibrarySource::Kind::videos, 0, {}});
    EXPECT_EQ(t.browser->mode(), ViewMode::grid);
    EXPECT_EQ(t.browser->current(), std::nullopt);
    t.browser->setMode(ViewMode::viewer);
    EXPECT_EQ(t.browser->mode(), ViewMode::grid);
}

TEST(Browser, staysInTheViewerWhileASourceIsRead)
{
    TestBrowser t(std::chrono::milliseconds(0));
    const auto isRead = [&] { return t.main.runUntil([&] { return !t.store->isReading(); }); };
    ASSERT_TRUE(isRead());
    setFlagged(*t.store, IDs{2, 4}, true);
    t.browser->setCurrent(4);
    t.browser->setMode(ViewMode::viewer);
    t.store->chooseSource(LibrarySource{LibrarySource::Kind::flagged, 0, {}});
    EXPECT_EQ(t.browser->targets(), t.store->isReading() ? IDs() : IDs{4}) << "nobody can see it";
    ASSERT_TRUE(isRead());
    EXPECT_EQ(t.browser->mode(), ViewMode::viewer);
    EXPECT_EQ(t.browser->targets(), IDs{4});
}

TEST(Browser, leavesASourceThatUndoOrRedoTookAway)
{
    TestBrowser t;
    const auto album = createAlbum(*t.store, "Best", {});
    const LibrarySource source{LibrarySource::Kind::album, album, {}};
    t.store->chooseSource(source);
    t.browser->undo();
    EXPECT_EQ(t.store->source(), std::nullopt);
    EXPECT_EQ(t.store->list().shown().size(), 5U);
    t.browser->redo();
    t.store->chooseSource(source);
    deleteAlbum(*t.store, album);
    t.browser->undo();
    t.store->chooseSource(source);
    t.browser->redo();
    EXPECT_EQ(t.store->source(), std::nullopt);
}

TEST(Browser, aSurveyKeepsItsPhotosThroughUndoAndRedoThatTakeLong)
{
    TestBrowser t(std::chrono::milliseconds(0));
    std::vector<NewPhoto> photos;
    for (int i = 0; i < 2500; ++i)
        photos.push_back({.path = "/more/" + std::to_string(i) + ".jpg"});
    IDs ids;
    for (const auto& added : t.store->catalog().addPhotos(photos))
        ids.push_back(added.id);
    const auto end
        = [&] { return t.main.runUntil([&] { return !t.store->longStep() && !t.store->isReading(); }); };
    t.store->reload();
    ASSERT_TRUE(end());
    setMetadataField(*t.store, ids, 0, std::string(500, 'x'));
    ASSERT_TRUE(end());
    t.store->select({3, 4});
    t.browser->setMode(ViewMode::survey);
    for (const auto take : {&Browser::undo, &Browser::redo}) {
        ((*t.browser).*take)();
        ASSERT_TRUE(t.store->longStep());
        ASSERT_TRUE(end());
        EXPECT_EQ(t.store->selection(), (IDs{3, 4}));
    }
    t.browser->undo();
    t.store->select({5});
    ASSERT_TRUE(end());
    EXPECT_EQ(t.store->selection(), IDs{5});
}

TEST(Browser, leavesASourceThatGoesByAStepThatTakesLong)
{
    TestBrowser t(std::chrono::milliseconds(0));
    const auto folder = t.store->catalog().addFolder("/photos", 1).id;
    t.store->adopt("Add", {IDs(3000, 1), {folder}, {}}, t.store->newestStep());
    t.store->chooseSource(LibrarySource{LibrarySource::Kind::folder, folder, {}});
    t.browser->undo();
    ASSERT_TRUE(t.main.runUntil([&] { return !t.store->longStep(); }));
    EXPECT_EQ(t.store->source(), std::nullopt);
}

} // namespace korvo
