#include "app/ImportAperture.h"
#include "app/Libraries.h"
#include "platform/FileDefaults.h"
#include "tests/support/ApertureBundle.h"
#include "tests/support/BundleState.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/wait.h>

namespace korvo {

namespace fs = std::filesystem;

namespace {

class ImportAperture : public ::testing::Test {
protected:
    ImportAperture()
    {
        ApertureBundle bundle(path);
        bundle.add({.name = "a.jpg"});
        ApertureBundle::finish(std::move(bundle));
    }

    std::optional<ApertureImported> import(const std::optional<fs::path>& into = std::nullopt)
    {
        return importAperture(
            {.bundle = path, .into = into}, clock, defaults,
            [this](const ApertureImporter::Progress& progress) {
                if (progress.phase == stopAt)
                    stop.request_stop();
            },
            stop.get_token());
    }

    ImportError::Case refused(const std::optional<fs::path>& into = std::nullopt)
    {
        try {
            import(into);
        } catch (const ImportError& error) {
            message = error.what();
            return error.which();
        }
        throw std::runtime_error("it was imported");
    }

    TemporaryFolder folder;
    fs::path path = folder / "My Photos.aplibrary";
    SystemClock clock;
    FileDefaults defaults{folder / "config"};
    std::string stopAt;
    std::stop_source stop;
    std::string message;
};

} // namespace

TEST_F(ImportAperture, makesALibraryBesideTheBundleOnce)
{
    for (const char* const name : {"Library.apdb-wal", "Library.apdb-journal"}) // as a crash leaves them
        folder.write(path.filename() / "Database/apdb" / name, std::string(4096, '\x37'));
    const auto before = bundleState(path);
    const auto imported = import();
    ASSERT_TRUE(imported);
    EXPECT_EQ(imported->library, fs::canonical(folder.path()) / "My Photos Korvo");
    EXPECT_EQ(lastLibrary(defaults), imported->library);
    EXPECT_EQ(refused(), ImportError::Case::catalogExists);
    EXPECT_EQ(message, "There's already an Korvo library at My Photos Korvo.");
    EXPECT_EQ(refused(imported->library), ImportError::Case::alreadyImported);
    EXPECT_EQ(message, "My Photos.aplibrary is already in this library.");
    EXPECT_EQ(bundleState(path), before);
}

TEST_F(ImportAperture, asksForTheVolumesThatAreNotThere)
{
    const auto bundlePath = folder / "Referenced.aplibrary";
    ApertureBundle bundle(bundlePath);
    bundle.add({.name = "in.jpg"});
    bundle.add({.name = "a.jpg", .imagePath = "photos/a.jpg", .volume = "Disk"});
    bundle.add({.name = "b.jpg", .imagePath = "photos/b.jpg", .volume = "Disk"});
    ApertureBundle::finish(std::move(bundle));
    using Volumes = std::map<std::string, std::size_t>;
    EXPECT_EQ(unreachableVolumes(bundlePath, {}, {}), (Volumes{{"Disk", 2}}));
    folder.write("disk/photos/a.jpg", "x");
    EXPECT_EQ(unreachableVolumes(bundlePath, {{"Disk", folder / "disk"}}, {}), (Volumes{{"Disk", 1}}));
}

TEST_F(ImportAperture, joinsALibraryThatIsThere)
{
    Catalog(folder / "Library", clock).createAlbum("mine", std::nullopt);
    EXPECT_EQ(import(folder / "Library")->summary.masters, 1U);
    EXPECT_EQ(Catalog(folder / "Library", clock).tree().albums.size(), 1U);
}

TEST_F(ImportAperture, makesNothingInsideABundle)
{
    fs::create_directory_symlink(path, folder / "link");
    ApertureBundle::finish(ApertureBundle(path / "Inner.aplibrary"));
    const auto before = bundleState(path);
    for (const char* const name : {"My Photos.aplibrary", "My Photos.aplibrary/Korvo", "link/a/b",
             "My Photos.aplibrary/Masters/", "other/../link"})
        EXPECT_THROW(import(folder / name), std::runtime_error) << name;
    path /= "Inner.aplibrary"; // beside it is inside the outer one
    EXPECT_THROW(import(), std::runtime_error);
    EXPECT_EQ(bundleState(path.parent_path()), before);
    fs::create_directory(folder / "Elsewhere");
    EXPECT_TRUE(import(folder / "link/../Elsewhere/../New"));
}

TEST_F(ImportAperture, leavesNoLibraryWhenItDoesNotSucceed)
{
    for (const char* const phase : {"Reading photos…", "Stacks and albums…"}) {
        stop = std::stop_source();
        stopAt = phase;
        EXPECT_FALSE(import());
        EXPECT_FALSE(fs::exists(folder / "My Photos Korvo")) << phase;
    }
    fs::rename(path / "Database", path / "Data");
    EXPECT_THROW(import(), ApertureLibrary::OpenError);
    EXPECT_FALSE(fs::exists(folder / "My Photos Korvo"));
}

TEST_F(ImportAperture, worksFromTheCommandLine)
{
    const auto run = [&](const std::string& arguments) {
        const auto at = [&](const char* name) { return "'" + (folder / name).string() + "'"; };
        const int status = std::system(("env -u KORVO_LIBRARY KORVO_CONFIG=" + at("config") + " "
            + KORVO_PROGRAM + " " + arguments + " >" + at("out") + " 2>" + at("err"))
                                           .c_str());
        return std::pair(WEXITSTATUS(status), readFile(folder / "out") + readFile(folder / "err"));
    };
    const auto bundle = "'" + path.string() + "'";
    const auto library = (fs::canonical(folder.path()) / "My Photos Korvo").string();
    EXPECT_EQ(run("--json import-aperture --match-renders " + bundle),
        std::pair(0,
            R"({"catalogExists":false,"alreadyImported":false,"masters":1,"versions":0,"missingFiles":0,)"
            R"("albums":0,"projects":0,"smartAlbums":0,"smartAlbumsAsPlain":0,"stacks":0,)"
            R"("adjustedVersions":0,"matchedToPreview":0,"report":{"unsupported":{},"approximated":{}},)"
            R"("library":")"
                + library + "\"}\n"));
    EXPECT_EQ(run("import-aperture " + bundle),
        std::pair(1, std::string("korvo: There's already an Korvo library at My Photos Korvo.\n")));
    EXPECT_EQ(run("import-aperture --volume Disk " + bundle).first, 2);
    EXPECT_EQ(run("import-aperture /nowhere"),
        std::pair(
            1, std::string("korvo: That isn't an Aperture library (no Library.apdb inside the bundle).\n")));
    EXPECT_EQ(run("plist '" + (path / "Info.plist").string() + "'").first, 1);
}

} // namespace korvo
