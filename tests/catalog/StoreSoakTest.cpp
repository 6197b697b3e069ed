// Random actions of a user beside a model that is plain enough to be right, and undo as whole copies of it.
// What the model does not know of, as stacks and versions, is compared by the tables' rows.
#include "catalog/SourceQuery.h"
#include "catalog/Stacks.h"
#include "tests/catalog/RandomActions.h"
#include "tests/support/ListedPhotos.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/Soak.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

/// What undo brings back.
struct State {
    Model model;
    std::string tables;
};

/// Where a store does what it does of more than a few photos: in the background it is not waited for.
enum class Place { here, background };

/// A store and its model, which live through the same actions.
class Soak {
public:
    Soak(unsigned seed, Place place) : place_(place), actions_(seed, store_, state_.model)
    {
        for (int i = 0; i < 40; ++i)
            now().photos[library_.photo(std::to_string(i) + ".jpg")];
        for (int i = 0; i < 3; ++i) {
            now().albums[library_.catalog->createAlbum("album", std::nullopt)];
            now().projects[library_.catalog->createProject("project", "project", std::nullopt)] = {"project"};
        }
        library_.catalog->database().run("UPDATE photos SET folder_id = ? WHERE id <= ?",
            library_.catalog->addFolder("/photos", 1).id, lastInFolder);
        state_.tables = contentOf(*library_.catalog);
        open();
    }

    void act()
    {
        const auto kind = actions_.upTo(100);
        if (kind < 12) {
            for (auto steps = 1 + actions_.upTo(4); steps > 0 && undo(); --steps) { }
        } else if (kind < 22) {
            for (auto steps = 1 + actions_.upTo(4); steps > 0 && redo(); --steps) { }
        } else if (kind == 22) {
            open();
        } else if (kind < 32) {
            actions_.chooseSource();
        } else if (kind < 35) {
            actions_.arrange();
        } else {
            auto before = state_;
            actions_.act();
            settle();
            state_.tables = contentOf(store_->catalog());
            if (state_.tables != before.tables) {
                past_.push_back(std::move(before));
                future_.clear();
            }
        }
        settle();
    }

    /// A step back; false when there is none.
    bool undo()
    {
        store_->undo();
        settle();
        return travel(past_, future_);
    }

    bool redo()
    {
        store_->redo();
        settle();
        return travel(future_, past_);
    }

    std::string difference()
    {
        if (!told_.empty() || waiting_ > 0)
            return told_ + " while " + std::to_string(waiting_) + " wait";
        if (store_->undoTitle().has_value() != !past_.empty()
            || store_->redoTitle().has_value() != !future_.empty())
            return "steps to undo or redo";
        const auto& items = store_->list().items();
        const auto source = store_->source();
        std::set<PhotoID> listed;
        for (const auto& item : items) {
            listed.insert(item.id);
            if (!now().photos.contains(item.id) || modelOf(item) != now().photos.at(item.id))
                return "photo " + std::to_string(item.id);
        }
        if (listed != now().in(source) || listed.size() != items.size())
            return "the photos of " + sourceText(source);
        for (const auto id : store_->selection())
            if (!listed.contains(id))
                return "a selected photo that is not shown";
        if (!listsAsWhenReadAnew())
            return "the order of the photos";
        for (const auto& stack : stacksIn(store_->catalog().database()))
            if (stack.members.size() < 2 || stack.members.front() != stack.pick)
                return "stack " + std::to_string(stack.id);
        if (contentOf(store_->catalog()) != state_.tables)
            return "the tables";
        return modelOf(store_->catalog()) == now() ? "" : "the catalog";
    }

    int refusals() const { return refusals_; }

private:
    Model& now() { return state_.model; }

    bool listsAsWhenReadAnew()
    {
        PhotoList fresh;
        fresh.setStacks(stacksIn(store_->catalog().database()));
        if (!store_->sourceFault())
            fresh.assign(store_->catalog().photos(store_->source()), listedBy(store_->source()));
        fresh.arrange(store_->list().arrangement());
        return listTheSame(store_->list(), fresh);
    }

    void open()
    {
        const auto folder = library_.folder / "Library";
        store_.reset();
        library_.catalog.reset();
        auto catalog = std::make_unique<Catalog>(folder, library_.clock);
        store_ = place_ == Place::background
            ? std::make_unique<LibraryStore>(main_, std::move(catalog), std::chrono::milliseconds(0), small)
            : std::make_unique<LibraryStore>(main_, std::move(catalog));
        failed_ = store_->failed.connect([this](const std::exception& error) { told_ += error.what(); });
        past_.clear();
        future_.clear();
        settle();
    }

    bool isBusy() const { return !store_->isFree() || store_->isReading() || store_->isOrdering(); }

    /// Lets all come to its end, while the user goes on.
    void settle()
    {
        while (isBusy() && actions_.upTo(3) > 0)
            switch (actions_.upTo(4)) {
            case 0:
                actions_.chooseSource();
                break;
            case 1:
                actions_.arrange();
                break;
            case 2:
                main_.runPending();
                break;
            default:
                expectRefusal();
            }
        EXPECT_TRUE(main_.runUntil([&] { return !isBusy(); }));
    }

    /// What would come between is not done, but waits where it may.
    void expectRefusal()
    {
        if (store_->isFree())
            return;
        EXPECT_THROW(store_->undo(), DatabaseError);
        ++refusals_;
        ++waiting_;
        store_->whenFree([this] { --waiting_; });
    }

    bool travel(std::vector<State>& from, std::vector<State>& to)
    {
        if (from.empty())
            return false;
        to.push_back(std::exchange(state_, std::move(from.back())));
        from.pop_back();
        return true;
    }

    static constexpr StoreBounds small{.photosAtOnce = 5, .bytesAtOnce = 500, .photosListed = 5};

    const Place place_;
    ManualMainThread main_;
    TestLibrary library_;
    std::string told_;
    int waiting_ = 0, refusals_ = 0;
    std::unique_ptr<LibraryStore> store_;
    State state_;
    RandomActions actions_; // upon those two
    std::vector<State> past_;
    std::vector<State> future_;
    Connection failed_;
};

void liveBesideAModel(unsigned seed, Place place)
{
    Soak soak(seed, place);
    for (int i = 0; i < 400; ++i) {
        soak.act();
        ASSERT_EQ(soak.difference(), "") << "after action " << i;
    }
    while (soak.undo())
        ASSERT_EQ(soak.difference(), "") << "on the way back";
    while (soak.redo())
        ASSERT_EQ(soak.difference(), "") << "on the way forth";
    EXPECT_EQ(soak.refusals() > 0, place == Place::background);
}

} // namespace

TEST(LibraryStore, doesWhatAPlainModelDoesThroughRandomActionsUndoAndRedo)
{
    forSeeds([](unsigned seed) { liveBesideAModel(seed, Place::here); });
}

TEST(LibraryStore, doesSoInTheBackgroundToo)
{
    forSeeds([](unsigned seed) { liveBesideAModel(seed, Place::background); });
}

} // namespace korvo
