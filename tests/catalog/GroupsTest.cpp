#include "catalog/LibraryReading.h"
#include "catalog/SourceQuery.h"
#include "catalog/Stacks.h"
#include "catalog/Versions.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryActions.h"
#include "catalog/store/LibraryStore.h"
#include "tests/support/ListedPhotos.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/StoreActions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>

namespace korvo {

namespace {

using IDs = std::vector<PhotoID>;

struct Photos : TestLibrary {
    explicit Photos(int count)
    {
        for (int i = 0; i < count; ++i)
            photo(std::string(1, static_cast<char>('a' + i)) + ".jpg");
    }

    PhotoID newVersion(PhotoID of) { return createVersion(*catalog, of, std::nullopt, std::nullopt, 5); }
    IDs members(std::size_t stack = 0) const { return stacksIn(catalog->database()).at(stack).members; }
};

struct Grid : Photos {
    explicit Grid(int count) : Photos(count), store(main, std::move(catalog)) { }

    IDs shown() const { return shownIDs(store.list()); }

    ManualMainThread main;
    LibraryStore store;
};

} // namespace

TEST(Versions, areNumberedByTheirCountAndBelongToTheMaster)
{
    Photos t(1);
    EXPECT_EQ(t.item(t.newVersion(1)).versionName, "Version 2");
    const auto third = t.newVersion(2);
    EXPECT_EQ(t.item(third).versionName, "Version 3");
    EXPECT_EQ(*t.item(third).versionOf, 1);
    EXPECT_EQ(t.item(t.newVersion(1)).versionName, "Version 4");
    t.catalog->deletePhotos(only(2));
    EXPECT_EQ(t.item(t.newVersion(1)).versionName, "Version 4") << "by the count alone";
    const auto named = createVersion(*t.catalog, 1, "Print", std::nullopt, 5);
    EXPECT_EQ(t.item(named).versionName, "Print");
    EXPECT_EQ(versionsOf(*t.catalog, third).back().id, named);
    EXPECT_EQ(countsIn(t.catalog->database()).versions, (std::unordered_map<PhotoID, std::int64_t>{{1, 4}}));
    EXPECT_THROW(t.newVersion(99), NotFoundError);
    t.catalog->deletePhotos(only(1));
    EXPECT_TRUE(versionsOf(*t.catalog, 1).empty());
    EXPECT_FALSE(t.catalog->contains(named));
}

TEST(Versions, startAsTheirPhotoStandsAndThenGoTheirOwnWay)
{
    Photos t(1);
    PhotoEdits edits;
    edits.exposure = 0.5;
    t.catalog->setRating(only(1), 4);
    t.catalog->saveEdits(only(1), edits);
    t.catalog->storeCameraData(1, {.camera = "Cam", .lens = "Lens", .iso = 100, .captureDate = 7.0});
    t.catalog->assignToProject(only(1), t.catalog->createProject("p", "project", std::nullopt));
    const auto version = t.newVersion(1);
    auto expected = t.item(1);
    expected.id = version;
    expected.versionOf = 1;
    expected.versionName = "Version 2";
    expected.addedAt = 5;
    EXPECT_EQ(t.item(version), expected);

    const auto plain = createVersion(*t.catalog, version, std::nullopt, PhotoEdits(), 5);
    EXPECT_FALSE(t.item(plain).hasEdits());
    t.catalog->setRating(only(version), 1);
    EXPECT_EQ(t.item(1).rating, 4);
    t.catalog->storeCameraData(1, {.camera = "Other", .lens = {}});
    EXPECT_EQ(t.item(plain).camera, "Other");
}

TEST(Stacks, standInTheOrderOfPickPositionAndName)
{
    Photos t(4);
    const auto version = t.newVersion(3);
    const auto stack = createStack(*t.catalog, IDs{4, version, 1}, 1);
    EXPECT_EQ(stacksIn(t.catalog->database()), (std::vector<Stack>{{stack, 1, true, {1, 4, 3}}}));
    EXPECT_EQ(*t.item(version).stackID, stack) << "versions go with their master";
    setPick(*t.catalog, stack, version);
    EXPECT_EQ(t.members(), (IDs{3, 4, 1}));
    setPick(*t.catalog, stack, 4);
    for (const auto& [photo, position, members] : {std::tuple{1, 0U, IDs{4, 1, 3}}, {1, 1U, IDs{4, 1, 3}},
             {1, 99U, IDs{4, 3, 1}}, {4, 2U, IDs{4, 3, 1}}, {1, 1U, IDs{4, 1, 3}}}) {
        moveInStack(*t.catalog, stack, photo, position);
        EXPECT_EQ(t.members(), members) << photo << " to " << position << ", as shown";
    }
    setStackState(*t.catalog, stack, StackState::expanded);
    EXPECT_FALSE(stacksIn(t.catalog->database()).front().collapsed);
    unstack(*t.catalog, stack);
    EXPECT_TRUE(stacksIn(t.catalog->database()).empty());
    for (const auto id : {PhotoID(1), PhotoID(3), PhotoID(4), version})
        EXPECT_FALSE(t.item(id).stackID);
}

TEST(Stacks, refuseWhatIsNoStack)
{
    Photos t(3);
    const auto version = t.newVersion(1);
    EXPECT_THROW(createStack(*t.catalog, IDs{1, version, 1}, std::nullopt), std::invalid_argument);
    EXPECT_THROW(createStack(*t.catalog, IDs{1, 2}, 3), std::invalid_argument);
    EXPECT_THROW(createStack(*t.catalog, IDs{1, 99}, std::nullopt), NotFoundError);
    const auto stack = createStack(*t.catalog, IDs{1, 2}, std::nullopt);
    EXPECT_THROW(setPick(*t.catalog, stack, 3), std::invalid_argument);
    EXPECT_THROW(moveInStack(*t.catalog, stack, 3, 0), std::invalid_argument);
    for (const auto& change : std::vector<std::function<void()>>{[&] { unstack(*t.catalog, 99); },
             [&] { setPick(*t.catalog, 99, 1); },
             [&] { setStackState(*t.catalog, 99, StackState::expanded); }})
        EXPECT_THROW(change(), NotFoundError);
    EXPECT_EQ(t.members(), (IDs{1, 2})) << "as it was";
}

TEST(Stacks, staySoundWhenMembersGo)
{
    Photos t(7);
    const auto first = createStack(*t.catalog, IDs{1, 2, 3}, 2);
    t.catalog->deletePhotos(only(2));
    EXPECT_EQ(stacksIn(t.catalog->database()), (std::vector<Stack>{{first, 1, true, {1, 3}}}))
        << "the next is the pick";
    t.catalog->deletePhotos(only(3));
    EXPECT_TRUE(stacksIn(t.catalog->database()).empty());
    EXPECT_FALSE(t.item(1).stackID);

    createStack(*t.catalog, IDs{4, 5, 6}, std::nullopt);
    const auto taken = createStack(*t.catalog, IDs{1, 4, 5}, std::nullopt);
    EXPECT_EQ(stacksIn(t.catalog->database()), (std::vector<Stack>{{taken, 1, true, {1, 4, 5}}}));
    EXPECT_FALSE(t.item(6).stackID);

    const auto folder = t.catalog->addFolder("/photos", 1).id;
    t.catalog->database().run("UPDATE photos SET folder_id = ? WHERE id IN (1, 4)", folder);
    t.catalog->removeFolder(folder);
    EXPECT_TRUE(stacksIn(t.catalog->database()).empty());
}

TEST(Stacks, thoseThatAnotherProgramLeftUnsoundAreMendedOnce)
{
    Photos t(6);
    t.catalog->database().exec("DELETE FROM meta WHERE key = 'stacks_sound';"
                               "INSERT INTO stacks (id, pick_photo_id) VALUES (1, 99), (2, 3), (3, 1);"
                               "UPDATE photos SET stack_id = 1 WHERE id IN (1, 2);"
                               "UPDATE photos SET stack_id = 2 WHERE id = 3");
    EXPECT_EQ(stacksIn(t.catalog->database()).front().pick, 1) << "as the grid shows it";
    const auto folder = t.catalog->libraryURL();
    t.catalog.reset();
    t.catalog = std::make_unique<Catalog>(folder, t.clock);
    EXPECT_EQ(stacksIn(t.catalog->database()), (std::vector<Stack>{{1, 1, true, {1, 2}}}));
    EXPECT_EQ(t.catalog->database().scalar("SELECT COUNT(*) FROM stacks WHERE pick_photo_id = 1"), 1);
    EXPECT_FALSE(t.item(3).stackID);
}

TEST(Versions, followTheirMasterIntoAProject)
{
    Photos t(2);
    const auto version = t.newVersion(1);
    const auto project = t.catalog->createProject("p", "project", std::nullopt);
    t.catalog->assignToProject(only(version), project);
    EXPECT_EQ(*t.item(1).projectID, project);
    EXPECT_EQ(*t.item(version).projectID, project);
}

TEST(AutoStack, leavesOutWhatWasStackedOrRemovedSinceThePlanWasMade)
{
    Photos t(5);
    const auto items = t.catalog->photos(std::nullopt);
    std::vector<std::uint32_t> all{0, 1, 2, 3, 4};
    auto dated = items;
    for (auto& item : dated)
        item.captureDate = 100.0;
    const AutoStackPlan plan(dated, all, 10);
    const auto made = createStack(*t.catalog, IDs{1, 2}, 2);
    t.catalog->deletePhotos(only(3));
    createStacks(*t.catalog, plan);
    EXPECT_EQ(
        stacksIn(t.catalog->database()), (std::vector<Stack>{{made, 2, true, {2, 1}}, {2, 4, true, {4, 5}}}));
}

namespace {

/// Whether the grid shows what a store that is opened now shows, and every stack is sound.
::testing::AssertionResult isTrue(const Grid& t)
{
    PhotoList fresh;
    auto& catalog = const_cast<LibraryStore&>(t.store).catalog();
    fresh.setStacks(stacksIn(catalog.database()));
    fresh.assign(catalog.photos(t.store.source()), listedBy(t.store.source()));
    if (!listTheSame(t.store.list(), fresh))
        return ::testing::AssertionFailure() << "the list is not what it is when read anew";
    if (catalog.database().scalar("SELECT COUNT(*) FROM photos p JOIN stacks s ON s.id = p.stack_id "
                                  "WHERE p.version_of IS NULL GROUP BY s.id HAVING COUNT(*) < 2 "
                                  "OR SUM(p.id = s.pick_photo_id) != 1")
        > 0)
        return ::testing::AssertionFailure() << "a stack is not sound";
    return ::testing::AssertionSuccess();
}

} // namespace

TEST(Stacks, comeBackWithTheirMembersWhereverTheyWent)
{
    for (const bool reloads : {false, true}) {
        Grid t(4);
        const auto stack = createStack(t.store, IDs{1, 2, 3}, 1);
        removePhotos(t.store, only(3));
        reloads ? t.store.reload() : setStackState(t.store, stack, StackState::expanded);
        while (t.store.undoTitle()) {
            t.store.undo();
            EXPECT_TRUE(isTrue(t)) << t.store.redoTitle().value();
        }
    }
}

TEST(Stacks, staySoundWhenUndoMeetsWhatAnotherProcessDid)
{
    const auto otherOf = [](Grid& t) { return Catalog(t.folder / "Library", t.clock); };
    {
        Grid t(4);
        createStack(t.store, IDs{1, 2}, std::nullopt);
        auto other = otherOf(t);
        createStack(other, IDs{3, 2}, 3);
        t.store.undo();
        EXPECT_TRUE(isTrue(t));
        EXPECT_TRUE(stacksIn(t.store.catalog().database()).empty());
    }
    {
        Grid t(4);
        createStack(t.store, IDs{1, 2}, std::nullopt);
        t.store.undo();
        auto other = otherOf(t);
        createStack(other, IDs{3, 2}, 2);
        t.store.redo();
        t.store.reload();
        EXPECT_TRUE(isTrue(t));
    }
    Grid t(4);
    const auto stack = createStack(t.store, IDs{1, 2, 3}, std::nullopt);
    const auto project = createProject(t.store, "p", "project", std::nullopt);
    assignToProject(t.store, only(3), project);
    setRating(t.store, only(3), 4);
    removePhotos(t.store, only(3));
    {
        auto other = otherOf(t);
        unstack(other, stack);
        other.deleteProject(project);
    }
    t.store.undo();
    EXPECT_EQ(t.store.list().find(3)->rating, 4) << "what it lost is its stack and project";
    EXPECT_FALSE(t.store.list().find(3)->stackID || t.store.list().find(3)->projectID);
    t.store.reload();
    EXPECT_TRUE(isTrue(t));
}

TEST(LibraryStore, actsOnThoughAnotherProcessDeletedTheSmartAlbumItShows)
{
    Grid t(2);
    const auto album = createSmartAlbum(t.store, "s", {});
    t.store.chooseSource(LibrarySource{LibrarySource::Kind::smartAlbum, album, {}});
    Catalog(t.folder / "Library", t.clock).deleteSmartAlbum(album);
    int published = 0;
    const auto connection = t.store.changed.connect([&](const LibraryChange&) { ++published; });
    setRating(t.store, only(1), 3);
    EXPECT_EQ(published, 1);
    EXPECT_TRUE(t.shown().empty());
    EXPECT_TRUE(t.store.sourceFault());
    t.store.undo();
    EXPECT_EQ(published, 2);
}

TEST(LibraryStore, aCollapsedStackShowsItsPickAndAnExpandedOneAllTogether)
{
    Grid t(6);
    const auto stack = createStack(t.store, IDs{5, 2, 4}, 4);
    EXPECT_EQ(t.shown(), (IDs{1, 3, 4, 6}));
    setStackState(t.store, stack, StackState::expanded);
    EXPECT_EQ(t.shown(), (IDs{1, 3, 4, 5, 2, 6}));
    t.store.select({1, 2, 5});
    setStackState(t.store, stack, StackState::collapsed);
    EXPECT_EQ(t.store.selection(), (IDs{1, 4})) << "the pick stands for what it hides";
    setPick(t.store, stack, 2);
    EXPECT_EQ(t.shown(), (IDs{1, 2, 3, 6}));
    setRating(t.store, only(2), rejectedRating);
    EXPECT_EQ(t.shown(), (IDs{1, 3, 5, 6})) << "the filter hides the pick: the next is shown";
    removePhotos(t.store, IDs{2, 4});
    EXPECT_EQ(t.shown(), (IDs{1, 3, 5, 6}));
    EXPECT_TRUE(stacksIn(t.store.catalog().database()).empty());
    while (t.store.undoTitle())
        t.store.undo();
    EXPECT_EQ(t.shown(), (IDs{1, 2, 3, 4, 5, 6}));
    while (t.store.redoTitle())
        t.store.redo();
    EXPECT_EQ(t.shown(), (IDs{1, 3, 5, 6}));
}

TEST(LibraryStore, versionsAreMadeAndTakenBack)
{
    Grid t(2);
    const auto version = createVersions(t.store, only(1), 5).front();
    EXPECT_EQ(t.shown(), (IDs{1, 2})) << "only albums show versions";
    const auto album = createAlbum(t.store, "album", std::nullopt);
    addToAlbum(t.store, album, IDs{version, 1});
    createStack(t.store, IDs{1, 2}, 2);
    t.store.chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    EXPECT_EQ(t.shown(), (IDs{version, 1})) << "the stack's next stands in for a pick that is elsewhere";
    removePhotos(t.store, only(1));
    EXPECT_TRUE(t.shown().empty()) << "versions go with their master";
    t.store.undo();
    EXPECT_EQ(t.shown(), (IDs{version, 1}));
}

TEST(LibraryStore, newVersionsStandInTheAlbumBehindTheirPhotosInOneStep)
{
    Grid t(3);
    const auto album = createAlbum(t.store, "album", std::nullopt);
    addToAlbum(t.store, album, IDs{3, 1, 2});
    t.store.chooseSource(LibrarySource{LibrarySource::Kind::album, album, {}});
    const auto made = createVersions(t.store, IDs{3, 1, 2}, 5);
    EXPECT_EQ(t.shown(), (IDs{3, made.at(0), 1, made.at(1), 2, made.at(2)}));
    t.store.undo();
    EXPECT_EQ(t.shown(), (IDs{3, 1, 2}));
    t.store.redo();
    t.store.chooseSource(LibrarySource{LibrarySource::Kind::versions, 3, {}});
    const auto another = createVersions(t.store, only(made[0]), 6);
    EXPECT_EQ(t.shown(), (IDs{3, made[0], another.at(0)})) << "those of one photo are listed together";
    renameVersion(t.store, another[0], "Black and White");
    EXPECT_EQ(t.store.list().find(another[0])->versionName, "Black and White");
    EXPECT_THROW(renameVersion(t.store, 3, "Master"), NotFoundError);
    removeVersion(t.store, made[0]);
    EXPECT_EQ(t.shown(), (IDs{3, another[0]}));
}

} // namespace korvo
