#include "catalog/MovedFolder.h"
#include "catalog/NewGroups.h"
#include "catalog/Versions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace korvo {

TEST(Catalog, treeNestsProjectsInTheirOrderWithCounts)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    const auto first = catalog.createProject("b first", "folder", std::nullopt);
    const auto second = catalog.createProject("a second", "project", std::nullopt);
    const auto inner = catalog.createProject("inner", "project", first);
    catalog.assignToProject(std::vector{library.photo("a.jpg"), library.photo("b.jpg")}, inner);
    library.version(1);
    library.photo("outside.jpg", {.altText = "alt"});
    const auto album = catalog.createAlbum("album", second);
    catalog.addToAlbum(album, std::vector<PhotoID>{1, 2});
    const auto keyword = catalog.createKeyword("animals", std::nullopt);
    catalog.createKeyword("Zebra", keyword);
    catalog.createKeyword("ape", keyword);

    const auto tree = catalog.tree();
    const ProjectNode innerNode{inner, "inner", "project", first, 2, {}};
    EXPECT_EQ(tree.projects,
        (std::vector<ProjectNode>{{first, "b first", "folder", std::nullopt, 0, {innerNode}},
            {second, "a second", "project", std::nullopt, 0, {}}}));
    EXPECT_EQ(tree.albums, (std::vector<AlbumRow>{{album, "album", second, 2}}));
    ASSERT_EQ(tree.keywords.size(), 3U);
    EXPECT_EQ(tree.keywords[1].name, "ape") << "by name without regard to case";
    EXPECT_EQ(tree.totals, (LibraryTotals{4, 3, 0, 1, 3, 2}));
}

TEST(Catalog, manyProjectsAndAlbumsAreMadeBehindThoseThatAreThere)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    auto& database = catalog.database();
    const auto left = catalog.createProject("left", "folder", std::nullopt);
    const auto right = catalog.createProject("right", "folder", std::nullopt);
    catalog.createProject("there", "project", right);
    catalog.createAlbum("there", std::nullopt);
    const auto made = createProjects(database,
        std::vector<NewProject>{{"z", "project", right}, {"y", "project", left}, {"b", "project", right},
            {"a", "project", left}});
    EXPECT_EQ(made.size(), 4U);
    createAlbums(database, std::vector<NewAlbum>{{"z", left}, {"a", std::nullopt}});
    const std::vector<NewAlbum> nameless{{"lost", left}, {"\u00A0", left}};
    EXPECT_THROW(createAlbums(database, nameless), std::invalid_argument);
    std::string names;
    for (const auto& project : catalog.tree().projects)
        for (const auto& child : project.children)
            names += child.name + " ";
    for (const auto& album : catalog.tree().albums)
        names += album.name + " ";
    EXPECT_EQ(names, "y a there z b there z a ");
    EXPECT_EQ(catalog.tree().projects[0].children[0].id, made[1]);
}

TEST(Catalog, aCircleOfProjectsStaysInSightAndEndsNothing)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    const auto outer = catalog.createProject("a", "folder", std::nullopt);
    const auto inner = catalog.createProject("b", "project", outer);
    const auto leaf = catalog.createProject("c", "project", inner);
    catalog.assignToProject(only(library.photo("a.jpg")), leaf);
    catalog.database().run("UPDATE projects SET parent_id = ? WHERE id = ?", inner, outer);
    EXPECT_EQ(library.names(LibrarySource{LibrarySource::Kind::project, outer, {}}),
        std::vector<std::string>{"a.jpg"});
    const auto tree = catalog.tree();
    ASSERT_EQ(tree.projects.size(), 1U);
    EXPECT_EQ(tree.projects[0].id, outer);
    ASSERT_EQ(tree.projects[0].children.size(), 1U);
    ASSERT_EQ(tree.projects[0].children[0].children.size(), 1U);
    EXPECT_EQ(tree.projects[0].children[0].children[0].id, leaf);
    catalog.moveProject(outer, std::nullopt);
    EXPECT_THROW(catalog.moveProject(outer, leaf), std::invalid_argument);
}

