#include "aperture/ApertureLibrary.h"
#include "tests/support/ApertureBundle.h"
#include "tests/support/BundleState.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace korvo {

namespace fs = std::filesystem;

namespace {

class ApertureLibraryReading : public ::testing::Test {
protected:
    /// Finishes the bundle and opens it.
    ApertureLibrary opened(ApertureVolumes volumes = {})
    {
        ApertureBundle::finish(std::move(bundle));
        return ApertureLibrary::open(path, std::move(volumes));
    }

    TemporaryFolder folder;
    fs::path path = folder / "What? #1 100%.aplibrary";
    ApertureBundle bundle{path};
};

} // namespace

TEST(ApertureLibrary, isKnownByItsDatabaseAlone)
{
    const TemporaryFolder folder;
    fs::create_directories(folder / "Empty.aplibrary/Masters");
    try {
        ApertureLibrary::open(folder / "Empty.aplibrary");
        FAIL();
    } catch (const ApertureLibrary::OpenError& error) {
        EXPECT_STREQ(error.what(), "That isn't an Aperture library (no Library.apdb inside the bundle).");
    }
    ApertureBundle::finish(ApertureBundle(folder / "no ending"));
    fs::remove(folder / "no ending/Info.plist");
    fs::remove(folder / "no ending/Database/apdb/Properties.apdb");
    auto library = ApertureLibrary::open(folder / "no ending");
    EXPECT_TRUE(library.metadata().empty());
    EXPECT_TRUE(library.exifValues().empty());
    EXPECT_EQ(library.versionString(), std::nullopt);
    folder.write("no database/Database/apdb/Library.apdb", "no database");
    EXPECT_THROW(ApertureLibrary::open(folder / "no database").masters(), DatabaseError);
}

TEST_F(ApertureLibraryReading, runsNothingThatABundleDefines)
{
    ApertureBundle::finish(std::move(bundle));
    const auto file = path / "Database/apdb/Library.apdb";
    const auto sound = readFile(file);
    for (const char* const schema :
        {"CREATE VIEW RKMaster AS SELECT * FROM RKVersion", "CREATE VIEW RKMaster AS SELECT * FROM RKMaster",
            "CREATE VIRTUAL TABLE RKMaster USING fts4(uuid, isInTrash)",
            "CREATE TABLE RKMaster (uuid AS (hex(zeroblob(1000000000))), isInTrash)"}) {
        folder.write(path.filename() / "Database/apdb/Library.apdb", sound);
        Database(file).exec(std::string("PRAGMA journal_mode = DELETE; DROP TABLE RKMaster; ") + schema);
        try {
            ApertureLibrary::open(path);
            ADD_FAILURE() << schema;
        } catch (const DatabaseError& error) {
            EXPECT_NE(std::string(error.what()).find("Library.apdb: "), std::string::npos) << error.what();
        }
    }
}

TEST_F(ApertureLibraryReading, endsWithAStopAndBeyondWhatAFileCanHold)
{
    ApertureBundle::finish(std::move(bundle));
    std::stop_source stop;
    BundleDatabase database(path / "Database/apdb/Library.apdb", stop.get_token());
    const std::string endless = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) ";
    const auto message = [&](const std::string& sql) {
        try {
            database.forEach(sql, [](const BundleRow& row) { row.text(0); });
        } catch (const DatabaseError& error) {
            return error.message();
        }
        return std::string();
    };
    EXPECT_NE(
        message(endless + "SELECT i FROM n").find("more than its file has room for"), std::string::npos);
    EXPECT_NE(message(endless + "SELECT hex(zeroblob(10000000)) FROM n").find("more than its file has room"),
        std::string::npos);
    EXPECT_EQ(message("SELECT uuid FROM RKFolder"), ""); // what went before does not count
    stop.request_stop();
    EXPECT_NE(message(endless + "SELECT i FROM n").find("interrupted"), std::string::npos);
}

