#include "metadata/MetadataSave.h"

#include "metadata/DescriptiveReader.h"
#include "metadata/FileFields.h"
#include "tests/metadata/ExifTool.h"
#include "tests/metadata/FakeTool.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace korvo {

namespace {

namespace fs = std::filesystem;

/// Everything of a JPEG from its picture data on.
std::string pictureData(const std::string& jpeg)
{
    return jpeg.substr(jpeg.find("\xff\xda"));
}

/// A library of copies of one file, as it is after they were added, each with a new title.
struct Photos : TestLibrary {
    explicit Photos(int count, const std::string& fixture = "all-sources.jpg")
        : contents(readFile(std::string(KORVO_TEST_DATA) + "/metadata/" + fixture))
    {
        for (int i = 0; i < count; ++i)
            ids.push_back(add("photos/" + std::to_string(i) + ".jpg"));
        titleAll("new");
    }

    PhotoID add(const std::string& name)
    {
        const auto path = folder.write(name, contents);
        const auto found = readDescriptive(path);
        NewPhoto photo{.path = path,
            .fileDate = modificationTime(path),
            .fileSize = static_cast<std::int64_t>(contents.size()),
            .metadata
            = {found.altText, found.title, found.caption, "xmp-1, xmp-2", found.creator, found.copyright}};
        return catalog->addPhotos(std::span(&photo, 1)).front().id;
    }

    void titleAll(const char* title) { set(ids, {.title = title}); }
    void set(std::span<const PhotoID> photos, const MetadataChange& change)
    {
        catalog->changeMetadata(photos, change, WriteBack::pending);
    }

    FilesWritten save(const ExifTool& tool, const std::stop_token& stop = {})
    {
        return saveMetadata(*catalog, tool, stop, [&](std::size_t number, std::size_t total) {
            progress += std::to_string(number) + "/" + std::to_string(total) + " ";
        });
    }

    DescriptiveFields inFile(PhotoID id) { return readDescriptive(item(id).path()); }

    std::string contents, progress;
    std::vector<PhotoID> ids;
};

class MetadataSave : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!hasExifTool())
            GTEST_SKIP() << "exiftool is not installed";
    }

    FakeTool real{FakeTool::Real{}};
};

} // namespace

TEST_F(MetadataSave, writesTheFieldsAndNothingElseAndKeepsWhatTheFileHeldAtFirst)
{
    Photos photos(2);
    const auto before = photos.inFile(1);
    photos.set(photos.ids, {.caption = "", .keywords = "a, b"});
    EXPECT_EQ(photos.save(real.tool).done, 2U);
    EXPECT_EQ(photos.progress, "1/2 2/2 ");
    EXPECT_EQ(
        photos.inFile(1), (DescriptiveFields{"xmp-alt", "new", "", {"a", "b"}, "xmp-creator", "xmp-rights"}));
    EXPECT_EQ(pictureData(readFile(photos.item(1).path())), pictureData(photos.contents));
    EXPECT_EQ(photos.catalog->dirtyCount(), 0);
    EXPECT_TRUE(isAsKnown(*photos.catalog->fileRecord(1), fileState(photos.item(1).path())))
        << "the new date and size are known";

    photos.titleAll("newer");
    photos.save(real.tool);
    photos.titleAll("unsaved");
    const auto version = photos.version(1);
    const auto reverted = revertMetadata(
        *photos.catalog, std::vector{version, PhotoID(1)}, real.tool, {}, [](std::size_t, std::size_t) {});
    EXPECT_EQ(reverted.done, 1U) << "a version stands for its master";
    EXPECT_EQ(photos.inFile(1), before);
    EXPECT_EQ(photos.item(version).metadata.title, "xmp-title");
    EXPECT_EQ(photos.item(2).metadata.title, "unsaved");
    EXPECT_FALSE(photos.item(1).dirty);
}

TEST_F(MetadataSave, revertsWhatWasNeverWrittenToWhatTheFileSays)
{
    Photos photos(1);
    EXPECT_EQ(
        revertMetadata(*photos.catalog, photos.ids, real.tool, {}, [](std::size_t, std::size_t) {}).done, 1U);
    EXPECT_EQ(photos.item(1).metadata.title, "xmp-title");
    EXPECT_FALSE(photos.item(1).dirty);
    EXPECT_EQ(readFile(photos.item(1).path()), photos.contents);
}

TEST_F(MetadataSave, neverWipesWhatTheCatalogHasNotSeen)
{
    Photos photos(0);
    for (const char* missed :
        {"", "keywords = '', file_size = NULL", "keywords = ''"}) { // unread, read wrongly
        const auto id = photos.add("photos/" + std::to_string(photos.ids.size()) + ".jpg");
        photos.ids.push_back(id);
        if (*missed)
            photos.catalog->database().exec(
                std::string("UPDATE photos SET ") + missed + " WHERE id = " + std::to_string(id));
    }
    photos.set(photos.ids, {.altText = "", .title = "new"});
    EXPECT_EQ(photos.save(real.tool).done, 3U);
    for (const PhotoID id : photos.ids) {
        EXPECT_EQ(photos.inFile(id),
            (DescriptiveFields{"", "new", "xmp-caption", {"xmp-1", "xmp-2"}, "xmp-creator", "xmp-rights"}))
            << id;
        EXPECT_EQ(photos.item(id).metadata.keywords, "xmp-1, xmp-2");
    }
}