TEST(Catalog, projectsAndAlbumsStandAmongTheirSiblingsWhereTheyArePut)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    std::vector<std::int64_t> projects, albums;
    for (const auto* const name : {"a", "b", "c"}) {
        projects.push_back(catalog.createProject(name, "project", std::nullopt));
        albums.push_back(catalog.createAlbum(name, std::nullopt));
    }
    const auto order = [&] {
        std::string names;
        for (const auto& project : catalog.tree().projects)
            names += project.name;
        names += " ";
        for (const auto& album : catalog.tree().albums)
            names += album.name + (album.parentID ? "'" : "");
        return names;
    };
    catalog.placeProject(projects[2], std::nullopt, projects[0]);
    catalog.placeAlbum(albums[0], std::nullopt, albums[2]);
    EXPECT_EQ(order(), "cab bac");
    catalog.placeProject(projects[2], std::nullopt, std::nullopt);
    catalog.placeAlbum(albums[2], projects[0], albums[1]);
    EXPECT_EQ(order(), "abc c'ba");
    catalog.placeProject(projects[0], projects[1], std::nullopt);
    EXPECT_EQ(order(), "bc c'ba");
    EXPECT_THROW(catalog.placeProject(projects[1], projects[0], std::nullopt), std::invalid_argument);
    const auto animals = catalog.createKeyword("animals", std::nullopt);
    const auto birds = catalog.createKeyword("birds", std::nullopt);
    const auto owls = catalog.createKeyword("owls", birds);
    catalog.moveKeyword(birds, animals);
    EXPECT_EQ(catalog.keywords()[1].parentID, animals);
    EXPECT_THROW(catalog.moveKeyword(animals, owls), std::invalid_argument);
    EXPECT_THROW(catalog.moveKeyword(animals, 99), NotFoundError);
}

TEST(Catalog, photosStandInAnAlbumWhereTheyArePut)
{
    struct Case {
        std::vector<PhotoID> moved;
        std::optional<PhotoID> before;
        std::vector<PhotoID> after;
    };
    for (const auto& [moved, before, after] : {
             Case{{4}, 1, {4, 1, 2, 3}},
             {{1, 2}, std::nullopt, {3, 4, 1, 2}},
             {{4, 2}, 3, {1, 4, 2, 3}},
             {{2, 3}, 3, {1, 2, 3, 4}}, // where they stand
             {{1, 99}, 4, {2, 3, 1, 4}},
         }) {
        TestLibrary library;
        auto& catalog = *library.catalog;
        const auto album = catalog.createAlbum("album", std::nullopt);
        for (const auto* const name : {"d", "c", "b", "a"})
            catalog.addToAlbum(album, only(library.photo(name)));
        catalog.moveInAlbum(album, moved, before);
        std::vector<PhotoID> ids;
        for (const auto& item : catalog.photos(LibrarySource{LibrarySource::Kind::album, album, {}}))
            ids.push_back(item.id);
        EXPECT_EQ(ids, after);
    }
}

