#include "catalog/LibraryStore.h"
#include "base/JsonError.h"
#include "tests/support/ListedPhotos.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/Soak.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace korvo {

namespace {

using Kind = LibrarySource::Kind;
using Names = std::vector<std::string>;

struct TestStore : TestLibrary {
    explicit TestStore(int photos = 0)
    {
        for (int i = 0; i < photos; ++i)
            photo(std::string(1, static_cast<char>('a' + i)) + ".jpg");
        store = std::make_unique<LibraryStore>(main, std::move(catalog));
        connection
            = store->changed.connect([this](const LibraryChange& change) { published.push_back(change); });
    }

    /// What was published since the last call; fails the test unless it was one change.
    LibraryChange change()
    {
        EXPECT_EQ(published.size(), 1U);
        auto last = published.empty() ? LibraryChange() : published.back();
        published.clear();
        return last;
    }

    Names shown() const
    {
        Names names;
        for (const auto position : store->list().shown())
            names.push_back(store->list().items()[position].filename.string());
        return names;
    }

    const PhotoItem& listed(PhotoID id) const { return *store->list().find(id); }

    ManualMainThread main;
    std::unique_ptr<LibraryStore> store;
    std::vector<LibraryChange> published;
    Connection connection;
};

/// Every row of every table that undo brings back.
std::string contentOf(Catalog& catalog)
{
    std::string text;
    for (const char* table :
        {"folders", "photos", "albums", "album_items", "stacks", "smart_albums", "projects", "keywords"})
        for (const auto& row :
            catalog.database().query(std::string("SELECT * FROM ") + table + " ORDER BY 1, 2")) {
            text += table;
            for (const auto& [column, value] : row)
                if (column != "dirty")
                    std::visit(
                        [&](const auto& v) {
                            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(v)>>)
                                text += " " + column + "=" + std::to_string(v);
                            else
                                text += " " + column + "=" + std::string(v.begin(), v.end());
                        },
                        value);
            text += '\n';
        }
    return text;
}

} // namespace

TEST(LibraryStore, publishesWhatChangedOncePerAction)
{
    TestStore t(3);
    t.store->setRating(std::vector<PhotoID>{1, 3}, 4);
    auto change = t.change();
    EXPECT_EQ(change.photos, (std::vector<PhotoID>{1, 3}));
    EXPECT_FALSE(change.list || change.tree || change.selection);
    EXPECT_EQ(t.listed(3).rating, 4);

    t.store->setRating(std::vector<PhotoID>{1, 3}, 4);
    EXPECT_TRUE(t.published.empty()) << "nothing changed";

    t.store->setRating(only(2), rejectedRating);
    EXPECT_TRUE(t.change().list);
    EXPECT_EQ(t.shown(), (Names{"a.jpg", "c.jpg"}));

    t.store->createAlbum("album", std::nullopt);
    change = t.change();
    EXPECT_TRUE(change.tree);
    EXPECT_FALSE(change.list);
    EXPECT_EQ(t.store->tree().albums.size(), 1U);
}

TEST(LibraryStore, aFailedActionLeavesEverythingAsItWas)
{
    TestStore t(2);
    const auto before = contentOf(t.store->catalog());
    EXPECT_THROW(t.store->perform("Fail",
                     [](Catalog& catalog) {
                         catalog.setRating(only(1), 5);
                         catalog.database().exec("INSERT INTO nowhere VALUES (1)");
                     }),
        DatabaseError);
    EXPECT_THROW(t.store->chooseSource(LibrarySource{Kind::album, 1, {}});
                 t.store->addToAlbum(99, only(1)), NotFoundError);
    EXPECT_EQ(contentOf(t.store->catalog()), before);
    EXPECT_FALSE(t.store->undoTitle());
}

TEST(LibraryStore, changesEachPhotosOwnEditsInOneStep)
{
    TestStore test(3);
    auto& store = *test.store;
    store.setEdits(only(2), {.saturation = 0.5});
    test.published.clear();
    const std::vector<PhotoID> all{1, 2, 3};
    store.changeEdits("Rotate", all, [](PhotoEdits& edits) { edits.rotation = 1; });
    EXPECT_EQ(test.change().photos, all);
    EXPECT_EQ(test.listed(1).edits(), (PhotoEdits{.rotation = 1}));
    EXPECT_EQ(test.listed(2).edits(), (PhotoEdits{.saturation = 0.5, .rotation = 1}));
    EXPECT_EQ(store.undoTitle(), "Rotate");
    store.undo();
    EXPECT_FALSE(test.listed(3).hasEdits());

    store.catalog().database().run("UPDATE photos SET edits = 'no record' WHERE id = 3");
    store.reload();
    EXPECT_THROW(store.changeEdits("Rotate", all, [](PhotoEdits& edits) { edits.rotation = 1; }), JsonError);
    EXPECT_FALSE(test.listed(1).hasEdits()) << "some photos were changed";
    EXPECT_EQ(test.listed(3).editsJSON.string(), "no record");
}

