#include "app/AddFiles.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvo {

namespace fs = std::filesystem;

namespace {

const fs::path photoWithMetadata = fs::path(KORVO_TEST_DATA) / "metadata/all-sources.jpg";

AddResult add(
    TestLibrary& library, const std::vector<fs::path>& paths, const std::stop_token& stop = {},
    const AddProgress& progress = [](std::size_t) {})
{
    return addFiles(*library.catalog, paths, library.clock, ReadCameraData::now, stop, progress);
}

} // namespace

TEST(AddFiles, takesWhatTheFilesHoldAndReportsThoseItCannotRead)
{
    TestLibrary library;
    const TemporaryFolder folder;
    fs::copy(photoWithMetadata, folder / "b.jpg");
    folder.write("a.jpg", "");
    folder.write("notes.txt", "x");
    fs::create_symlink("nowhere", folder / "broken.jpg");
    const auto result = add(library, {folder.path()});
    EXPECT_EQ(result.added, 2U);
    EXPECT_EQ(result.ignored, 1U);
    ASSERT_EQ(result.failures.size(), 2U);
    EXPECT_EQ(sentenceOf(result.failures[0]), (folder / "a.jpg").string() + ": the file is empty");
    EXPECT_EQ(library.names(), (std::vector<std::string>{"a.jpg", "b.jpg"}));
    const auto items = library.catalog->photos(std::nullopt);
    EXPECT_FALSE(items[1].metadata.title.empty());
    EXPECT_FALSE(items[1].dirty) << "catalog and file agree";
    EXPECT_EQ(*items[1].fileDate, modificationTime(folder / "b.jpg"));
    EXPECT_TRUE(library.catalog->photosToRead(9).empty());
    EXPECT_EQ(library.names(LibrarySource{LibrarySource::Kind::folder, 1, {}}).size(), 2U);

    const auto again = add(library, {folder.path(), folder / "b.jpg"});
    EXPECT_EQ(again.added, 0U);
    EXPECT_EQ(again.known, 3U);
}

TEST(AddFiles, tellsWhatIsKeptWhenItEndsEarly)
{
    TestLibrary library;
    const TemporaryFolder folder;
    for (int i = 0; i < 300; ++i)
        folder.write("empty" + std::to_string(1000 + i) + ".jpg", "");
    library.catalog->database().exec(
        "CREATE TRIGGER full BEFORE INSERT ON photos WHEN (SELECT COUNT(*) FROM photos) >= 280 "
        "BEGIN SELECT RAISE(ABORT, 'no room'); END");
    const auto result = add(library, {folder.path()});
    EXPECT_FALSE(result.broken.empty());
    EXPECT_EQ(result.photos.size(), library.names().size()) << "those of the batch that failed are not in";
    EXPECT_EQ(result.added, result.photos.size());
    EXPECT_EQ(result.added, 256U);
    EXPECT_EQ(result.folders.size(), 1U);
}

TEST(AddFiles, readsWhatCouldNotBeReadWhenItIsAddedAgain)
{
    TestLibrary library;
    const TemporaryFolder folder;
    const auto names = {"unread.jpg", "described.jpg"};
    for (const char* name : names) {
        fs::copy(photoWithMetadata, folder / name);
        const NewPhoto unread{.path = folder / name}; // as one from a disk that failed
        const auto id = library.catalog->addPhotos(std::span(&unread, 1)).front().id;
        library.catalog->storeCameraData(id, {});
        library.catalog->storeReadPosition(id, std::nullopt, std::nullopt);
    }
    library.catalog->setMetadata(2, {.title = SharedText("mine")}, WriteBack::pending);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(add(library, {folder.path()}).known, 2U);
        const auto unread = library.item(1);
        EXPECT_EQ(unread.metadata.title, "xmp-title");
        EXPECT_EQ(unread.fileDate, modificationTime(folder / "unread.jpg"));
        EXPECT_FALSE(unread.dirty);
        EXPECT_TRUE(library.catalog->photosToRead(9).empty());
        EXPECT_EQ(library.item(2).metadata.title, "mine")
            << "it is merged with the file's when it is written";
    }
}

TEST(AddFiles, keepsTheOrderOfTheNamesOverManyBatches)
{
    TestLibrary library;
    const TemporaryFolder folder;
    for (int i = 0; i < 1000; ++i)
        folder.write(std::to_string(i % 7) + "/" + std::to_string(10'000 + i) + ".jpg", "no photo");
    EXPECT_EQ(add(library, {folder.path()}).added, 1000U);
    std::vector<std::string> paths;
    for (PhotoID id = 1; id <= 1000; ++id)
        paths.push_back(library.item(id).path());
    EXPECT_TRUE(std::is_sorted(paths.begin(), paths.end()));
}

TEST(AddFiles, keepsWhatItHasTakenWhenItIsStopped)
{
    TestLibrary library;
    const TemporaryFolder folder;
    for (int i = 0; i < 5000; ++i)
        folder.write(std::to_string(i) + ".jpg", "no photo");
    std::stop_source stop;
    const auto result
        = add(library, {folder.path()}, stop.get_token(), [&](std::size_t) { stop.request_stop(); });
    EXPECT_TRUE(result.cancelled);
    EXPECT_GT(result.added, 0U);
    EXPECT_LT(result.added, 5000U);
    EXPECT_EQ(library.names().size(), result.added);
    EXPECT_EQ(add(library, {folder.path()}).added, 5000U - result.added);
}

TEST(AddFiles, aSingleFileBelongsToTheInnermostFolderItLiesIn)
{
    TestLibrary library;
    const TemporaryFolder folder;
    library.catalog->addFolder(folder.path().native(), 1);
    const auto inner = library.catalog->addFolder((folder / "in").native(), 1).id;
    add(library, {folder.write("in/a.jpg", "x"), folder.write("inside.jpg", "x")});
    EXPECT_EQ(library.names(LibrarySource{LibrarySource::Kind::folder, inner, {}}),
        std::vector<std::string>{"a.jpg"});
}

} // namespace korvo
