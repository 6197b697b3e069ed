#include "catalog/ImportMemory.h"
#include "imports/FolderFiles.h"
#include "imports/ImportShots.h"
#include "imports/ImportSource.h"
#include "imports/ImportWindow.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvo {

namespace {

ImportListing list(TestLibrary& library, const std::vector<std::filesystem::path>& paths)
{
    FolderFiles files(paths);
    return listImportable(files, *library.catalog, {});
}

/// "IMG_1: .CR3 .JPG .xmp" for each shot.
std::vector<std::string> described(const std::vector<Shot>& shots)
{
    std::vector<std::string> all;
    for (const auto& shot : shots) {
        all.push_back(shot.name + ":");
        for (const auto& file : shot.files)
            all.back() += " " + file.suffix;
    }
    return all;
}

PhotoID addMaster(TestLibrary& library, const std::string& path, std::int64_t size)
{
    const NewPhoto photo{.path = path, .fileSize = size};
    return library.catalog->addPhotos(std::span(&photo, 1)).front().id;
}

} // namespace

TEST(ImportPlan, duplicatesAreKnownByNameAndSizeOfMastersAndOfEarlierImports)
{
    TestLibrary library;
    const TemporaryFolder card;
    card.write("IMG_0001.JPG", std::string(2000, 'x'));
    card.write("IMG_0002.JPG", "other size");
    card.write("ÄB.jpg", "abc");
    card.write("renamed.jpg", "12345");
    card.write("version.jpg", "1234567");
    card.write("Strasse.jpg", "1234");
    card.write("gone.jpg", "123456789");
    for (const char* name : {"1/twin.jpg", "2/twin.jpg", "3/left.jpg"})
        card.write(name, "12");
    addMaster(library, "/p/img_0001.jpg", 2000);
    addMaster(library, "/p/img_0002.jpg", 7);
    addMaster(library, "/p/Straße.jpg", 4); // folds to the same, but is another name
    const auto umlaut = addMaster(library, "/p/äb.JPG", 3);
    ImportMemory(*library.catalog).remember(duplicateKey("Renamed.JPG", 5), umlaut);
    ImportMemory(*library.catalog).remember(duplicateKey("gone.jpg", 9), 999);
    for (const char* name : {"twin.jpg", "left.jpg"})
        ImportMemory(*library.catalog).remember(duplicateKey(name, 2), umlaut);
    ImportMemory(*library.catalog).begin({"", 3, {{"twin.jpg|2|1", 2}, {"left.jpg|2", 3}}});
    ImportMemory(*library.catalog).announce(duplicateKey("IMG_0002.JPG", 10), "/p/on-its-way.jpg");
    library.catalog->database().exec("INSERT INTO photos (path, filename, added_at, file_size, version_of) "
                                     "VALUES ('/p/version.jpg', 'version.jpg', 1, 7, 1)");
    auto listing = list(library, {card.path()});
    pick(listing.candidates, Duplicates::leaveOut);
    std::string duplicates;
    for (const auto& candidate : listing.candidates) {
        EXPECT_NE(candidate.isDuplicate, candidate.picked);
        if (candidate.isDuplicate)
            duplicates += candidate.file.path.filename().string() + " ";
    }
    EXPECT_EQ(duplicates, "twin.jpg left.jpg IMG_0001.JPG renamed.jpg ÄB.jpg ")
        << "not the twin that an import has left";
    EXPECT_EQ(planFor(listing).files.size(), 5U);
    pick(listing.candidates, Duplicates::take);
    EXPECT_EQ(planFor(listing).files.size(), 10U);
    FolderFiles files({card.path()});
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(listImportable(files, *library.catalog, stop.get_token()).isWhole);
    EXPECT_NE(duplicateKey("\xff.jpg", 1), duplicateKey("\xfe.jpg", 1));
}

TEST(ImportPlan, filesOfOneShotGoTogether)
{
    TestLibrary library;
    const TemporaryFolder card;
    for (const char* name : {"a/IMG_1.CR3", "a/IMG_1.JPG", "a/IMG_1.xmp", "a/IMG_1.CR3.xmp", "a/IMG_2.jpg",
             "a/IMG_2.JPG", "a/lonely.xmp", "a/notes.txt", "a/.IMG_1.MOV", "b/IMG_1.JPG", "b/MVI_3.MOV"})
        card.write(name, name);
    const auto listing = list(library, {card / "a", card.path(), card / "a/IMG_2.jpg"});
    EXPECT_EQ(listing.candidates.size(), 6U) << "each once, in whatever way it was named";
    EXPECT_EQ(described(shots(planFor(listing))),
        (std::vector<std::string>{
            "IMG_1: .CR3 .JPG .CR3.xmp .xmp", "IMG_2: .JPG", "IMG_2: .jpg", "IMG_1: .JPG", "MVI_3: .MOV"}));
    EXPECT_EQ(described(shots(planFor(list(library, {card / "a/IMG_1.CR3"})))),
        std::vector<std::string>{"IMG_1: .CR3 .xmp .CR3.xmp"})
        << "a file named by itself brings what belongs to it";
}

TEST(ImportWindow, saysWhatHappens)
{
    EXPECT_EQ(statusText(1), "Copying 1 file…");
    EXPECT_EQ(statusText(2), "Copying 2 files…");
    const ImportSource card{
        .kind = ImportSource::Kind::volume, .volume = {"/media/EOS", "EOS_DIGITAL", true}};
    EXPECT_EQ(progressText(5, 300, nameOf(card)), "Copying 5 of 300 from EOS_DIGITAL");
    EXPECT_EQ(nameOf({.kind = ImportSource::Kind::camera}), "Camera");
    EXPECT_EQ(nameOf({.kind = ImportSource::Kind::chosen, .chosen = {"/a/Trip/"}}), "Trip");
    EXPECT_EQ(ejectText("EOS", std::nullopt), "EOS ejected.");
    EXPECT_EQ(ejectText("EOS", "it is busy"), "Couldn't eject EOS: it is busy");
    EXPECT_TRUE(mustCopy(card));
    EXPECT_EQ(summary({.file = {.path = "/c/a.jpg", .size = 1}, .isDuplicate = true}),
        "a.jpg, 1 byte, already in the library");
    EXPECT_EQ(paneText(ListingState::listed, {}), "No photos or videos found there.");
    EXPECT_EQ(paneText(ListingState::listing, {}), "Looking for photos…");
}

} // namespace korvo