TEST(LibraryStore, sourcesFollowTheChangesThatConcernThem)
{
    TestStore t(4);
    t.store->setFlagged(std::vector<PhotoID>{1, 2}, true);
    t.store->chooseSource(LibrarySource{Kind::flagged, 0, {}});
    t.store->setFlagged(std::vector<PhotoID>{2, 4}, false);
    EXPECT_EQ(t.shown(), Names{"a.jpg"});
    t.store->setFlagged(only(3), true);
    EXPECT_EQ(t.shown(), (Names{"a.jpg", "c.jpg"}));
    t.store->undo();
    EXPECT_EQ(t.shown(), Names{"a.jpg"});

    const auto album = t.store->createAlbum("album", std::nullopt);
    t.store->addToAlbum(album, std::vector<PhotoID>{4, 1});
    t.store->chooseSource(LibrarySource{Kind::album, album, {}});
    EXPECT_EQ(t.shown(), (Names{"d.jpg", "a.jpg"}));
    t.store->setRating(std::vector<PhotoID>{1, 2}, 3);
    EXPECT_EQ(t.shown(), (Names{"d.jpg", "a.jpg"}));
    t.store->removeFromAlbum(album, only(4));
    EXPECT_EQ(t.shown(), Names{"a.jpg"});

    const auto project = t.store->createProject("p", "project", std::nullopt);
    t.store->chooseSource(LibrarySource{Kind::project, project, {}});
    t.store->assignToProject(only(2), project);
    EXPECT_EQ(t.shown(), Names{"b.jpg"});
}

TEST(LibraryStore, whatVanishesLeavesTheSelectionToItsNeighbourAndUndoBringsItBack)
{
    TestStore t(4);
    t.store->select({2});
    t.store->setRating(only(2), rejectedRating);
    EXPECT_EQ(t.store->selection(), std::vector<PhotoID>{3});
    t.store->undo();
    EXPECT_EQ(t.store->selection(), std::vector<PhotoID>{2});
    t.store->select({4});
    t.store->removePhotos(only(4));
    EXPECT_EQ(t.store->selection(), std::vector<PhotoID>{3}) << "the last one's neighbour is the one before";
    t.store->undo();
    EXPECT_EQ(t.store->selection(), std::vector<PhotoID>{4});
    EXPECT_EQ(t.shown().size(), 4U);
}

TEST(LibraryStore, metadataThatComesBackWaitsToBeWrittenAgain)
{
    TestStore t(1);
    t.store->setMetadata(only(1), {.title = SharedText("new")});
    t.store->catalog().clearDirty(1); // the file was written meanwhile
    t.store->undo();
    EXPECT_EQ(t.listed(1).metadata.title, "");
    EXPECT_TRUE(t.listed(1).dirty);
    t.store->redo();
    EXPECT_EQ(t.listed(1).metadata.title, "new");
    EXPECT_TRUE(t.listed(1).dirty);
}

TEST(LibraryStore, undoGivesWayToWhatCannotBeUndone)
{
    TestStore t(2);
    t.store->removePhotos(only(1));
    NewPhoto again{.path = "/photos/a.jpg"};
    t.store->catalog().addPhotos(std::span(&again, 1));
    const auto before = contentOf(t.store->catalog());
    EXPECT_THROW(t.store->undo(), DatabaseError);
    EXPECT_EQ(contentOf(t.store->catalog()), before);
    EXPECT_FALSE(t.store->undoTitle()) << "what can never be undone does not stand before what can";
}

TEST(LibraryStore, undoPutsNoProjectIntoItselfNorIntoOneThatIsGone)
{
    TestStore t;
    const auto outer = t.store->createProject("outer", "folder", std::nullopt);
    const auto inner = t.store->createProject("inner", "folder", outer);
    t.store->moveProject(inner, std::nullopt);
    t.store->catalog().moveProject(outer, inner); // as another program does
    t.store->undo();
    const ProjectNode outerNode{outer, "outer", "folder", inner, 0, {}};
    EXPECT_EQ(t.store->catalog().tree().projects,
        (std::vector<ProjectNode>{{inner, "inner", "folder", std::nullopt, 0, {outerNode}}}));
    t.store->deleteProject(outer);
    t.store->catalog().deleteProject(inner);
    t.store->undo();
    EXPECT_EQ(t.store->catalog().tree().projects,
        (std::vector<ProjectNode>{{outer, "outer", "folder", std::nullopt, 0, {}}}));
}