TEST_F(ApertureLibraryReading, leavesNoTraceInTheBundle)
{
    const auto master = bundle.add({.adjustments = {{"RKExposureOperation", {}}}, .hasPreview = true});
    bundle.addAlbum("Album", 3, {master.versions[0].id});
    ApertureBundle::finish(std::move(bundle));
    // A crash of Aperture leaves journals; a hot one would be rolled back by whoever opens it to write.
    for (const char* const name : {"Library.apdb-journal", "Library.apdb-wal", "Properties.apdb-wal"})
        folder.write(path.filename() / "Database/apdb" / name, std::string(4096, '\x37'));
    for (const auto& entry : fs::recursive_directory_iterator(path))
        fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::remove);
    const auto before = bundleState(path);
    {
        auto library = ApertureLibrary::open(path);
        EXPECT_EQ(library.versionString(), "Aperture Library 3.6");
        EXPECT_EQ(library.masters().size(), 1U);
        EXPECT_EQ(library.versions().size(), 1U);
        EXPECT_EQ(library.adjustments(master.versions[0].uuid).size(), 1U);
        EXPECT_EQ(library.albums().size(), 1U);
        EXPECT_EQ(library.projects().size() + library.stacks().size() + library.metadata().size(), 0U);
    }
    EXPECT_EQ(bundleState(path), before);
    for (const auto& entry : fs::recursive_directory_iterator(path))
        fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add);
}

TEST_F(ApertureLibraryReading, readsLiveVersionsWithDefaultsForWhatIsNotThere)
{
    const auto master = bundle.add({.name = "a.jpg",
        .versions = 4,
        .rating = 3,
        .label = 2,
        .rotation = 90,
        .latitude = 48,
        .longitude = 11.5});
    auto& database = bundle.library();
    database.run("UPDATE RKVersion SET isInTrash = 1 WHERE uuid = ?", master.versions[0].uuid);
    database.run("UPDATE RKVersion SET showInLibrary = 0 WHERE uuid = ?", master.versions[1].uuid);
    database.run(
        "UPDATE RKVersion SET name = NULL, mainRating = NULL, colorLabelIndex = NULL, rotation = NULL, "
        "exifLatitude = NULL, masterWidth = NULL WHERE uuid = ?",
        master.versions[3].uuid);
    bundle.add({.name = "b.jpg", .imageDate = 5});
    database.exec("UPDATE RKMaster SET imageDate = NULL WHERE fileName = 'b.jpg'; "
                  "INSERT INTO RKMaster (uuid, isInTrash) VALUES (NULL, 0), ('', 0)");
    auto library = opened();
    const auto masters = library.masters();
    ASSERT_EQ(masters.size(), 2U);
    EXPECT_EQ(masters.at(master.uuid).imageDate, 352'000'000); // stored as an integer
    EXPECT_EQ(masters.at(master.uuid).imagePath, "2012/03/04/20120304-101010/a.jpg");
    const auto versions = library.versions();
    ASSERT_EQ(versions.size(), 3U);
    EXPECT_EQ(versions[0].versionNumber, 3);
    EXPECT_EQ(versions[0].rating, 3);
    EXPECT_EQ(versions[0].colorLabelIndex, 2);
    EXPECT_EQ(versions[0].rotation, 90);
    EXPECT_EQ(versions[0].latitude, 48);
    EXPECT_EQ(versions[0].masterWidth, 2000);
    EXPECT_EQ(versions[1].name, std::nullopt);
    EXPECT_EQ(versions[1].rating, 0);
    EXPECT_EQ(versions[1].colorLabelIndex, std::nullopt);
    EXPECT_EQ(versions[1].latitude, std::nullopt);
    EXPECT_EQ(versions[1].masterWidth, 0);
}

TEST_F(ApertureLibraryReading, findsTheFilesOfABundle)
{
    const auto managed = bundle.add({.name = "a.jpg", .hasPreview = true});
    const auto lost = bundle.add({.name = "lost.jpg", .contents = ""});
    const auto elsewhere = folder.write("elsewhere/b.jpg", "x");
    const auto absolute = bundle.add({.name = "b.jpg", .imagePath = elsewhere.string()});
    folder.write("disk/photos/c.jpg", "x");
    const auto onVolume = bundle.add({.name = "c.jpg", .imagePath = "photos/c.jpg", .volume = "Disk"});
    const auto elsewhereThen = bundle.add({.imagePath = "/Volumes/Disk/photos/c.jpg", .volume = "Disk"});
    const auto escaping
        = bundle.add({.name = "d.jpg", .imagePath = "../../elsewhere/b.jpg", .volume = "Disk"});
    const auto offline = bundle.add({.imagePath = "photos/c.jpg", .volume = "Disk", .isMissing = true});
    const auto missing = bundle.add({.name = "e.jpg", .isMissing = true});
    folder.write(path.filename() / "Masks/a/ab/ABC.tiff", "mask");
    auto library = opened(ApertureVolumes({{"Disk", folder / "disk"}}));
    const auto masters = library.masters();
    const auto file = [&](const BundleMaster& master) { return library.masterFile(masters.at(master.uuid)); };
    EXPECT_EQ(file(managed).file, fs::canonical(managed.file));
    EXPECT_TRUE(file(managed).isPresent);
    EXPECT_FALSE(file(lost).isPresent);
    EXPECT_EQ(file(absolute).file, elsewhere);
    EXPECT_TRUE(file(absolute).isPresent);
    EXPECT_EQ(file(onVolume).file, folder / "disk/photos/c.jpg");
    EXPECT_EQ(file(elsewhereThen).file, folder / "disk/photos/c.jpg");
    EXPECT_FALSE(file(escaping).isPresent);
    EXPECT_TRUE(file(offline).isPresent); // the user says where it is
    EXPECT_FALSE(file(missing).isPresent);
    EXPECT_TRUE(library.maskFile("ABC"));
    EXPECT_FALSE(library.maskFile("abc"));
    EXPECT_FALSE(library.maskFile("../../Masks/a/ab/ABC"));
    auto version = library.versions().front();
    version.uuid = managed.versions[0].uuid;
    version.name = "no such name";
    EXPECT_EQ(library.previewFile(version, masters.at(managed.uuid))->filename(), "a.jpg");
    fs::remove(*library.previewFile(version, masters.at(managed.uuid)));
    EXPECT_FALSE(library.previewFile(version, masters.at(managed.uuid))); // a thumbnail is none
}

