#include "app/view/EditDraft.h"
#include "base/JsonError.h"
#include "catalog/store/LibraryActions.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/StoreActions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <numeric>

namespace korvo {

namespace {

struct DraftTest : ::testing::Test, TestLibrary {
    DraftTest()
    {
        for (const auto* const name : {"a.jpg", "b.jpg", "c.jpg"})
            photo(name);
        store = std::make_unique<LibraryStore>(main, std::move(catalog));
        browser = std::make_unique<Browser>(*store);
        draft = std::make_unique<EditDraft>(*store, *browser);
    }

    static EditDraft::Change exposure(double value)
    {
        return [value](PhotoEdits& edits) { edits.exposure = value; };
    }
    double shown(PhotoID id) const { return draft->editsOf(*store->list().find(id)).exposure; }
    double stored(PhotoID id) const { return store->list().find(id)->edits().exposure; }

    ManualMainThread main;
    std::unique_ptr<LibraryStore> store;
    std::unique_ptr<Browser> browser;
    std::unique_ptr<EditDraft> draft;
};

} // namespace

TEST_F(DraftTest, aDragIsShownAtOnceAndStoredAsOneStepInEachPhotosOwnEdits)
{
    setEdits(*store, only(2), {.saturation = 0});
    store->select({1, 2});
    for (const double value : {0.1, 0.2, 0.3})
        draft->show("Exposure", exposure(value));
    EXPECT_EQ(shown(1), 0.3);
    EXPECT_EQ(shown(3), 0);
    EXPECT_EQ(stored(1), 0);
    store->select({3}); // the drag belongs to the photos it began with
    draft->keep();
    EXPECT_EQ(stored(1), 0.3);
    EXPECT_EQ(store->list().find(2)->edits(), (PhotoEdits{.exposure = 0.3, .saturation = 0}));
    EXPECT_EQ(stored(3), 0);
    EXPECT_EQ(store->undoTitle(), "Exposure");
    store->undo();
    EXPECT_EQ(shown(1), 0);
    EXPECT_EQ(store->list().find(2)->edits(), (PhotoEdits{.saturation = 0}));
}

TEST_F(DraftTest, anotherControlIsAnotherStepAndADroppedDraftIsNone)
{
    store->select({1});
    draft->show("Exposure", exposure(1));
    draft->apply("Tint", [](PhotoEdits& edits) { edits.tint = 5; });
    store->undo();
    EXPECT_EQ(store->list().find(1)->edits(), (PhotoEdits{.exposure = 1}));
    draft->show("Exposure", exposure(2));
    draft->drop();
    EXPECT_EQ(shown(1), 1);
    draft->keep();
    EXPECT_EQ(store->undoTitle(), "Exposure");
    EXPECT_EQ(stored(1), 1);
}

TEST_F(DraftTest, whatCannotBeStoredNowStaysDraftedForItsPhotosAndWhatNeverCanGoes)
{
    Database other(store->catalog().libraryURL() / "catalog.sqlite");
    auto writing = std::make_optional<Transaction>(other);
    store->select({1});
    draft->show("Exposure", exposure(1));
    EXPECT_THROW(draft->keep(), DatabaseError);
    EXPECT_EQ(shown(1), 1);
    store->select({2});
    EXPECT_THROW(draft->show("Exposure", exposure(2)), DatabaseError) << "the next drag is another step";
    EXPECT_EQ(shown(1), 1);
    writing.reset();
    draft->apply("Exposure", exposure(2));
    EXPECT_EQ(stored(1), 1);
    EXPECT_EQ(stored(2), 2);

    other.run("UPDATE photos SET edits = '{' WHERE id = 3");
    store->reload();
    store->select({3});
    int told = 0;
    const auto connection = draft->changed.connect([&] { ++told; });
    EXPECT_THROW(draft->apply("Exposure", exposure(1)), JsonError);
    EXPECT_FALSE(draft->isOpen());
    EXPECT_EQ(told, 2) << "the views hear of the draft, and of its end";
}

TEST(EditDraft, ofVeryManyPhotosStaysTillItIsStored)
{
    TestLibrary library;
    std::vector<NewPhoto> photos;
    for (int i = 0; i < 2500; ++i)
        photos.push_back({.path = "/photos/" + std::to_string(i) + ".jpg"});
    library.catalog->addPhotos(photos);
    ManualMainThread main;
    LibraryStore store(main, std::move(library.catalog), std::chrono::milliseconds(0));
    Browser browser(store);
    EditDraft draft(store, browser);
    const auto end
        = [&] { EXPECT_TRUE(main.runUntil([&] { return !store.longStep() && !store.isReading(); })); };
    const auto shown = [&] { return draft.editsOf(*store.list().find(1)).exposure; };
    end();
    std::vector<PhotoID> ids(photos.size());
    std::iota(ids.begin(), ids.end(), 1);
    store.select(ids);

    const auto catalog = store.catalog().libraryURL() / "catalog.sqlite";
    const auto moved = store.catalog().libraryURL() / "moved.sqlite";
    std::filesystem::rename(catalog, moved); // so that the step fails, but may go well later
    try {
        draft.apply("Exposure", [](PhotoEdits& edits) { edits.exposure = 1; });
    } catch (const DatabaseError&) { // when it fails before the store has looked
    }
    EXPECT_EQ(shown(), 1);
    end();
    std::filesystem::rename(moved, catalog);
    EXPECT_TRUE(draft.isOpen());
    EXPECT_EQ(shown(), 1);
    EXPECT_FALSE(store.undoTitle());
    draft.keep();
    ASSERT_TRUE(store.longStep());
    EXPECT_FALSE(draft.isOpen());
    draft.drop();
    EXPECT_THROW(draft.show("Tint", [](PhotoEdits& edits) { edits.tint = 5; }), DatabaseError);
    EXPECT_EQ(shown(), 1);
    end();
    EXPECT_EQ(store.list().find(1)->edits(), (PhotoEdits{.exposure = 1}));
    EXPECT_EQ(store.undoTitle(), "Exposure");

    draft.show("Exposure", [](PhotoEdits& edits) { edits.exposure = 2; });
    EXPECT_THROW(draft.show("Tint", [](PhotoEdits& edits) { edits.tint = 5; }), DatabaseError)
        << "keeping the first has begun a step";
    end();
    EXPECT_EQ(store.list().find(1)->edits(), (PhotoEdits{.exposure = 2}));

    setRating(store, ids, 3);
    ASSERT_TRUE(store.longStep());
    int told = 0;
    const auto drafted = draft.changed.connect([&] { ++told; });
    EXPECT_THROW(draft.show("Exposure", [](PhotoEdits& edits) { edits.exposure = 3; }), DatabaseError);
    EXPECT_EQ(told, 1) << "the control goes back";
    EXPECT_EQ(shown(), 2);
    end();

    const auto stored
        = store.changed.connect([&](const LibraryChange&) { EXPECT_EQ(shown(), 4) << "all the while"; });
    draft.apply("Exposure", [](PhotoEdits& edits) { edits.exposure = 4; });
    ASSERT_TRUE(store.longStep());
    end();
}

} // namespace korvo
