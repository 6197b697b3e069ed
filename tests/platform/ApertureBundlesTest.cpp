#include "platform/ApertureBundles.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

namespace fs = std::filesystem;

} // namespace

TEST(ApertureBundles, areKnownByTheirNamesWithoutADisk)
{
    for (const char* path : {"/p/A.aplibrary/a.jpg", "/p/A.APLibrary/Masters/2012/a.jpg",
             "/p/M.migratedaplibrary/deep/er/a.jpg", "A.aplibrary/a.jpg"})
        EXPECT_TRUE(liesInNamedBundle(path)) << path;
    for (const char* path :
        {"/p/a.jpg", "/p/A.aplibrary", "/p/A.aplibrary.old/a.jpg", "/p/aplibrary/a.jpg", "a.jpg", "/"})
        EXPECT_FALSE(liesInNamedBundle(path)) << path;
}

TEST(ApertureBundles, holdWhatLiesInThemUnderAnyNameAndThroughAnyLink)
{
    const TemporaryFolder folder;
    const auto original = folder.write("Renamed/Masters/2012/a.jpg", "x");
    folder.write("Renamed/Database/apdb/Library.apdb", "x");
    const auto named = folder.write("N.aplibrary/b.jpg", "x");
    const auto outside = folder.write("photos/c.jpg", "x");
    fs::create_symlink(original, folder / "photos/link.jpg");
    fs::create_directory_symlink(folder / "Renamed/Masters", folder / "photos/shortcut");
    fs::create_symlink(outside, folder / "photos/harmless.jpg");

    ApertureBundles bundles;
    for (int time = 0; time < 2; ++time) { // the second time from what it remembers
        for (const auto& inside : {original, named, folder / "photos/link.jpg",
                 folder / "photos/shortcut/2012/a.jpg", folder / "photos/shortcut/2012/gone.jpg"})
            EXPECT_TRUE(bundles.hold(inside)) << inside;
        for (const auto& beside : {outside, folder / "photos/harmless.jpg", folder / "photos/gone.jpg",
                 folder / "nowhere/gone.jpg"})
            EXPECT_FALSE(bundles.hold(beside)) << beside;
    }
}

} // namespace korvo