TEST_F(MetadataSave, keepsATextThatIsThereInAnotherLanguageOnly)
{
    Photos photos(1, "languages.jpg");
    photos.save(real.tool);
    EXPECT_EQ(photos.inFile(1).title, "new");
    EXPECT_EQ(photos.inFile(1).caption, "Français") << "which the tool does not read";
    EXPECT_EQ(photos.item(1).metadata.caption, "Français");
    revertMetadata(*photos.catalog, photos.ids, real.tool, {}, [](std::size_t, std::size_t) {});
    EXPECT_EQ(photos.inFile(1).title, "Default");
    EXPECT_EQ(photos.inFile(1).caption, "Français");
}

TEST_F(MetadataSave, takesWhatAnotherProgramWroteUnlessBothChangedTheSameField)
{
    Photos photos(2);
    photos.set(photos.ids, {.creator = "Smith, John"}); // two creators for the tool
    photos.save(real.tool);
    const auto elsewhere = [&](PhotoID id, const std::string& assignment) {
        real.tool.run({"-overwrite_original", "-q", assignment, photos.item(id).path()}, {});
    };
    elsewhere(1, "-XMP-iptcCore:AltTextAccessibility=elsewhere");
    elsewhere(2, "-XMP-dc:Title=elsewhere");
    photos.set(photos.ids, {.title = "newer", .caption = ""});
    const auto result = photos.save(real.tool);
    EXPECT_EQ(result.done, 1U);
    EXPECT_EQ(photos.inFile(1).altText, "elsewhere");
    EXPECT_EQ(photos.item(1).metadata.altText, "elsewhere");
    EXPECT_EQ(photos.inFile(1).title, "newer");
    EXPECT_EQ(photos.inFile(1).caption, "") << "emptied by the user";
    EXPECT_EQ(photos.item(1).metadata.creator, "Smith, John") << "which the file gives only half of";
    ASSERT_EQ(result.failures.size(), 1U);
    EXPECT_NE(result.failures.front().message.find("changed by another program"), std::string::npos);
    EXPECT_EQ(photos.inFile(2).title, "elsewhere");
    EXPECT_TRUE(photos.item(2).dirty);
    photos.save(real.tool);
    EXPECT_EQ(photos.inFile(2).title, "newer") << "the user insists";
}

TEST_F(MetadataSave, looksAgainAtAFileBeforeItIsWritten)
{
    Photos photos(5);
    const FakeTool meddling(R"(
for last; do :; done
case "$1 $last" in
-stay_open*) exit 1;;
-overwrite_original*/0.jpg) exiftool -overwrite_original -q -XMP-dc:Description=elsewhere "${last%0.jpg}4.jpg";;
esac
exec exiftool "$@")");
    EXPECT_EQ(photos.save(meddling.tool).done, 5U);
    EXPECT_EQ(photos.inFile(5).caption, "elsewhere");
    EXPECT_EQ(photos.item(5).metadata.caption, "elsewhere");
    EXPECT_EQ(photos.inFile(5).title, "new");
}

TEST_F(MetadataSave, leavesFilesItMustNotOrCannotWriteAsTheyAre)
{
    Photos photos(1);
    const auto original = photos.add("Photos.aplibrary/Masters/a.jpg");
    photos.folder.write("Renamed/Database/apdb/Library.apdb", "");
    const auto renamed = photos.add("Renamed/Masters/a.jpg"), moved = photos.add("P.migratedaplibrary/a.jpg");
    const auto broken = photos.add("photos/broken.jpg"), gone = photos.add("photos/gone.jpg");
    const auto empty = photos.add("photos/empty.jpg");
    fs::create_symlink(photos.item(original).path(), photos.folder / "photos/link.jpg");
    NewPhoto link{.path = photos.folder / "photos/link.jpg"};
    const auto linked = photos.catalog->addPhotos(std::span(&link, 1)).front().id;
    photos.folder.write("photos/broken.jpg", "no picture at all");
    photos.folder.write("photos/empty.jpg", "");
    auto half = photos.contents;
    half.replace(half.find("</rdf:RDF>"), 10, "</rdf:XXX>");
    const auto damaged = photos.add("photos/damaged.jpg");
    photos.folder.write("photos/damaged.jpg", half);
    const auto unwritable = photos.add("photos/rows.bmp");
    photos.folder.write(
        "photos/rows.bmp", readFile(std::string(KORVO_TEST_DATA) + "/metadata/rows-down.bmp"));
    fs::remove(photos.item(gone).path());
    photos.set(std::vector{original, renamed, moved, linked, broken, gone, empty, damaged, unwritable},
        {.title = "new"});
    EXPECT_FALSE(photos.item(original).dirty);
    const auto result = photos.save(real.tool);
    EXPECT_EQ(result.done, 1U);
    EXPECT_EQ(result.failures.size(), 5U);
    EXPECT_EQ(photos.inFile(1).title, "new");
    EXPECT_EQ(readFile(photos.item(damaged).path()), half) << "the tool would drop the rest of its XMP";
    for (const auto id : {original, renamed, moved, linked}) {
        EXPECT_EQ(readFile(photos.item(id).path()), photos.contents) << id;
        EXPECT_FALSE(photos.item(id).dirty) << "it never will be written: " << id;
    }
    EXPECT_EQ(readFile(photos.item(broken).path()), "no picture at all");
    for (const auto id : {broken, gone, empty, damaged, unwritable})
        EXPECT_TRUE(photos.item(id).dirty) << id;
    const std::vector wayOut{damaged, unwritable};
    revertMetadata(*photos.catalog, wayOut, real.tool, {}, [](std::size_t, std::size_t) {});
    for (const auto id : wayOut)
        EXPECT_FALSE(photos.item(id).dirty) << "it need not wait for ever: " << id;
}

