#include "catalog/store/LibraryStore.h"
#include "base/JsonError.h"
#include "base/UserError.h"
#include "catalog/Versions.h"
#include "catalog/store/LibraryActions.h"
#include "tests/support/ListedPhotos.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/StoreActions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <functional>

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

    /// Takes back what was added; returns how many photos left by it.
    std::size_t undoneAddition()
    {
        published.clear();
        store->undo();
        return change().takenOut;
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

} // namespace

TEST(LibraryStore, publishesWhatChangedOncePerAction)
{
    TestStore t(3);
    setRating(*t.store, std::vector<PhotoID>{1, 3}, 4);
    auto change = t.change();
    EXPECT_EQ(change.photos, (std::vector<PhotoID>{1, 3}));
    EXPECT_FALSE(change.list || change.tree || change.selection);
    EXPECT_EQ(t.listed(3).rating, 4);

    setRating(*t.store, std::vector<PhotoID>{1, 3}, 4);
    EXPECT_TRUE(t.published.empty()) << "nothing changed";

    setRating(*t.store, only(2), rejectedRating);
    EXPECT_TRUE(t.change().list);
    EXPECT_EQ(t.shown(), (Names{"a.jpg", "c.jpg"}));

    createAlbum(*t.store, "album", std::nullopt);
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
                 addToAlbum(*t.store, 99, only(1)), NotFoundError);
    EXPECT_EQ(contentOf(t.store->catalog()), before);
    EXPECT_FALSE(t.store->undoTitle());
}

TEST(LibraryStore, changesEachPhotosOwnEditsInOneStep)
{
    TestStore test(3);
    auto& store = *test.store;
    setEdits(store, only(2), {.saturation = 0.5});
    test.published.clear();
    const std::vector<PhotoID> all{1, 2, 3};
    changeEdits(store, "Rotate", all, [](PhotoEdits& edits) { edits.rotation = 1; });
    EXPECT_EQ(test.change().photos, all);
    EXPECT_EQ(test.listed(1).edits(), (PhotoEdits{.rotation = 1}));
    EXPECT_EQ(test.listed(2).edits(), (PhotoEdits{.saturation = 0.5, .rotation = 1}));
    EXPECT_EQ(store.undoTitle(), "Rotate");
    store.undo();
    EXPECT_FALSE(test.listed(3).hasEdits());

    store.catalog().database().run("UPDATE photos SET edits = 'no record' WHERE id = 3");
    store.reload();
    EXPECT_THROW(changeEdits(store, "Rotate", all, [](PhotoEdits& edits) { edits.rotation = 1; }), JsonError);
    EXPECT_FALSE(test.listed(1).hasEdits()) << "some photos were changed";
    EXPECT_EQ(test.listed(3).editsJSON.string(), "no record");
}

TEST(LibraryStore, sourcesFollowTheChangesThatConcernThem)
{
    TestStore t(4);
    setFlagged(*t.store, std::vector<PhotoID>{1, 2}, true);
    t.store->chooseSource(LibrarySource{Kind::flagged, 0, {}});
    setFlagged(*t.store, std::vector<PhotoID>{2, 4}, false);
    EXPECT_EQ(t.shown(), Names{"a.jpg"});
    setFlagged(*t.store, only(3), true);
    EXPECT_EQ(t.shown(), (Names{"a.jpg", "c.jpg"}));
    t.store->undo();
    EXPECT_EQ(t.shown(), Names{"a.jpg"});

    const auto album = createAlbum(*t.store, "album", std::nullopt);
    addToAlbum(*t.store, album, std::vector<PhotoID>{4, 1});
    t.store->chooseSource(LibrarySource{Kind::album, album, {}});
    EXPECT_EQ(t.shown(), (Names{"d.jpg", "a.jpg"}));
    setRating(*t.store, std::vector<PhotoID>{1, 2}, 3);
    EXPECT_EQ(t.shown(), (Names{"d.jpg", "a.jpg"}));
    removeFromAlbum(*t.store, album, only(4));
    EXPECT_EQ(t.shown(), Names{"a.jpg"});

    const auto project = createProject(*t.store, "p", "project", std::nullopt);
    t.store->chooseSource(LibrarySource{Kind::project, project, {}});
    assignToProject(*t.store, only(2), project);
    EXPECT_EQ(t.shown(), Names{"b.jpg"});
}