TEST(LibraryStore, aStepStaysWhileTheCatalogCannotBeWritten)
{
    TestStore t(1);
    t.store->setRating(only(1), 3);
    t.store->catalog().database().exec("PRAGMA query_only = ON");
    EXPECT_THROW(t.store->undo(), DatabaseError);
    t.store->catalog().database().exec("PRAGMA query_only = OFF");
    t.store->undo();
    EXPECT_EQ(t.listed(1).rating, 0);
    t.store->catalog().database().exec("PRAGMA query_only = ON");
    EXPECT_THROW(t.store->redo(), DatabaseError);
    t.store->catalog().database().exec("PRAGMA query_only = OFF");
    t.store->redo();
    EXPECT_EQ(t.listed(1).rating, 3);
}

TEST(LibraryStore, photosMayChangePlacesAndComeBackWhereAnotherGoes)
{
    TestStore t(2);
    const auto before = contentOf(t.store->catalog());
    t.store->perform("Swap", [](Catalog& catalog) {
        catalog.fileRenamed(1, "/photos/tmp.jpg");
        catalog.fileRenamed(2, "/photos/a.jpg");
        catalog.fileRenamed(1, "/photos/b.jpg");
    });
    t.store->perform("Replace", [](Catalog& catalog) {
        catalog.deletePhotos(only(1));
        const NewPhoto again{.path = "/photos/b.jpg"};
        catalog.addPhotos(std::span(&again, 1));
    });
    const auto after = contentOf(t.store->catalog());
    t.store->undo();
    t.store->undo();
    EXPECT_EQ(contentOf(t.store->catalog()), before);
    EXPECT_EQ(t.shown(), (Names{"a.jpg", "b.jpg"}));
    t.store->redo();
    t.store->redo();
    EXPECT_EQ(contentOf(t.store->catalog()), after);
}

TEST(UndoHistory, forgetsTheOldestByNumberAndByWeightButKeepsTwoHundred)
{
    const auto stepsOf = [](std::size_t count, std::size_t bytes) {
        UndoHistory history;
        for (std::size_t i = 0; i < count; ++i)
            history.add({"", Changeset(std::vector<std::uint8_t>(bytes))});
        std::size_t steps = 0;
        for (; history.toUndo(); history.undone())
            ++steps;
        return steps;
    };
    EXPECT_EQ(stepsOf(510, 1), 500U);
    EXPECT_EQ(stepsOf(310, 1 << 20), 256U);
    EXPECT_EQ(stepsOf(210, 2 << 20), 200U);
}

TEST(LibraryStore, seesWhatOtherProcessesChange)
{
    TestStore t(2);
    Catalog other(t.folder / "Library", t.clock);
    t.store->reloadIfChangedElsewhere();
    t.published.clear();
    other.setRating(only(1), 5);
    t.store->reloadIfChangedElsewhere();
    EXPECT_TRUE(t.change().list);
    EXPECT_EQ(t.listed(1).rating, 5);
    t.store->setRating(only(2), 1);
    t.published.clear();
    t.store->reloadIfChangedElsewhere();
    EXPECT_TRUE(t.published.empty()) << "its own changes are no news";
}