TEST_F(ApertureLibraryReading, readsTheTreeOfFoldersWithoutAperturesOwn)
{
    const auto outer = bundle.addFolder("Trips", 1);
    const auto inner = bundle.addFolder("Italy", 1, outer);
    bundle.addFolder("Rome", 2, inner);
    bundle.addFolder("Alone", 2);
    bundle.addFolder("Lost", 2, "no such folder");
    bundle.addFolder("Circle", 1, "circle", "circle");
    auto deep = bundle.addFolder("Deep", 1);
    const auto shallowest = deep;
    for (int i = 1; i < 64; ++i)
        deep = bundle.addFolder("Deep", 1, deep);
    const auto tooDeep = bundle.addFolder("Deep", 1, deep);
    bundle.library().exec("INSERT INTO RKFolder (uuid, folderType, name, parentFolderUuid, isInTrash) "
                          "VALUES ('trashed', 2, 'Trashed', 'AllProjectsItem', 1)");
    auto library = opened();
    const auto projects = library.projects();
    ASSERT_EQ(projects.size(), 3U);
    EXPECT_EQ(projects[0].name, "Alone");
    EXPECT_TRUE(projects[0].folderPath.empty());
    EXPECT_TRUE(projects[1].folderPath.empty());
    EXPECT_EQ(projects[2].folderPath, (std::vector<std::string>{"Trips", "Italy"}));
    const auto paths = library.folderPaths();
    EXPECT_EQ(paths.at(inner), (std::vector<std::string>{"Trips", "Italy"}));
    EXPECT_EQ(paths.at(shallowest).size(), 1U);
    EXPECT_EQ(paths.at(deep).size(), 64U);
    EXPECT_TRUE(paths.at(tooDeep).empty());
}

TEST_F(ApertureLibraryReading, readsAlbumsInTheirOrderAndWithoutBlobsThatAreNone)
{
    const auto master = bundle.add({.versions = 3});
    const auto id = [&](std::size_t i) { return master.versions[i].id; };
    const auto sorted = bundle.addAlbum("sorted", 3, {id(1), id(2), id(0)});
    bundle.addAlbum("Broken", 2, {});
    bundle.addAlbum("arranged", 3, {id(0), id(1), id(2)});
    bundle.addAlbum("Album.implicitAlbum", 1, {});
    auto& database = bundle.library();
    database.exec("UPDATE RKAlbum SET queryData = x'62706c697374303000' WHERE name = 'Broken'");
    for (int place = 0; const auto member : {1U, 0U}) // one that is not placed comes behind the others
        database.run("INSERT INTO RKCustomSortOrder (containerUuid, objectUuid, orderNumber) "
                     "SELECT uuid, ?, ? FROM RKAlbum WHERE name = 'arranged'",
            master.versions[member].uuid, place++);
    auto library = opened();
    const auto albums = library.albums();
    ASSERT_EQ(albums.size(), 3U);
    EXPECT_EQ(albums[0].name, "arranged");
    EXPECT_EQ(albums[0].versionIds, (std::vector{id(1), id(0), id(2)}));
    EXPECT_FALSE(albums[1].smartQuery);
    EXPECT_EQ(albums[2].modelId, sorted);
    EXPECT_EQ(albums[2].versionIds, (std::vector{id(1), id(2), id(0)}));
}

} // namespace korvo
