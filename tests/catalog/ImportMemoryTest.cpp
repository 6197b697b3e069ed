#include "catalog/ImportMemory.h"

#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace korvo {

namespace {

using Texts = std::vector<std::string>;

Texts sorted(Texts texts)
{
    std::ranges::sort(texts);
    return texts;
}

} // namespace

TEST(ImportMemory, knowsTheFilesWhosePhotosTheLibraryHolds)
{
    TestLibrary library;
    ImportMemory memory(*library.catalog);
    const auto a = library.photo("a.jpg"), b = library.photo("b.jpg");
    memory.remember("img_1.jpg|10", a);
    memory.remember("a|b|c.jpg|20", b); // a name may hold what stands between name and size
    EXPECT_EQ(sorted(memory.keys()), (Texts{"a|b|c.jpg|20", "img_1.jpg|10"}));
    EXPECT_EQ(memory.path("img_1.jpg|10"), "/photos/a.jpg");
    EXPECT_FALSE(memory.path("img_1.jpg|11"));

    library.catalog->deletePhotos(only(a));
    EXPECT_EQ(memory.keys(), Texts{"a|b|c.jpg|20"});
    EXPECT_FALSE(memory.path("img_1.jpg|10")) << "it may be imported again";
    memory.remember("img_1.jpg|10", b);
    EXPECT_EQ(memory.path("img_1.jpg|10"), "/photos/b.jpg");
}

TEST(ImportMemory, findsWhatWasAnnouncedUntilItIsForgotten)
{
    TestLibrary library;
    ImportMemory memory(*library.catalog);
    memory.announce("a.jpg|10", "/to/a.jpg");
    memory.announce("a.jpg|10", "/to/a-2.jpg");
    memory.announce("b.jpg|10", "/to/b.jpg");
    memory.announce("c.jpg|10", "/to/b.jpg"); // the name is another file's now
    EXPECT_EQ(sorted(memory.announcedPaths("a.jpg|10")), (Texts{"/to/a-2.jpg", "/to/a.jpg"}));
    EXPECT_TRUE(memory.announcedPaths("b.jpg|10").empty());
    EXPECT_TRUE(memory.keys().empty()) << "an announcement is no photo";
    memory.forgetAnnounced("/to/a.jpg");
    EXPECT_EQ(memory.announcedPaths("a.jpg|10"), Texts{"/to/a-2.jpg"});
}

TEST(ImportMemory, aNewImportTakesThePlaceOfTheOneThatWasLeft)
{
    TestLibrary library;
    {
        ImportMemory memory(*library.catalog);
        EXPECT_TRUE(memory.unfinished().left.empty());
        memory.begin({"/to/|{seq}", 3, {{"a.jpg|1", 0}, {"b.jpg|2", 1}, {"c.jpg|3", 2}}});
        memory.forgetLeft("a.jpg|1");
    }
    library.catalog.reset(); // as after a kill
    Catalog again(library.folder / "Library", library.clock);
    ImportMemory memory(again);
    auto left = memory.unfinished();
    EXPECT_EQ(left.target, "/to/|{seq}");
    EXPECT_EQ(left.shots, 3U);
    EXPECT_EQ(left.left, (std::unordered_map<std::string, std::size_t>{{"b.jpg|2", 1}, {"c.jpg|3", 2}}));

    memory.begin({"/elsewhere|{name}", 1, {{"d.jpg|4", 0}}});
    left = memory.unfinished();
    EXPECT_EQ(left.target, "/elsewhere|{name}");
    EXPECT_EQ(left.left, (std::unordered_map<std::string, std::size_t>{{"d.jpg|4", 0}}));
    memory.forgetLeft("d.jpg|4");
    EXPECT_TRUE(memory.unfinished().left.empty());
}

} // namespace korvo