TEST(LibraryStore, whatVanishesLeavesTheSelectionToItsNeighbourAndUndoBringsItBack)
{
    TestStore t(4);
    t.store->select({2});
    setRating(*t.store, only(2), rejectedRating);
    EXPECT_EQ(t.store->selection(), std::vector<PhotoID>{3});
    t.store->undo();
    EXPECT_EQ(t.store->selection(), std::vector<PhotoID>{2});
    t.store->select({4});
    removePhotos(*t.store, only(4));
    EXPECT_EQ(t.store->selection(), std::vector<PhotoID>{3}) << "the last one's neighbour is the one before";
    t.store->undo();
    EXPECT_EQ(t.store->selection(), std::vector<PhotoID>{4});
    EXPECT_EQ(t.shown().size(), 4U);
}

TEST(LibraryStore, whereSeveralVanishTheOneBehindTheLastOfThemIsNext)
{
    using IDs = std::vector<PhotoID>;
    for (const auto& [gone, next] :
        {std::pair(IDs{1, 2}, 3), {IDs{4, 2}, 5}, {IDs{1, 5}, 6}, {IDs{5, 6}, 4}}) {
        TestStore t(6);
        t.store->select(gone);
        setRating(*t.store, gone, rejectedRating);
        EXPECT_EQ(t.store->selection(), only(next)) << gone.front();
    }
}

TEST(LibraryStore, metadataThatComesBackWaitsToBeWrittenAgain)
{
    TestStore t(1);
    setMetadata(*t.store, only(1), {.title = SharedText("new")});
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
    removePhotos(*t.store, only(1));
    NewPhoto again{.path = "/photos/a.jpg"};
    t.store->catalog().addPhotos(std::span(&again, 1));
    const auto before = contentOf(t.store->catalog());
    try {
        t.store->undo();
        ADD_FAILURE() << "the file is there already";
    } catch (const DatabaseError& error) {
        EXPECT_EQ(
            textForUser(error), "\"Remove from Library\" cannot be undone: the library has changed since.");
    }
    EXPECT_EQ(contentOf(t.store->catalog()), before);
    EXPECT_FALSE(t.store->undoTitle()) << "what can never be undone does not stand before what can";
    deleteAlbum(*t.store, createAlbum(*t.store, "Best", {}));
    t.store->catalog().database().exec("ALTER TABLE albums ADD COLUMN later");
    EXPECT_THROW(t.store->undo(), DatabaseError);
    EXPECT_EQ(t.store->undoTitle(), "New Album");
}

TEST(LibraryStore, whatAJobAddedIsTakenOutAsOneStepAndComesBackWithAllItHas)
{
    TestStore t(1);
    auto& catalog = t.store->catalog();
    const auto folder = catalog.addFolder("/new", 1).id;
    const auto kept = catalog.addFolder("/photos", 1).id;
    const auto project = catalog.projectAtRoot("Trip").id;
    AddedRows added{{}, {folder, kept}, {project}};
    for (const auto* const path : {"/new/b.jpg", "/new/c.jpg"}) {
        const NewPhoto photo{.folderID = folder, .path = path};
        added.photos.push_back(catalog.addPhotos(std::span(&photo, 1)).front().id);
    }
    catalog.assignToProject(added.photos, project);
    const auto since = t.store->newestStep();
    t.store->reload();
    setRating(*t.store, only(2), 4); // while the photos are being added
    t.store->adopt("Import", added, since);
    EXPECT_EQ(t.store->undoTitle(), "Set Rating") << "what was done meanwhile is taken back first";
    catalog.storeCameraData(3, {.camera = "K1"}); // as the backfills do, by no step
    const NewPhoto other{.folderID = kept, .path = "/photos/later.jpg"};
    catalog.addPhotos(std::span(&other, 1));
    t.store->reload();
    const auto before = contentOf(catalog);

    t.store->undo();
    EXPECT_EQ(t.store->undoTitle(), "Import 2 Photos");
    EXPECT_EQ(t.undoneAddition(), 2U);
    EXPECT_EQ(t.shown(), (Names{"a.jpg", "later.jpg"}));
    EXPECT_TRUE(t.store->tree().projects.empty());
    EXPECT_EQ(t.store->tree().folders.size(), 1U) << "the one with a photo of another's stays";
    EXPECT_FALSE(t.store->undoTitle());
    t.store->redo();
    t.store->redo();
    EXPECT_EQ(contentOf(catalog), before);
}