namespace {

void undoAndRedoRandomActions(unsigned seed)
{
    TestStore t(8);
    LibraryStore& store = *t.store;
    store.catalog().database().exec("INSERT INTO photos (path, filename, added_at, version_of) "
                                    "SELECT path, filename, 1, id FROM photos WHERE id = 1;"
                                    "INSERT INTO folders (path, added_at) VALUES ('/photos', 1);"
                                    "UPDATE photos SET folder_id = 1 WHERE id IN (1, 2, 9)");
    store.reload();
    std::mt19937 random(seed);
    const auto upTo = [&](std::size_t n) { return static_cast<std::int64_t>(random() % n); };
    const auto photos = [&] {
        std::vector<PhotoID> ids;
        for (const auto& item : store.list().items())
            if (upTo(3) == 0)
                ids.push_back(item.id);
        return ids;
    };
    const auto anyOf = [&](const char* table) -> std::optional<std::int64_t> {
        const auto id = store.catalog().database().scalar(
            std::string("SELECT id FROM ") + table + " ORDER BY id DESC LIMIT 1");
        return id ? std::optional(id) : std::nullopt;
    };
    const auto chooseAnySource = [&] {
        const std::vector<std::optional<LibrarySource>> sources
            = {std::nullopt, LibrarySource{Kind::flagged, 0, {}}, LibrarySource{Kind::recentlyAdded, 0, {}},
                LibrarySource{Kind::noAltText, 0, {}},
                LibrarySource{Kind::album, anyOf("albums").value_or(1), {}},
                LibrarySource{Kind::project, anyOf("projects").value_or(1), {}},
                LibrarySource{Kind::folder, anyOf("folders").value_or(1), {}},
                LibrarySource{Kind::smartAlbum, anyOf("smart_albums").value_or(1), {}}};
        store.chooseSource(sources[static_cast<std::size_t>(upTo(sources.size()))]);
    };
    const std::vector<std::function<void()>> actions = {
        [&] { store.setRating(photos(), static_cast<int>(upTo(7)) - 1); },
        [&] { store.setFlagged(photos(), upTo(2) == 0); },
        [&] { store.setLabel(photos(), static_cast<PhotoLabel>(upTo(8))); },
        [&] { store.setMetadata(photos(), {.title = SharedText(std::to_string(upTo(5)))}); },
        [&] {
            PhotoEdits edits;
            edits.exposure = static_cast<double>(upTo(3));
            store.setEdits(photos(), edits);
        },
        [&] { store.createProject("p", "project", anyOf("projects")); },
        [&] { store.createAlbum("a", anyOf("projects")); },
        [&] { store.assignToProject(photos(), anyOf("projects")); },
        [&] {
            store.addToAlbum(anyOf("albums").value_or(store.createAlbum("first", std::nullopt)), photos());
        },
        [&] { store.createKeyword("k", anyOf("keywords")); },
        [&] {
            if (const auto photo = anyOf("photos"))
                store.createVersion(*photo, std::nullopt, std::nullopt, 1);
        },
        [&] {
            if (const auto ids = photos(); ids.size() > 1)
                store.createStack(ids, ids.back());
        },
        [&] {
            if (const auto stack = anyOf("stacks"))
                upTo(4) ? store.setStackState(*stack, static_cast<StackState>(upTo(2)))
                        : store.unstack(*stack);
        },
        [&] {
            if (const auto all = store.catalog().stacks(); !all.empty())
                store.moveInStack(all.front().id, all.front().members.back(), 0);
        },
        [&] {
            if (const auto all = store.catalog().stacks(); !all.empty())
                store.setPick(all.back().id, all.back().members.back());
        },
        [&] { store.gatherUnderProject("all"); },
        [&] {
            if (const auto ids = photos(); !ids.empty())
                store.perform("Rename", [&](Catalog& catalog) {
                    catalog.fileRenamed(ids.front(), "/photos/" + std::to_string(random()) + ".jpg");
                });
        },
        [&] {
            store.createSmartAlbum(
                "s", {{{SmartAlbumRule::Field::rating, SmartAlbumRule::Op::atLeast, "2"}}});
        },
        [&] {
            if (const auto folder = anyOf("folders"); folder && upTo(8) == 0)
                store.removeFolder(*folder);
        },
        [&] { chooseAnySource(); },
        [&] {
            if (const auto& items = store.list().items(); !items.empty() && upTo(8) == 0)
                store.removePhotos(only(items[static_cast<std::size_t>(upTo(items.size()))].id));
        },
        [&] {
            if (const auto id = anyOf("projects"); id && upTo(4) == 0)
                store.deleteProject(*id);
        },
        [&] {
            if (const auto id = anyOf("albums"); id && upTo(4) == 0)
                store.deleteAlbum(*id);
        },
        [&] {
            if (const auto id = anyOf("keywords"); id && upTo(4) == 0)
                store.deleteKeyword(*id);
        },
    };
    const auto listIsTrue = [&] {
        PhotoList fresh;
        fresh.setStacks(store.catalog().stacks());
        if (!store.sourceFault())
            fresh.assign(store.catalog().photos(store.source()), listedBy(store.source()));
        return listTheSame(store.list(), fresh);
    };
    const auto stacksAreSound = [&] {
        for (const auto& stack : store.catalog().stacks())
            if (stack.members.size() < 2 || stack.members.front() != stack.pick)
                return false;
        return true;
    };
    std::vector<std::string> states{contentOf(store.catalog())};
    while (states.size() <= 250) {
        actions[static_cast<std::size_t>(upTo(actions.size()))]();
        ASSERT_TRUE(listIsTrue() && stacksAreSound());
        if (auto state = contentOf(store.catalog()); state != states.back())
            states.push_back(std::move(state));
    }
    for (std::size_t step = 250; step-- > 0;) {
        // An action that made an album first counts as two.
        while (contentOf(store.catalog()) != states[step] && store.undoTitle())
            store.undo();
        ASSERT_EQ(contentOf(store.catalog()), states[step]) << "undoing to step " << step;
        ASSERT_TRUE(listIsTrue());
        if (step % 10 == 0)
            chooseAnySource();
    }
    while (store.undoTitle()) // those that changed nothing but what waits to be written
        store.undo();
    EXPECT_EQ(contentOf(store.catalog()), states.front());
    while (store.redoTitle())
        store.redo();
    EXPECT_EQ(contentOf(store.catalog()), states.back());
    EXPECT_TRUE(listIsTrue());
}

} // namespace

TEST(LibraryStore, randomActionsAreUndoneAndRedoneStepByStep)
{
    forSeeds(undoAndRedoRandomActions);
}

} // namespace korvo