TEST_F(MetadataSave, writesThroughLinksAndPastWhatAnInterruptedCallLeft)
{
    Photos photos(1);
    const auto target = photos.folder.write("elsewhere.jpg", photos.contents);
    const auto path = photos.item(1).path();
    fs::remove(path);
    fs::create_symlink(target, path);
    const auto unfinished = photos.folder.write("elsewhere.jpg_exiftool_tmp", "half");
    fs::last_write_time(unfinished, fs::file_time_type::clock::now() - std::chrono::minutes(1));
    EXPECT_EQ(photos.save(real.tool).done, 1U);
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(readDescriptive(target).title, "new");
    EXPECT_FALSE(fs::exists(unfinished));
}

TEST_F(MetadataSave, goesOnAfterAFileThatFails)
{
    Photos photos(5);
    const FakeTool failing(R"(
for last; do :; done
case "$1 $last" in
-stay_open*) exit 1;;
-overwrite_original*/2.jpg) echo 'Error: no' >&2; exit 1;;
esac
exec exiftool "$@")");
    const auto result = photos.save(failing.tool);
    EXPECT_EQ(result.done, 4U);
    ASSERT_EQ(result.failures.size(), 1U);
    EXPECT_EQ(result.failures.front().message, photos.item(3).path().string() + ": Error: no");
    EXPECT_EQ(photos.catalog->dirtyCount(), 1);
    EXPECT_EQ(photos.save(real.tool).done, 1U);
}

TEST_F(MetadataSave, stopsAtOnceAndLeavesTheRestForTheNextTime)
{
    Photos photos(5);
    const FakeTool hanging(R"(
for last; do :; done
case "$1 $last" in
-stay_open*) exit 1;;
-overwrite_original*/2.jpg) : > "${last%/*}/hangs"; sleep 1000;;
esac
exec exiftool "$@")");
    std::stop_source stop;
    const std::jthread stopper([&] {
        while (!fs::exists(photos.folder / "photos/hangs"))
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        stop.request_stop();
    });
    const auto result = photos.save(hanging.tool, stop.get_token());
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(result.done, 2U);
    EXPECT_TRUE(result.failures.empty());
    EXPECT_EQ(photos.catalog->dirtyCount(), 3);
    EXPECT_EQ(photos.save(real.tool).done, 3U);
}

TEST_F(MetadataSave, leavesFilesWholeOnAFullDisk)
{
    Photos photos(1);
    const auto disk = photos.folder / "photos";
    const auto mount = "mount -t tmpfs -o size=256k none '" + disk.string() + "' 2>/dev/null";
    if (std::system(mount.c_str()) != 0)
        GTEST_SKIP() << "only root may mount";
    photos.folder.write("photos/0.jpg", photos.contents);
    (void)std::system(("head -c 1000000 /dev/zero > '" + (disk / "rest").string() + "' 2>/dev/null").c_str());
    const auto full = photos.save(real.tool);
    ASSERT_EQ(full.failures.size(), 1U);
    EXPECT_NE(full.failures[0].message.find("(its disk is full)"), std::string::npos);
    EXPECT_EQ(readFile(disk / "0.jpg"), photos.contents);
    fs::remove(disk / "rest");
    EXPECT_EQ(photos.save(real.tool).done, 1U);
    EXPECT_EQ(photos.inFile(1).title, "new");
    (void)std::system(("umount '" + disk.string() + "'").c_str());
}

TEST(MetadataSaveWithoutTool, changesNothing)
{
    Photos photos(1);
    EXPECT_THROW(photos.save(FakeTool().tool), ExifToolError);
    EXPECT_TRUE(photos.item(1).dirty);
    EXPECT_EQ(photos.catalog->fileRecord(1)->backup, "");
}

} // namespace korvo
