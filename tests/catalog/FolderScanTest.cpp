#include "catalog/FolderScan.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace korvo {

namespace fs = std::filesystem;

namespace {

struct Scanned {
    std::vector<std::string> photos; // relative to the folder
    std::vector<std::string> failures;
    std::size_t ignored;
};

Scanned scan(const TemporaryFolder& folder, const std::vector<fs::path>& paths)
{
    FolderScan scan(paths);
    Scanned result{};
    while (const auto file = scan.next())
        (file->failure.empty() ? result.photos : result.failures)
            .push_back(file->path.lexically_relative(folder.path()));
    result.ignored = scan.ignored();
    return result;
}

} // namespace

TEST(FolderScan, takesImagesRawAndVideoInTheOrderOfTheirNames)
{
    const TemporaryFolder folder;
    for (const std::string name : {"b/IMG_2.JPG", "b/IMG_1.CR3", "a.HeIc", "b/clip.MOV",
             "b.library/inside/x.tif", "latin\xE9.jpg", "桜.png", "song.mp3", "notes.txt", "b/noextension",
             ".hidden.jpg", ".hidden/y.jpg", "b/.jpg", "Library/catalog.sqlite", "Library/Previews/p.jpg",
             "b/Previews/q.jpg", "Library/catalog.sqlite", "Library/Previews/p.jpg"})
        folder.write(name, "x");
    const auto found = scan(folder, {folder.path()});
    EXPECT_EQ(found.photos,
        (std::vector<std::string>{"a.HeIc", "b/IMG_1.CR3", "b/IMG_2.JPG", "b/Previews/q.jpg", "b/clip.MOV",
            "b.library/inside/x.tif", "latin\xE9.jpg", "桜.png"}));
    EXPECT_EQ(found.ignored, 4U);
    EXPECT_TRUE(found.failures.empty());
}

TEST(FolderScan, endsInCirclesOfLinksAndFollowsLinksToFiles)
{
    const TemporaryFolder folder;
    folder.write("real/a.jpg", "x");
    fs::create_directory_symlink(folder.path(), folder / "real/up");
    fs::create_symlink("a.jpg", folder / "real/link.jpg");
    fs::create_symlink("nowhere.jpg", folder / "real/broken.jpg");
    fs::create_symlink("circle.jpg", folder / "real/circle.jpg");
    const auto found = scan(folder, {folder.path()});
    EXPECT_EQ(found.photos, (std::vector<std::string>{"real/a.jpg", "real/link.jpg"}));
    EXPECT_EQ(found.failures, (std::vector<std::string>{"real/broken.jpg", "real/circle.jpg"}));
}

TEST(FolderScan, takesWhatIsNamedEvenHiddenOrThroughALink)
{
    const TemporaryFolder folder;
    folder.write(".hidden/a.jpg", "x");
    folder.write("b.jpg", "x");
    fs::create_directory_symlink(folder / ".hidden", folder / "link");
    const auto found
        = scan(folder, {folder / "link", folder / "b.jpg", folder / "none", folder / "b.jpg" / "c.jpg"});
    EXPECT_EQ(found.photos, (std::vector<std::string>{".hidden/a.jpg", "b.jpg"}));
    EXPECT_EQ(found.failures.size(), 2U);
}

TEST(FolderScan, reportsFoldersItMayNotRead)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read everything";
    const TemporaryFolder folder;
    folder.write("closed/a.jpg", "x");
    folder.write("open/b.jpg", "x");
    fs::permissions(folder / "closed", fs::perms::none);
    const auto found = scan(folder, {folder.path()});
    fs::permissions(folder / "closed", fs::perms::owner_all);
    EXPECT_EQ(found.photos, std::vector<std::string>{"open/b.jpg"});
    EXPECT_EQ(found.failures, std::vector<std::string>{"closed"});
}

} // namespace korvo
