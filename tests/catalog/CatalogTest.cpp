#include "base/Json.h"
#include "catalog/Versions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <future>

namespace korvo {

namespace {

using Kind = LibrarySource::Kind;

LibrarySource source(Kind kind, std::int64_t id = 0)
{
    return {kind, id, {}};
}

using Names = std::vector<std::string>;

} // namespace

TEST(Catalog, aFileThatHasAMasterIsNotAddedTwice)
{
    TestLibrary library;
    const std::vector<NewPhoto> photos
        = {{.path = "/p/a.jpg", .metadata = {.title = "first"}}, {.path = "/p/b.jpg"}, {.path = "/p/a.jpg"}};
    const auto added = library.catalog->addPhotos(photos);
    EXPECT_TRUE(added[0].isNew && added[1].isNew);
    EXPECT_FALSE(added[2].isNew);
    EXPECT_EQ(added[2].id, added[0].id);
    EXPECT_EQ(library.item(added[0].id).metadata.title, "first");
}

TEST(Catalog, rowsBecomeItemsWithAllTheyHold)
{
    TestLibrary library;
    const auto project = library.catalog->createProject("P", "project", std::nullopt);
    const auto id = library.catalog->database().insert(
        "INSERT INTO photos (path, filename, added_at, mtime, rating, flagged, dirty, alt_text, title, "
        "caption, keywords, "
        "creator, copyright, edits, meme, label, version_name, reference_path, project_id, camera, lens, "
        "iso, "
        "focal_length, aperture, shutter, capture_date, people, latitude, longitude, gps_read, place) VALUES "
        "('/a b/c.jpg', 'c.jpg', 1.5, 2.5, -1, 1, 1, 'alt', 'ti', 'ca', 'k1, k2', 'cr', '©', '{}', 'me', 7, "
        "'v', 'ref', "
        "?, 'cam', 'le', 200, 35.5, 1.8, 0.004, 3.5, 'Ana', -33.5, 18.25, 1, 'Cape Town')",
        project);
    const auto item = library.item(id);
    EXPECT_EQ(item.path(), "/a b/c.jpg");
    EXPECT_EQ(item.metadata, (PhotoMetadata{"alt", "ti", "ca", "k1, k2", "cr", "©"}));
    EXPECT_TRUE(item.isRejected() && item.flagged && item.dirty && item.gpsRead && item.isMaster());
    EXPECT_EQ(item.label, PhotoLabel::gray);
    EXPECT_EQ(*item.projectID, project);
    EXPECT_EQ(item.editsJSON, "{}");
    EXPECT_EQ(item.memeJSON, "me");
    EXPECT_EQ(item.versionName, "v");
    EXPECT_EQ(item.referencePath, "ref");
    EXPECT_EQ(item.camera, "cam");
    EXPECT_EQ(item.lens, "le");
    EXPECT_EQ(item.people, "Ana");
    EXPECT_EQ(item.place, "Cape Town");
    EXPECT_EQ(*item.iso, 200);
    EXPECT_EQ(
        (std::vector{*item.focalLength, *item.aperture, *item.shutter, *item.latitude, *item.longitude}),
        (std::vector{35.5, 1.8, 0.004, -33.5, 18.25}));
    EXPECT_EQ((std::vector{item.addedAt, *item.fileDate, *item.captureDate}), (std::vector{1.5, 2.5, 3.5}));

    const auto bare = library.item(library.photo("bare.jpg"));
    EXPECT_FALSE(
        bare.iso || bare.focalLength || bare.latitude || bare.fileDate || bare.captureDate || bare.stackID);
    library.catalog->database().run("UPDATE photos SET label = 9 WHERE id = ?", id);
    EXPECT_EQ(library.item(id).label, PhotoLabel::none);
}

TEST(Catalog, ratingFlagAndLabelBelongToOneRowAndMetadataToMasterAndVersions)
{
    TestLibrary library;
    const auto master = library.photo("a.jpg", {.title = "old"});
    const auto version = library.version(master);
    const auto other = library.version(master, "Version 3");
    library.catalog->setRating(only(version), 4);
    library.catalog->setFlagged(only(version), true);
    library.catalog->setLabel(only(version), PhotoLabel::red);
    EXPECT_EQ(library.item(master).rating, 0);
    EXPECT_FALSE(library.item(master).flagged);
    EXPECT_EQ(library.item(version).label, PhotoLabel::red);

    library.catalog->changeMetadata(only(version), {.caption = SharedText("new")}, WriteBack::pending);
    for (const auto id : {master, version, other}) {
        EXPECT_EQ(library.item(id).metadata, (PhotoMetadata{.title = "old", .caption = "new"})) << id;
        EXPECT_EQ(library.item(id).dirty, id == master);
    }
    ASSERT_EQ(library.catalog->dirtyPhotos().size(), 1U);
    library.catalog->clearDirty(master);
    EXPECT_TRUE(library.catalog->dirtyPhotos().empty());
}

TEST(Catalog, aCaptureDateOnceReadIsNeverReadOver)
{
    TestLibrary library;
    const auto master = library.photo("a.jpg");
    const auto version = library.version(master);
    EXPECT_EQ(library.catalog->photosToRead(10).size(), 1U) << "versions are read with their master";
    library.catalog->storeCameraData(master, {.camera = "A", .lens = {}, .iso = 100, .captureDate = 5.0});
    library.catalog->storeCameraData(master, {.camera = "B", .lens = {}, .captureDate = 6.0});
    EXPECT_EQ(library.item(version).camera, "B");
    EXPECT_FALSE(library.item(version).iso);
    EXPECT_EQ(*library.item(version).captureDate, 5.0);
    EXPECT_TRUE(library.catalog->photosToRead(10).empty());
}

TEST(Catalog, looksForPhotosToReadBesideEverythingElse)
{
    TestLibrary library;
    library.photo("a.jpg");
    std::future<std::size_t> found;
    {
        const auto statement = library.catalog->database().prepare("SELECT 1"); // which holds the connection
        found = std::async(std::launch::async, [&] {
            return library.catalog->photosToRead(10).size() + library.catalog->photosToLocate(10).size();
        });
        EXPECT_EQ(found.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    }
    EXPECT_EQ(found.get(), 2U);
}

TEST(Catalog, shiftsADateFromTheFilesDateWhereNoneWasCaptured)
{
    TestLibrary library;
    const auto undated = library.photo("a.jpg");
    const auto dated = library.photo("b.jpg");
    library.catalog->fileChanged(dated, 1000, 1);
    for (int i = 0; i < 2; ++i)
        for (const auto id : {undated, dated})
            library.catalog->shiftCaptureDate(id, -90);
    EXPECT_EQ(*library.item(undated).captureDate, -180);
    EXPECT_EQ(*library.item(dated).captureDate, 820);
}

TEST(Catalog, sourcesListExactlyTheirPhotos)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    const auto folder = catalog.addFolder("/photos", 1).id;
    EXPECT_EQ(catalog.addFolder("/photos", 2).id, folder);
    const auto b = library.photo("b.jpg", {.altText = "alt"});
    const auto a = library.photo("A.mov");
    const auto c = library.photo("c.MP4");
    const auto version = library.version(b);
    catalog.database().run("UPDATE photos SET folder_id = ? WHERE id = ?", folder, a);
    catalog.setFlagged(std::vector{b, version}, true);
    const auto outer = catalog.createProject("outer", "folder", std::nullopt);
    const auto inner
        = catalog.createProject("inner", "project", catalog.createProject("middle", "folder", outer));
    catalog.assignToProject(only(b), inner);
    catalog.assignToProject(only(c), outer);
    const auto album = catalog.createAlbum("album", std::nullopt);
    catalog.addToAlbum(album, std::vector{c, version});
    catalog.addToAlbum(album, std::vector{a, c});
    const auto person = catalog.database().insert("INSERT INTO people (name) VALUES ('Ana')");
    catalog.database().run(
        "INSERT INTO faces (photo_id, x, y, w, h, person_id) VALUES (?, 0, 0, 1, 1, ?)", c, person);
    catalog.database().run("UPDATE photos SET latitude = 1, longitude = 2 WHERE id = ?", a);

    struct Case {
        std::optional<LibrarySource> source;
        Names names;
    };
    for (const auto& [from, names] : {
             Case{std::nullopt, {"A.mov", "b.jpg", "c.MP4"}},
             {source(Kind::folder, folder), {"A.mov"}},
             {source(Kind::album, album), {"c.MP4", "b.jpg", "A.mov"}},
             {source(Kind::project, outer), {"b.jpg", "c.MP4"}},
             {source(Kind::project, inner), {"b.jpg"}},
             {source(Kind::person, person), {"c.MP4"}},
             {source(Kind::flagged), {"b.jpg"}},
             {source(Kind::noAltText), {"A.mov", "c.MP4"}},
             {source(Kind::videos), {"A.mov", "c.MP4"}},
             {source(Kind::faces), {"c.MP4"}},
             {source(Kind::places), {"A.mov"}},
             {source(Kind::versions, b), {"b.jpg", "b.jpg"}},
             {source(Kind::extensionSource), {}},
         }) {
        SCOPED_TRACE(from ? static_cast<int>(from->kind) : -1);
        EXPECT_EQ(library.names(from), names);
        std::vector<PhotoID> all{a, b, c, version};
        if (from && from->kind != Kind::album) {
            EXPECT_EQ(catalog.photosOfSource(from, all).size(), names.size());
        }
    }
    EXPECT_EQ(*library.item(version).projectID, inner) << "versions follow their master";
}

TEST(Catalog, recentlyAddedHoldsTheNewestTwoHundred)
{
    TestLibrary library;
    for (int i = 0; i < 205; ++i, ++library.clock.time)
        library.photo(std::to_string(i) + ".jpg");
    const auto names = library.names(source(Kind::recentlyAdded));
    ASSERT_EQ(names.size(), 200U);
    EXPECT_EQ(names.front(), "204.jpg");
    EXPECT_EQ(names.back(), "5.jpg");
    for (int i = 0; i < 205; ++i) // those of one moment: the later they came, the newer
        library.photo("again " + std::to_string(i) + ".jpg");
    EXPECT_EQ(library.names(source(Kind::recentlyAdded)).front(), "again 204.jpg");
}

TEST(Catalog, twoMastersNeverShareAFileButVersionsDo)
{
    TestLibrary library;
    const auto a = library.photo("a.jpg");
    const auto b = library.photo("b.jpg");
    library.version(a);
    library.version(a, "Version 3");
    EXPECT_THROW(library.catalog->fileRenamed(b, "/photos/a.jpg"), DatabaseError);
    library.catalog->fileRenamed(a, "/photos/sub/c.jpg");
    for (const auto& photo : versionsOf(*library.catalog, a))
        EXPECT_EQ(photo.path(), "/photos/sub/c.jpg");
}

TEST(Catalog, editsComeBackAndTheIdentityIsStoredAsNothing)
{
    TestLibrary library;
    const auto id = library.photo("a.jpg");
    PhotoEdits edits;
    edits.exposure = 0.1;
    library.catalog->saveEdits(only(id), edits);
    EXPECT_EQ(library.item(id).edits(), edits);
    library.catalog->saveEdits(only(id), PhotoEdits());
    EXPECT_FALSE(library.item(id).hasEdits());
    EXPECT_EQ(library.item(id).edits(), PhotoEdits());
    library.catalog->database().run("UPDATE photos SET edits = ?", toJson(PhotoEdits())); // as others may
    EXPECT_FALSE(library.item(id).hasEdits());
}

} // namespace korvo