TEST(Catalog, whatStandsInAnAlbumIsRenumberedOnlyWhereItChangesPlaces)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    std::vector<PhotoID> photos;
    for (int i = 0; i < 50; ++i)
        photos.push_back(library.photo(std::to_string(i)));
    const auto album = catalog.createAlbum("album", std::nullopt);
    catalog.addToAlbum(album, photos);
    catalog.removeFromAlbum(album, only(photos[3])); // which leaves a gap
    const auto rowsChangedBy = [&](const std::function<void()>& change) {
        const auto changes = [&] { return catalog.database().scalar("SELECT total_changes()"); };
        const auto before = changes();
        change();
        return changes() - before;
    };
    EXPECT_EQ(rowsChangedBy([&] { catalog.moveInAlbum(album, only(photos[40]), photos[38]); }), 3);
    EXPECT_EQ(rowsChangedBy([&] { catalog.moveInAlbum(album, only(photos[40]), photos[38]); }), 0);
    const std::vector<PhotoID> added{library.photo("x"), library.photo("y"), library.photo("z")};
    const std::vector<PhotoID> members{photos[20], photos[48], photos[20]};
    EXPECT_EQ(rowsChangedBy([&] { catalog.addToAlbumBehind(album, added, members); }), 3 + 31)
        << "each once, from the first that moves on; y stands right";
    const auto listed = catalog.photos(LibrarySource{LibrarySource::Kind::album, album, {}});
    ASSERT_EQ(listed.size(), 52U);
    for (const auto& [place, photo] : {std::pair(19, photos[20]), {20, added[0]}, {21, added[2]},
             {22, photos[21]}, {39, photos[40]}, {50, added[1]}, {51, photos[49]}})
        EXPECT_EQ(listed[static_cast<std::size_t>(place)].id, photo) << place;
}

TEST(Catalog, deletingPartsOfTheTreeNeverDeletesPhotos)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    const auto photo = library.photo("a.jpg");
    const auto outer = catalog.createProject("outer", "folder", std::nullopt);
    const auto inner = catalog.createProject("inner", "project", outer);
    const auto album = catalog.createAlbum("album", inner);
    catalog.assignToProject(only(photo), inner);
    catalog.addToAlbum(album, only(photo));
    catalog.deleteProject(outer);
    EXPECT_TRUE(catalog.tree().projects.empty());
    EXPECT_FALSE(library.item(photo).projectID);
    ASSERT_EQ(catalog.tree().albums.size(), 1U);
    EXPECT_FALSE(catalog.tree().albums[0].parentID);
    catalog.deleteAlbum(album);
    EXPECT_EQ(library.names().size(), 1U);
}

TEST(Catalog, removingAFolderTakesItsRowsAndAllThatHangsOnThem)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    const auto folder = catalog.addFolder("/photos", 1).id;
    const auto inside = library.photo("a.jpg");
    library.photo("b.jpg");
    catalog.database().run("UPDATE photos SET folder_id = ? WHERE id = ?", folder, inside);
    library.version(inside);
    const auto album = catalog.createAlbum("album", std::nullopt);
    catalog.addToAlbum(album, only(inside));
    catalog.removeFolder(folder);
    EXPECT_EQ(library.names(), std::vector<std::string>{"b.jpg"});
    EXPECT_EQ(catalog.tree().totals.photos, 1);
    EXPECT_EQ(catalog.tree().albums[0].count, 0);
}

TEST(Catalog, gatheringPutsEveryRootUnderTheNewProject)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    const auto root = catalog.createProject("root", "project", std::nullopt);
    catalog.createProject("child", "project", root);
    catalog.createAlbum("loose", std::nullopt);
    const auto album = catalog.createAlbum("held", root);
    const auto all = catalog.gatherUnderProject("Everything");
    const auto tree = catalog.tree();
    ASSERT_EQ(tree.projects.size(), 1U);
    EXPECT_EQ(tree.projects[0].id, all);
    EXPECT_EQ(tree.projects[0].children[0].children.size(), 1U);
    for (const auto& row : tree.albums)
        EXPECT_EQ(row.parentID, row.id == album ? root : all);
}

