#include "app/Libraries.h"
#include "platform/FileDefaults.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

namespace korvo {

TEST(Libraries, theLastOnesComeFirstAndThoseThatAreGoneAreLeftOut)
{
    const TemporaryFolder folder;
    const ManualClock clock;
    FileDefaults defaults(folder / "config" / "korvo");
    EXPECT_FALSE(lastLibrary(defaults));
    EXPECT_FALSE(missingLibrary(defaults));
    EXPECT_TRUE(recentLibraries(defaults).empty());
    const std::vector<std::filesystem::path> paths
        = {folder / "a", folder / "latin\xE9", folder / "new\nline"};
    for (const auto& path : paths)
        openLibrary(path, clock, defaults);
    openLibrary(paths[0], clock, defaults);
    EXPECT_EQ(recentLibraries(defaults), (std::vector<std::filesystem::path>{paths[0], paths[2], paths[1]}));
    EXPECT_EQ(lastLibrary(defaults), paths[0]);
    EXPECT_FALSE(missingLibrary(defaults));
    std::filesystem::rename(paths[0], folder / "unplugged");
    EXPECT_EQ(recentLibraries(defaults).size(), 2U);
    EXPECT_FALSE(lastLibrary(defaults));
    EXPECT_EQ(missingLibrary(defaults), paths[0]);
    openLibrary(paths[1], clock, defaults);
    std::filesystem::rename(folder / "unplugged", paths[0]);
    EXPECT_EQ(recentLibraries(defaults), (std::vector<std::filesystem::path>{paths[1], paths[0], paths[2]}))
        << "its disk is back";
    for (int i = 0; i < 12; ++i)
        openLibrary(folder / std::to_string(i), clock, defaults);
    EXPECT_EQ(recentLibraries(defaults).size(), 10U);
}

TEST(UnfinishedLibrary, takesAwayWhatWasMadeAndNothingThatWasThere)
{
    const TemporaryFolder folder;
    const auto make = [&](const std::filesystem::path& library, bool isKept) {
        UnfinishedLibrary unfinished(library);
        Catalog(library, SystemClock());
        if (isKept)
            unfinished.keep();
    };
    make(folder / "new", false);
    EXPECT_FALSE(std::filesystem::exists(folder / "new"));

    folder.write("old/Previews/mine.jpg", "x");
    folder.write("old/notes.txt", "x");
    make(folder / "old", false);
    EXPECT_EQ(readFile(folder / "old/Previews/mine.jpg") + readFile(folder / "old/notes.txt"), "xx");
    EXPECT_FALSE(std::filesystem::exists(folder / "old/catalog.sqlite"));
    EXPECT_FALSE(std::filesystem::exists(folder / "old/Backups"));

    make(folder / "new", true);
    make(folder / "new", false); // of a library that is there
    EXPECT_TRUE(std::filesystem::exists(folder / "new/catalog.sqlite"));
    EXPECT_TRUE(std::filesystem::exists(folder / "new/Backups"));
}

TEST(Libraries, aLibraryOpensWhereNothingCanBeRemembered)
{
    const TemporaryFolder folder;
    FileDefaults defaults(folder.write("file", "in the way") / "korvo");
    EXPECT_TRUE(openLibrary(folder / "Library", SystemClock(), defaults));
}

} // namespace korvo
