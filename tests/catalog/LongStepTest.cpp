// Steps of very many photos, which the store does not wait for.

#include "base/UserError.h"
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
        failed = store->failed.connect(
            [this](const std::exception& error) { told.push_back(textForUser(error)); });
        ended = store->stepEnded.connect([this](StepOutcome outcome) {
            if (outcome == StepOutcome::done)
                told.push_back("done");
        });
        changed
            = store->changed.connect([this](const LibraryChange& change) { takenOut += change.takenOut; });
    }

    /// Lets all come to its end; returns what was told meanwhile.
    std::vector<std::string> outcome()
    {
        EXPECT_TRUE(main.runUntil([&] { return !store->longStep() && !store->isReading(); }));
        return std::exchange(told, {});
    }
    /// How a rating of all ends, at once or later.
    StepOutcome rated()
    {
        auto ending = StepOutcome::done;
        const auto listening = store->stepEnded.connect([&](StepOutcome outcome) { ending = outcome; });
        try {
            setRating(*store, ids, 4);
        } catch (const DatabaseError& error) {
            return error.mayPass() ? StepOutcome::failedForNow : StepOutcome::failed;
        }
        outcome();
        return ending;
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
    std::vector<std::string> told;
    std::size_t takenOut = 0;
    Connection failed, ended, changed;
};

using Texts = std::vector<std::string>;

std::size_t ratedIn(Catalog& catalog, int rating)
{
    return static_cast<std::size_t>(
        catalog.database().scalar("SELECT COUNT(*) FROM photos WHERE rating = ?", rating));
}

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
    EXPECT_EQ(outcome(), Texts{"done"});
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
    EXPECT_EQ(outcome(), Texts{"done"});
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
    EXPECT_EQ(store->undoTitle(), "Add 20,500 Photos");
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
    EXPECT_EQ(ratedIn(again, 4), ids.size());
}

TEST_F(LongSteps, areFollowedByAllThatWaitsForThemInItsOrder)
{
    outcome();
    std::string order;
    const auto early = store->changed.connect([&](const LibraryChange& change) {
        if (!change.photos.empty()) {
            EXPECT_THROW(setRating(*store, ids, 1), DatabaseError) << "not all have heard of the end";
        }
    });
    const auto listening = store->stepEnded.connect([&](StepOutcome) {
        order += "1";
        throw std::runtime_error("a listener fails");
    });
    store->whenFree([&] { order += "0"; });
    setRating(*store, ids, 4);
    store->whenFree([] { throw std::runtime_error("what waits fails"); });
    store->whenFree([&] {
        store->whenFree([&] { order += "-"; });
        order += "2";
        setRating(*store, ids, 2);
    });
    store->whenFree([&] { order += "3"; });
    EXPECT_EQ(order, "0");
    store->finishLongStep();
    EXPECT_EQ(order, "01-213") << "what waits begins a step, which the next waits for";
    EXPECT_EQ(told, (Texts{"done", "a listener fails", "what waits fails", "done", "a listener fails"}));
    EXPECT_EQ(ratedIn(store->catalog(), 2), ids.size());
}

TEST_F(LongSteps, leaveTheSelectionToWhoeverHasGoneOn)
{
    outcome();
    setRating(*store, ids, 4);
    outcome();
    store->select({ids[0]});
    {
        const Keeping writing(*this);
        store->undo();
        store->select({ids[1]});
    }
    outcome();
    EXPECT_EQ(store->selection(), std::vector{ids[1]});
    store->redo();
    outcome();
    EXPECT_EQ(store->selection().size(), ids.size());
}

TEST_F(LongSteps, areNotTakenForChangesOfOthers)
{
    const auto isReadAgain = [&] {
        outcome();
        store->reloadIfChangedElsewhere();
        return store->isReading();
    };
    isReadAgain();
    setRating(*store, ids, 4);
    EXPECT_FALSE(isReadAgain());
    {
        Keeping others(*this);
        setRating(*store, ids, 3);
        others.database.run("UPDATE photos SET rating = 1 WHERE id = ?", ids[0]);
        others.writing.commit();
    }
    EXPECT_TRUE(isReadAgain());
}

TEST_F(LongSteps, makeNoCatalogWhereTheOpenOneWasMovedAway)
{
    outcome();
    const auto catalog = store->catalog().libraryURL() / "catalog.sqlite";
    const auto moved = store->catalog().libraryURL() / "moved.sqlite";
    std::filesystem::rename(catalog, moved);
    EXPECT_EQ(rated(), StepOutcome::failedForNow);
    EXPECT_FALSE(std::filesystem::exists(catalog));
    std::filesystem::rename(moved, catalog);
    EXPECT_EQ(rated(), StepOutcome::done);
}

TEST_F(LongSteps, changeNoOtherLibraryThatStandsInThePlaceOfTheOpenOne)
{
    outcome();
    const auto place = store->catalog().libraryURL();
    std::filesystem::rename(place, library.folder / "Renamed");
    std::filesystem::copy(library.folder / "Renamed", place, std::filesystem::copy_options::recursive);
    EXPECT_EQ(rated(), StepOutcome::failedForNow);
    Catalog other(place, library.clock);
    EXPECT_EQ(ratedIn(other, 4), 0U);
}

} // namespace korvo