TEST(LibraryStore, whatIsAddedAgainIsNotRedoneToo)
{
    TestStore t;
    const NewPhoto a{.path = "/new/a.jpg"}, b{.path = "/new/b.jpg"};
    const auto add = [&](const NewPhoto& photo) {
        return t.store->catalog().addPhotos(std::span(&photo, 1)).front().id;
    };
    t.store->adopt("Add", {{add(a), add(b)}, {}, {}}, t.store->newestStep());
    EXPECT_EQ(t.undoneAddition(), 2U);
    EXPECT_EQ(t.store->redoTitle(), "Add 2 Photos");
    const auto again = add(a), other = add(b);
    t.store->adopt("Add", {{again, other}, {}, {}}, t.store->newestStep());
    EXPECT_FALSE(t.store->redoTitle());
    createVersion(t.store->catalog(), again, "B&W", std::nullopt, 1);
    t.store->catalog().deletePhotos(only(other)); // as another process does
    EXPECT_EQ(t.undoneAddition(), 2U) << "of those added one has gone already, but a version goes along";
    EXPECT_FALSE(t.store->catalog().contains(again));
}

TEST(LibraryStore, keywordsAreAddedToWhatIsStoredThoughTheListHasItNotYet)
{
    TestStore t(2);
    t.store->catalog().changeMetadata(only(1), {.keywords = SharedText("sea")}, WriteBack::done);
    editKeywords(*t.store, std::vector<PhotoID>{1, 2}, {.added = {"night"}, .removed = {}});
    EXPECT_EQ(t.listed(1).metadata.keywords, "sea, night");
    EXPECT_EQ(t.listed(2).metadata.keywords, "night");
}

TEST(LibraryStore, undoPutsNoProjectIntoItselfNorIntoOneThatIsGone)
{
    TestStore t;
    const auto outer = createProject(*t.store, "outer", "folder", std::nullopt);
    const auto inner = createProject(*t.store, "inner", "folder", outer);
    placeProject(*t.store, inner, std::nullopt, std::nullopt);
    t.store->catalog().moveProject(outer, inner); // as another program does
    t.store->undo();
    const ProjectNode outerNode{outer, "outer", "folder", inner, 0, {}};
    EXPECT_EQ(t.store->catalog().tree().projects,
        (std::vector<ProjectNode>{{inner, "inner", "folder", std::nullopt, 0, {outerNode}}}));
    deleteProject(*t.store, outer);
    t.store->catalog().deleteProject(inner);
    t.store->undo();
    EXPECT_EQ(t.store->catalog().tree().projects,
        (std::vector<ProjectNode>{{outer, "outer", "folder", std::nullopt, 0, {}}}));
}

TEST(LibraryStore, aStepStaysWhileTheCatalogCannotBeWritten)
{
    TestStore t(1);
    setRating(*t.store, only(1), 3);
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

    Database other(t.store->catalog().libraryURL() / "catalog.sqlite");
    const Transaction writing(other);
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_THROW(t.store->undo(), DatabaseError);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(3))
        << "nobody waits at a window";
    EXPECT_TRUE(t.store->undoTitle());
}

TEST(LibraryStore, photosMayChangePlacesAndComeBackWhereAnotherGoes)
{
    TestStore t(2);
    const auto before = contentOf(t.store->catalog());
    t.store->perform("Swap", [](Catalog& catalog) {
        for (const auto& [id, name] : {std::pair{1, "tmp.jpg"}, {2, "a.jpg"}, {1, "b.jpg"}})
            catalog.fileRenamed(id, std::string("/photos/") + name);
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
    setRating(*t.store, only(2), 1);
    t.published.clear();
    t.store->reloadIfChangedElsewhere();
    EXPECT_TRUE(t.published.empty()) << "its own changes are no news";
}

} // namespace korvo