TEST(Catalog, refusesNamelessThingsRelativePathsAndWhatIsNotThere)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    const auto photo = library.photo("a.jpg");
    const auto project = catalog.createProject("p", "project", std::nullopt);
    const auto smart = catalog.createSmartAlbum("s", "{}");
    const std::vector<std::function<void()>> invalid = {
        [&] { catalog.createProject(" ", "project", std::nullopt); },
        [&] { catalog.renameProject(project, "\t"); },
        [&] { catalog.gatherUnderProject(""); },
        [&] { catalog.createAlbum("\u00A0", std::nullopt); },
        [&] { catalog.createKeyword("\n", std::nullopt); },
        [&] { catalog.createSmartAlbum(" ", "{}"); },
        [&] { catalog.changeSmartAlbum(smart, " ", "{}"); },
        [&] { createVersion(catalog, photo, " ", std::nullopt, 1); },
        [&] { catalog.addFolder("photos", 1); },
        [&] { catalog.fileRenamed(photo, "b.jpg"); },
        [&] { catalog.addPhotos(std::vector<NewPhoto>{{.path = "b.jpg"}}); },
    };
    for (std::size_t i = 0; i < invalid.size(); ++i)
        EXPECT_THROW(invalid[i](), std::invalid_argument) << i;
    const std::vector<std::function<void()>> unknown = {
        [&] { folderMoved(catalog.database(), 9, "/b"); },
        [&] { catalog.fileRenamed(9, "/b.jpg"); },
        [&] { catalog.setMetadata(9, {}, WriteBack::done); },
        [&] { catalog.saveComposition(9, "{}"); },
        [&] { catalog.createKeyword("k", 9); },
        [&] { catalog.moveAlbum(9, std::nullopt); },
    };
    for (std::size_t i = 0; i < unknown.size(); ++i)
        EXPECT_THROW(unknown[i](), NotFoundError) << i;
    EXPECT_EQ(catalog.tree().projects.size(), 1U);
    EXPECT_EQ(library.item(photo).path(), "/photos/a.jpg");
}

TEST(MovedFolder, takesOnlyWhatIsInsideItAndNothingOntoOthers)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    const auto folder = catalog.addFolder("/a", 1).id;
    const auto inner = catalog.addFolder("/a/a", 1).id;
    std::vector<NewPhoto> photos;
    for (const std::string path : {"/a/x.jpg", "/a/a/y.jpg", "/ab/z.jpg", "/a0.jpg", "/new/b.jpg"})
        photos.push_back({.folderID = folder, .path = path});
    catalog.addPhotos(photos);
    const auto version = library.version(1);
    folderMoved(catalog.database(), folder, "/new");
    const char* expected[] = {"/new/x.jpg", "/new/a/y.jpg", "/ab/z.jpg", "/a0.jpg", "/new/b.jpg"};
    for (PhotoID id = 1; id <= 5; ++id)
        EXPECT_EQ(library.item(id).path(), expected[id - 1]);
    EXPECT_EQ(library.item(version).path(), "/new/x.jpg");
    EXPECT_EQ(catalog.tree().folders, (std::vector<FolderRow>{{folder, "/new"}, {inner, "/new/a"}}));
    library.photo("y.jpg"); // in /photos
    EXPECT_THROW(folderMoved(catalog.database(), inner, "/photos"), std::invalid_argument);
    EXPECT_EQ(library.item(2).path(), "/new/a/y.jpg");
}

TEST(MovedFolder, isFoundWhereItsPhotosAre)
{
    TestLibrary library;
    library.folder.write("before/a.jpg", "");
    const auto folder = library.catalog->addFolder((library.folder / "before").string(), 1).id;
    const NewPhoto photo{.folderID = folder, .path = (library.folder / "before/a.jpg").string()};
    const auto id = library.catalog->addPhotos(std::span(&photo, 1)).front().id;
    std::filesystem::rename(library.folder / "before", library.folder / "after");
    std::filesystem::create_directory(library.folder / "other");
    for (const char* wrong : {"other", "before", "after/a.jpg"})
        EXPECT_THROW(
            findFolder(library.catalog->database(), folder, library.folder / wrong), std::runtime_error)
            << wrong;
    const auto found
        = findFolder(library.catalog->database(), folder, library.folder / "other" / ".." / "after");
    EXPECT_EQ(found.photos, 1U);
    folderMoved(library.catalog->database(), folder, found.to);
    EXPECT_EQ(library.item(id).path(), library.folder / "after/a.jpg");
}

} // namespace korvo
