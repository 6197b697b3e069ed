#include "app/view/SidebarTree.h"
#include "app/view/SidebarActions.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryActions.h"
#include "tests/support/StoreActions.h"
#include "tests/support/StoreOfPhotos.h"

#include <gtest/gtest.h>

namespace korvo {

using IDs = std::vector<PhotoID>;

TEST(SidebarTree, nestsAlbumsAndTakesPhotosAndLinesWhereTheyFit)
{
    using Kind = SidebarNode::Kind;
    StoreOfPhotos t(2);
    auto& store = t.store();
    const auto trip = createProject(store, "Trip", "project", {});
    const auto day = createProject(store, "Day", "project", trip);
    const auto best = createAlbum(store, "Best", {});
    moveLine(store, {Kind::album, best}, {Kind::project, day});
    const auto projects = sidebarTree(store.tree())[2];
    EXPECT_EQ(sidebarTree(store.tree())[0].children[0].count, 2);
    EXPECT_FALSE(sidebarTree(store.tree(), PhotosCounted::notYet)[0].children[0].count);
    ASSERT_EQ(projects.children.size(), 1U);
    EXPECT_EQ(projects.children[0].children[0].children[0].name, "Best");
    EXPECT_FALSE(canBeMoved({Kind::project, trip}, {Kind::project, trip}));
    EXPECT_THROW(moveLine(store, {Kind::project, trip}, {Kind::project, day}), std::invalid_argument);

    store.select({1, 2});
    EXPECT_EQ(
        dropPhotos(store, {Kind::album, best, "Best", {}}, store.selection()), "Added 2 photos to “Best”.");
    EXPECT_EQ(sidebarTree(store.tree())[2].children[0].children[0].children[0].count, 2);
    const auto keyword = createKeyword(store, "sea", {});
    dropPhotos(store, {Kind::keyword, keyword, "sea", {}}, IDs{1});
    dropPhotos(store, {Kind::keyword, keyword, "sea", {}}, IDs{1});
    EXPECT_EQ(t.listed(1).metadata.keywords, "sea");
    setMetadata(store, IDs{2}, {.keywords = SharedText("seagull, sea, coast")});
    renameLine(store, {Kind::keyword, keyword}, "coast");
    EXPECT_EQ(store.tree().keywords[0].name, "coast");
    EXPECT_EQ(t.listed(1).metadata.keywords, "coast");
    EXPECT_EQ(t.listed(2).metadata.keywords, "seagull, coast") << "once, in its place, and as a whole entry";
    EXPECT_THROW(renameLine(store, {Kind::keyword, keyword}, "sea, sand"), std::invalid_argument);
    store.undo();
    EXPECT_EQ(t.listed(2).metadata.keywords, "seagull, sea, coast");
    EXPECT_EQ(store.tree().keywords[0].name, "sea");
    renameLine(store, {Kind::album, best}, "Finest");
    EXPECT_EQ(store.tree().albums[0].name, "Finest");
    EXPECT_EQ(keyOf(sourceOf({Kind::album, best}).value()), (SidebarKey{Kind::album, best}));
}

TEST(SidebarTree, putsLinesBesideOthersAndKeywordsIntoOthers)
{
    using Kind = SidebarNode::Kind;
    StoreOfPhotos t(1);
    auto& store = t.store();
    std::vector<SidebarKey> projects, albums;
    for (const auto* const name : {"a", "b", "c"}) {
        projects.push_back({Kind::project, createProject(store, name, "project", {})});
        albums.push_back({Kind::album, createAlbum(store, name, projects[0].id)});
    }
    const auto order = [&] {
        std::string names;
        const auto add = [&](const auto& self, const std::vector<SidebarNode>& nodes) -> void {
            for (const auto& node : nodes) {
                names += node.name;
                self(self, node.children);
            }
        };
        add(add, sidebarTree(store.tree())[2].children);
        return names;
    };
    EXPECT_EQ(order(), "aabcbc");
    moveLine(store, projects[2], projects[0], DropAt::above);
    EXPECT_EQ(order(), "caabcb");
    moveLine(store, projects[2], projects[0], DropAt::below);
    EXPECT_EQ(order(), "aabccb");
    moveLine(store, albums[0], albums[2], DropAt::below);
    stepLine(store, albums[0], 1); // the last already
    EXPECT_EQ(order(), "abcacb");
    stepLine(store, albums[0], -1);
    EXPECT_EQ(order(), "abaccb");
    store.undo();
    EXPECT_EQ(order(), "abcacb");
    EXPECT_FALSE(canBeMoved(projects[0], albums[0], DropAt::above));

    std::vector<SidebarKey> smart;
    for (const char* const name : {"a", "b", "c"})
        smart.push_back({Kind::smartAlbum, store.catalog().createSmartAlbum(name, "{}")});
    const auto smartOrder = [&] {
        std::string names;
        for (const auto& row : store.catalog().tree().smartAlbums)
            names += row.name;
        return names;
    };
    store.reload();
    stepLine(store, smart[2], -1);
    EXPECT_EQ(smartOrder(), "acb");
    createSmartAlbum(store, "n", {});
    EXPECT_EQ(smartOrder(), "acbn") << "the last, once they are arranged";
    renameLine(store, smart[0], "z");
    EXPECT_EQ(smartOrder(), "zcbn");
    moveLine(store, smart[1], smart[0], DropAt::above);
    EXPECT_EQ(smartOrder(), "bzcn");
    store.undo();
    EXPECT_EQ(smartOrder(), "zcbn");
    EXPECT_TRUE(canBeMoved(smart[0], smart[1], DropAt::below));
    EXPECT_FALSE(canBeMoved(smart[0], projects[0], DropAt::into));
    const SidebarKey animals{Kind::keyword, createKeyword(store, "animals", {})};
    const SidebarKey birds{Kind::keyword, createKeyword(store, "birds", {})};
    moveLine(store, birds, animals);
    EXPECT_EQ(store.tree().keywords[1].parentID, animals.id);
    const auto places = placesFor(sidebarTree(store.tree()), animals);
    ASSERT_EQ(places.size(), 1U);
    EXPECT_TRUE(places[0].children.empty()) << "neither into itself nor into what lies in it";
    moveLine(store, birds, {places[0].kind, places[0].id});
    EXPECT_FALSE(store.tree().keywords[1].parentID);
    ASSERT_EQ(animals.id, albums[0].id) << "albums have numbers of their own";
    stepLine(store, animals, 1);
    EXPECT_FALSE(store.tree().keywords[0].parentID) << "keywords stand in the order of their names";
    setRating(store, IDs{1}, -1);
    dropPhotos(
        store, {Kind::source, static_cast<std::int64_t>(LibrarySource::Kind::flagged), "Flagged"}, IDs{1});
    EXPECT_TRUE(store.catalog().photo(1)->flagged);
    EXPECT_FALSE(store.catalog().photo(1)->isRejected());
}

} // namespace korvo
