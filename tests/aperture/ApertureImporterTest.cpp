#include "aperture/ApertureImporter.h"
#include "catalog/ApertureImports.h"
#include "catalog/Stacks.h"
#include "catalog/Versions.h"
#include "tests/support/ApertureBundle.h"
#include "tests/support/BundleState.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <cmath>

namespace korvo {

namespace fs = std::filesystem;

namespace {

using Plist = PlistDraft;
using Phases = std::vector<std::string>;

Plist whole(std::int64_t value)
{
    return Plist(value);
}

class Importing : public ::testing::Test {
protected:
    ApertureImporter::Summary import(const MatchRender& match = {})
    {
        if (!library) {
            ApertureBundle::finish(std::move(bundle));
            library.emplace(ApertureLibrary::open(path));
        }
        ApertureImporter importer(
            *library, [this](const auto& progress) { show(progress); }, stop.get_token());
        const auto plan = importer.plan(match);
        const auto summary = plan ? importer.write(*plan, *target.catalog, target.clock) : std::nullopt;
        return summary.value_or(ApertureImporter::Summary{.masters = 999});
    }

    void show(const ApertureImporter::Progress& progress)
    {
        if (phases.empty() || phases.back() != progress.phase)
            phases.push_back(progress.phase);
        if (progress.phase == stopAt)
            stop.request_stop();
    }

    std::vector<PhotoItem> photos(const std::optional<LibrarySource>& source = std::nullopt)
    {
        return target.catalog->photos(source);
    }

    std::int64_t rows(const char* table)
    {
        return target.catalog->database().scalar(std::string("SELECT COUNT(*) FROM ") + table);
    }

