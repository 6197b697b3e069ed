// Steps of very many photos, which the store does not wait for.

#include "catalog/UserText.h"
#include "catalog/store/LibraryActions.h"
#include "catalog/store/LibraryStore.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

/// A store that waits for nothing, over more photos than are changed, or read again, at once.
struct LongSteps : ::testing::Test {
    LongSteps()
    {
        std::vector<NewPhoto> photos;
        for (int i = 0; i < 20'500; ++i)
            photos.push_back({.path = "/photos/" + std::to_string(100'000 + i) + ".jpg"});
        for (const auto& added : library.catalog->addPhotos(photos))
            ids.push_back(added.id);
        store
            = std::make_unique<LibraryStore>(main, std::move(library.catalog), std::chrono::milliseconds(0));
        ended = store->stepEnded.connect([this](const std::exception_ptr& fault) {
            try {
                if (fault)
                    std::rethrow_exception(fault);
                faults.push_back("");
            } catch (const std::exception& error) {
                faults.push_back(textForUser(error));
            }
        });
        changed
            = store->changed.connect([this](const LibraryChange& change) { takenOut += change.takenOut; });
    }

    /// Lets all come to its end; returns what was told of the steps that ended.
    std::vector<std::string> outcome()
    {
        EXPECT_TRUE(main.runUntil([&] { return !store->longStep() && !store->isReading(); }));
        return std::exchange(faults, {});
    }
    /// While it lives, no step comes further than to its beginning.
    struct Keeping {
        explicit Keeping(LongSteps& test)
            : database(test.store->catalog().libraryURL() / "catalog.sqlite"), writing(database)
        { }
        Database database;
        Transaction writing;
    };

    TestLibrary library;
    std::vector<PhotoID> ids;
    ManualMainThread main;
    std::unique_ptr<LibraryStore> store;
    std::vector<std::string> faults;
    std::size_t takenOut = 0;
    Connection ended, changed;
};

using Texts = std::vector<std::string>;

} // namespace

TEST_F(LongSteps, goOnBesideTheWindowAndNothingComesBetween)
{
    outcome();
    const auto before = contentOf(store->catalog());
    {
        const Keeping writing(*this);
        setRating(*store, ids, 4);
        ASSERT_TRUE(store->longStep());
        EXPECT_EQ(*store->longStep(), "Set Rating");
        EXPECT_EQ(store->list().find(ids[0])->rating, 0);
        try {
            setRating(*store, only(ids[0]), 1);
            ADD_FAILURE() << "two at once";
        } catch (const DatabaseError& error) {
            EXPECT_TRUE(error.mayPass()) << "what is being adjusted must not be dropped for it";
            EXPECT_EQ(textForUser(error), "“Set Rating” is not done yet. Try again when it is.");
        }
    }
    EXPECT_EQ(outcome(), Texts{""});
    EXPECT_EQ(store->list().find(ids[0])->rating, 4);
    EXPECT_EQ(store->undoPhotos(), ids.size());

    {
        const Keeping writing(*this);
        store->undo();
        EXPECT_THROW(store->undo(), DatabaseError);
        EXPECT_THROW(store->redo(), DatabaseError);
        store->adopt("Add", {{ids[0], ids[1]}, {}, {}}, store->newestStep()); // a job that ends
        EXPECT_EQ(store->undoTitle(), "Set Rating");
    }
    EXPECT_EQ(outcome(), Texts{""});
    EXPECT_EQ(contentOf(store->catalog()), before);
    EXPECT_EQ(store->selection().size(), ids.size()) << "what came back is selected";
    EXPECT_EQ(store->list().find(ids[0])->rating, 0);
    EXPECT_EQ(store->undoTitle(), "Add 2 Photos");
    EXPECT_FALSE(store->redoTitle()) << "it may be what was added";
}

TEST_F(LongSteps, takeOutAndBringBackAllThatWasAdded)
{
    outcome();
    const auto before = contentOf(store->catalog());
    store->adopt("Add", {ids, {}, {}}, store->newestStep());
    store->undo();
    outcome();
    EXPECT_EQ(takenOut, ids.size());
    EXPECT_TRUE(store->list().items().empty());
    store->redo();
    outcome();
    EXPECT_EQ(contentOf(store->catalog()), before);
    EXPECT_EQ(store->list().shown().size(), ids.size());
    EXPECT_EQ(store->undoTitle(), "Add 20500 Photos");
}

TEST_F(LongSteps, thatFailAreToldAndLeaveAllAsItWas)
{
    outcome();
    const auto before = contentOf(store->catalog());
    {
        const Keeping writing(*this);
        store->perform(
            "Fail",
            [](Catalog& catalog) {
                catalog.setRating(only(1), 5);
                throw std::runtime_error("no more");
            },
            ids.size());
    }
    EXPECT_EQ(outcome(), Texts{"no more"});
    EXPECT_EQ(contentOf(store->catalog()), before);
    EXPECT_FALSE(store->undoTitle());

    removePhotos(*store, ids);
    outcome();
    const NewPhoto again{.path = "/photos/100000.jpg"};
    store->catalog().addPhoto(again);
    {
        const Keeping writing(*this);
        store->undo();
    }
    EXPECT_EQ(outcome(), Texts{"\"Remove from Library\" cannot be undone: the library has changed since."});
    EXPECT_EQ(store->catalog().database().scalar("SELECT COUNT(*) FROM photos"), 1);
    EXPECT_FALSE(store->undoTitle());
}

TEST_F(LongSteps, endBeforeTheLibraryIsClosed)
{
    outcome();
    setRating(*store, ids, 4);
    store = nullptr;
    Catalog again(library.folder / "Library", library.clock);
    EXPECT_EQ(again.database().scalar("SELECT COUNT(*) FROM photos WHERE rating = 4"), std::ssize(ids));
}

} // namespace korvo