    TemporaryFolder folder;
    fs::path path = folder / "Photos.aplibrary";
    ApertureBundle bundle{path};
    std::optional<ApertureLibrary> library;
    TestLibrary target;
    Phases phases;
    std::string stopAt;
    std::stop_source stop;
};

} // namespace

TEST_F(Importing, bringsOverAllThatAVersionIs)
{
    const auto master = bundle.add({.name = "a.jpg",
        .versions = 2,
        .versionName = "Sunset",
        .rating = -1,
        .isFlagged = true,
        .label = 6,
        .rotation = 270,
        .latitude = 48.25,
        .longitude = 11.5,
        .adjustments = {{"RKExposureOperation", {{"inputEV", Plist(0.5)}}},
            {"RKExposureOperation", {{"inputEV", Plist(3.0)}}, false}, {"RKNewOperation", {}}},
        .hasPreview = true});
    const auto id = master.versions[0].id;
    bundle.addIptc(id, "Caption/Abstract", "A caption");
    bundle.addIptc(master.versions[1].id, "ObjectName", "A title");
    bundle.addIptc(id, "Byline", "Ann");
    bundle.addExif(id, "Make", "NIKON CORPORATION");
    bundle.addExif(id, "Model", "NIKON D90");
    bundle.addExif(id, "LensModel", "50 mm");
    bundle.addExif(id, "ISOSpeedRating", 200);
    bundle.addExif(id, "ApertureValue", 5.6);
    bundle.assignKeyword(id, bundle.addKeyword("Sea"));
    bundle.assignKeyword(master.versions[1].id, bundle.addKeyword("Sky"));
    const auto summary = import();
    EXPECT_EQ(summary.masters, 1U);
    EXPECT_EQ(summary.versions, 1U);
    EXPECT_EQ(summary.adjustedVersions, 2U);
    EXPECT_EQ(summary.report.unsupported, (std::map<std::string, std::int64_t>{{"RKNewOperation", 2}}));
    EXPECT_EQ(
        phases, (Phases{"Reading the Aperture library…", "Reading photos…", "Stacks and albums…", "Done"}));
    auto items = photos();
    ASSERT_EQ(items.size(), 1U);
    items.push_back(versionsOf(*target.catalog, items[0].id).at(0));
    for (const auto& item : items) {
        EXPECT_EQ(item.path(), fs::canonical(master.file));
        EXPECT_EQ(item.rating, -1);
        EXPECT_TRUE(item.flagged);
        EXPECT_EQ(item.label, PhotoLabel::gray);
        EXPECT_EQ(item.metadata.title, "A title");
        EXPECT_EQ(item.metadata.caption, "A caption");
        EXPECT_EQ(item.metadata.creator, "Ann");
        EXPECT_EQ(item.metadata.keywords, "Sea, Sky");
        EXPECT_EQ(item.latitude, 48.25);
        EXPECT_EQ(item.camera, "NIKON CORPORATION NIKON D90");
        EXPECT_EQ(item.iso, 200);
        EXPECT_EQ(item.aperture, 5.6);
        EXPECT_EQ(item.captureDate, 352'000'000 + 978'307'200.0);
        EXPECT_EQ(item.edits().exposure, 0.5);
        EXPECT_EQ(item.edits().rotation, 3); // quarter turns
        EXPECT_EQ(readFile(item.referencePath.string()), "preview");
        EXPECT_FALSE(item.dirty);
    }
    EXPECT_EQ(items[0].versionName, "Sunset");
    EXPECT_EQ(items[1].versionName, "Sunset - Version 2");
    EXPECT_EQ(items[1].versionOf, items[0].id);
    EXPECT_TRUE(target.catalog->photosToRead(10).empty());
}

TEST_F(Importing, givesANameToWhatHasNone)
{
    const auto project = bundle.addFolder("  ", 2, bundle.addFolder("", 1));
    bundle.addAlbum("\t", 3, {bundle.add({.name = "a.jpg", .project = project}).versions[0].id}, project);
    bundle.addKeyword("");
    import();
    const auto tree = target.catalog->tree();
    ASSERT_EQ(tree.projects.size(), 1U);
    EXPECT_EQ(tree.projects[0].name, "Untitled");
    ASSERT_EQ(tree.projects[0].children.size(), 1U);
    EXPECT_EQ(tree.projects[0].children[0].name, "Untitled");
    EXPECT_EQ(tree.albums.at(0).name, "Untitled");
    EXPECT_EQ(tree.keywords.at(0).name, "Untitled");
}

TEST_F(Importing, keepsProjectsAlbumsStacksAndKeywords)
{
    const auto trips = bundle.addFolder("Trips", 1);
    const auto rome = bundle.addFolder("Rome", 2, trips);
    std::vector<BundleMaster> masters;
    for (const char* const name : {"a.jpg", "b.jpg", "c.jpg"})
        masters.push_back(bundle.add({.name = name, .versions = 2, .project = rome}));
    const auto version = [&](std::size_t photo, std::size_t n) { return masters[photo].versions[n]; };
    bundle.addAlbum("Best", 3, {version(2, 0).id, version(0, 1).id, 9999, version(1, 0).id}, rome);
    bundle.addAlbum("In a folder", 3, {}, trips);
    bundle.addAlbum("Rome", 1, {version(0, 0).id}, rome); // implicit
    bundle.addStack({version(1, 0), version(0, 0), version(0, 1)}, version(0, 1));
    bundle.addStack({version(2, 0), version(2, 1)}, version(2, 0)); // of one master
    const auto held = target.catalog->createKeyword("Parent", std::nullopt);
    const auto child = bundle.addKeyword("Child", 2);
    EXPECT_EQ(bundle.addKeyword("Parent"), child + 1); // comes after it
    bundle.library().exec("INSERT INTO RKKeyword (modelId, name, parentId) VALUES "
                          "(50, 'circle 1', 51), (51, 'circle 2', 50), (52, 'below', 50)");
    const auto summary = import();
    EXPECT_EQ(summaryText(summary, Matching::off),
        "3 photos, 3 extra versions, 1 project, 2 albums, 1 stack. Your Aperture library wasn't modified; "
        "Korvo's "
        "catalog is beside it.");
    const auto tree = target.catalog->tree();
    ASSERT_EQ(tree.projects.size(), 1U);
    EXPECT_EQ(tree.projects[0].name, "Trips");
    EXPECT_EQ(tree.projects[0].kind, "folder");
    ASSERT_EQ(tree.projects[0].children.size(), 1U);
    EXPECT_EQ(tree.projects[0].children[0].count, 3);
    EXPECT_EQ(tree.albums[0].parentID, tree.projects[0].children[0].id);
    EXPECT_EQ(tree.albums[1].parentID, tree.projects[0].id);
    std::vector<std::string> members;
    for (const auto& item : photos(LibrarySource{LibrarySource::Kind::album, tree.albums[0].id}))
        members.push_back(item.filename.string() + (item.versionOf ? "'" : ""));
    EXPECT_EQ(members, (std::vector<std::string>{"c.jpg", "a.jpg'", "b.jpg"}));
    const auto stacks = stacksIn(target.catalog->database());
    ASSERT_EQ(stacks.size(), 1U);
    const auto stacked = target.catalog->photosByID(stacks[0].members);
    EXPECT_EQ(stacked[0].filename, "a.jpg"); // the pick first
    EXPECT_EQ(stacked[1].filename, "b.jpg");
    std::map<std::string, KeywordRow> keywords;
    for (const auto& keyword : tree.keywords)
        keywords.emplace(keyword.name, keyword);
    ASSERT_EQ(keywords.size(), 5U);
    EXPECT_EQ(keywords.at("Parent").id, held);
    EXPECT_EQ(keywords.at("Child").parentID, held);
    EXPECT_EQ(keywords.at("below").parentID, keywords.at("circle 1").id);
    EXPECT_NE(keywords.at("circle 1").parentID.has_value(), keywords.at("circle 2").parentID.has_value());
}

TEST_F(Importing, convertsSmartAlbumsOrKeepsTheirMembers)
{
    const auto master = bundle.add({});
    const struct {
        const char* name;
        std::vector<Plist> rules;
        std::int64_t matchType;
        const char* json; // null: becomes a plain album
    } cases[] = {
        {"a", {bundleRule("basicProperties.MainRating", 8, whole(3)), bundleRule("isFlagged", 5, whole(1))},
            1,
            R"({"rules":[{"field":"rating","op":"atLeast","value":"3"},{"field":"flagged","op":"is","value":"yes"}],"matchAll":true})"},
        {"b",
            {bundleRule("basicProperties.ColorLabel", 6, whole(0)),
                bundleRule("exifProperties.Make", 5, Plist("Canon"))},
            0,
            R"({"rules":[{"field":"label","op":"isNot","value":"1"},{"field":"camera","op":"contains","value":"Canon"}],"matchAll":false})"},
        {"c", {}, 1, R"({"rules":[],"matchAll":true})"},
        {"d", {bundleRule("exifProperties.ISOSpeedRating", 5, whole(100))}, 1, nullptr},
        {"e", {bundleQuery({})}, 1, nullptr},
        {"f", {bundleRule("basicProperties.MainRating", 20, whole(1))}, 1, nullptr},
        {"g", {bundleRule("basicProperties.MainRating", 5, Plist("many"))}, 1, nullptr},
        {"g1", {bundleRule("basicProperties.MainRating", 5, Plist(1e300))}, 1, nullptr},
        {"g2", {bundleRule("exifProperties.FocalLength", 5, Plist(std::nan("")))}, 1, nullptr},
        {"h",
            {bundleRule("exifProperties.Model", 23, Plist("5D")), bundleRule("whatever", 99, Plist(), false)},
            1, R"({"rules":[{"field":"camera","op":"contains","value":"5D"}],"matchAll":true})"},
    };
    std::map<std::string, std::string> converted;
    std::size_t plain = 0;
    for (const auto& [name, rules, matchType, json] : cases) {
        bundle.addAlbum(name, 2, {master.versions[0].id}, "TopLevelAlbums", bundleQuery(rules, matchType));
        json ? converted[name] = json : std::to_string(++plain);
    }
    const auto summary = import();
    EXPECT_EQ(summary.smartAlbumsAsPlain, plain);
    std::map<std::string, std::string> made;
    for (const auto& album : target.catalog->tree().smartAlbums)
        made[album.name] = album.rules;
    EXPECT_EQ(made, converted);
    const auto albums = target.catalog->tree().albums;
    ASSERT_EQ(albums.size(), plain);
    EXPECT_EQ(albums[0].name, "d (from Aperture smart album)");
    EXPECT_EQ(albums[0].count, 1);
}

TEST_F(Importing, countsMissingFilesAndTakesAFileOnce)
{
    const auto shared = folder.write("shared.jpg", "x");
    const auto held = folder.write("held.jpg", "x");
    NewPhoto known{.path = held.string()};
    const auto id = target.catalog->addPhotos(std::span(&known, 1)).front().id;
    target.catalog->setMetadata(id, {.title = "mine"}, WriteBack::done);
    const auto project = bundle.addFolder("Project", 2);
    bundle.add({.imagePath = shared.string(), .project = project});
    bundle.add({.imagePath = shared.string(), .rating = 4});
    const auto taken
        = bundle.add({.imagePath = held.string(), .versions = 2, .rating = 2, .project = project});
    bundle.addIptc(taken.versions[0].id, "ObjectName", "theirs");
    const auto stack = createStack(*target.catalog, std::vector{id, target.photo("other.jpg")}, id);
    bundle.addStack({taken.versions[0], bundle.add({.name = "stacked.jpg"}).versions[0]}, std::nullopt);
    bundle.add({.name = "lost.jpg", .contents = ""});
    bundle.add({.name = "hidden.jpg", .versions = 0});
    const auto summary = import();
    EXPECT_EQ(summary.masters, 2U);
    EXPECT_EQ(summary.stacks, 0U);
    EXPECT_EQ(target.item(id).stackID, stack);
    EXPECT_EQ(summary.versions, 3U);
    EXPECT_EQ(summary.missingFiles, 1U);
    ASSERT_EQ(versionsOf(*target.catalog, id).size(), 2U);
    for (const auto& version : versionsOf(*target.catalog, id)) { // it shares what its file has here
        EXPECT_EQ(version.rating, 2);
        EXPECT_EQ(version.metadata.title, "mine");
        EXPECT_FALSE(version.projectID);
    }
    const auto master = target.catalog->masterAt(shared.string()).value();
    EXPECT_EQ(versionsOf(*target.catalog, master).at(0).projectID, target.item(master).projectID);
    EXPECT_EQ(versionsOf(*target.catalog, master).at(0).rating, 4);
    EXPECT_EQ(summaryText({.masters = 1, .missingFiles = 2}, Matching::on),
        "1 photo. Compare mode shows Aperture's own render for every photo. Your Aperture library wasn't "
        "modified; "
        "Korvo's catalog is beside it. 2 files missing from the bundle (referenced files or files Aperture "
        "had "
        "already lost).");
}

TEST_F(Importing, refusesASecondImportAndChangesNothing)
{
    bundle.add({.name = "a.jpg"});
    import();
    const auto before = bundleState(path);
    library.reset();
    fs::rename(path, folder / "Renamed.aplibrary");
    library.emplace(ApertureLibrary::open(folder / "Renamed.aplibrary"));
    try {
        import();
        FAIL();
    } catch (const ImportError& error) {
        EXPECT_STREQ(error.what(), "Renamed.aplibrary is already in this library.");
    }
    EXPECT_EQ(rows("photos"), 1);
    library.reset();
    fs::rename(folder / "Renamed.aplibrary", path);
    EXPECT_EQ(bundleState(path), before);
}

TEST_F(Importing, anErrorOrAStopLeavesNothingOfIt)
{
    bundle.add({.name = "a.jpg", .project = bundle.addFolder("Project", 2)});
    const auto second = bundle.add({.name = "b.jpg"});
    bundle.addAlbum("Album", 3, {second.versions[0].id});
    auto& database = target.catalog->database();
    database.exec("CREATE TRIGGER fail BEFORE INSERT ON photos WHEN NEW.filename = 'b.jpg' "
                  "BEGIN SELECT RAISE(ABORT, 'the disk is full'); END");
    EXPECT_THROW(import(), DatabaseError);
    database.exec("DROP TRIGGER fail");
    for (const char* const phase : {"Reading photos…", "Stacks and albums…"}) {
        stopAt = phase;
        stop = std::stop_source();
        EXPECT_EQ(import().masters, 999U) << phase;
        EXPECT_EQ(rows("photos") + rows("projects") + rows("albums") + rows("keywords"), 0) << phase;
    }
    stopAt = "";
    stop = std::stop_source();
    EXPECT_EQ(import().masters, 2U);
}

TEST_F(Importing, keepsTheCurveThatBringsARenderToAperturesOwn)
{
    bundle.add({.name = "a.jpg", .hasPreview = true});
    bundle.add({.name = "b.jpg"});
    const auto summary = import([](const fs::path& original, const PhotoEdits&, const fs::path& preview) {
        EXPECT_EQ(original.filename(), "a.jpg");
        EXPECT_EQ(readFile(preview), "preview");
        return std::optional(ToneCurves{.rgb = {{0, 0.1}, {1, 1}}});
    });
    EXPECT_EQ(summary.matchedToPreview, 1U);
    EXPECT_EQ(phases[1], "Reading photos and matching Aperture's renders…");
    EXPECT_EQ(photos()[0].edits().apertureMatch->rgb.front().y, 0.1);
    EXPECT_FALSE(photos()[1].hasEdits());
}

TEST_F(Importing, originalsInAnImportedBundleAreNeverWritten)
{
    library.reset();
    const auto plain = folder / "no ending"; // known by its database, not by its name
    ApertureBundle other(plain);
    other.add({.name = "a.jpg"});
    ApertureBundle::finish(std::move(other));
    library.emplace(ApertureLibrary::open(plain));
    auto& database = target.catalog->database();
    Catalog second(target.catalog->libraryURL(), target.clock); // as another process has it
    EXPECT_FALSE(isReadOnlyOriginal(second.database(), (plain / "a.jpg").native()));
    import();
    const auto item = photos().front();
    EXPECT_TRUE(isReadOnlyOriginal(second.database(), item.path().native()));
    EXPECT_TRUE(isReadOnlyOriginal(database, item.path().native()));
    EXPECT_FALSE(isReadOnlyOriginal(database, plain.native() + " beside/a.jpg"));
    target.catalog->setMetadata(item.id, {.title = "new"}, WriteBack::pending);
    target.catalog->markDirty(only(item.id));
    EXPECT_FALSE(photos().front().dirty);
    const auto outside = target.photo("outside.jpg");
    target.catalog->setMetadata(outside, {.title = "new"}, WriteBack::pending);
    EXPECT_TRUE(target.item(outside).dirty);
}

} // namespace korvo
