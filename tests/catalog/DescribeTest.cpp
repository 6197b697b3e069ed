// Describing several photos at once: what they have in common, keywords, and completing them.

#include "catalog/KeywordList.h"
#include "catalog/store/KeywordCompletion.h"
#include "catalog/store/LibraryActions.h"
#include "catalog/store/LibraryStore.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

namespace korvo {

namespace {

CommonMetadata commonOf(const std::vector<PhotoMetadata>& all)
{
    CommonMetadata common;
    for (const auto& metadata : all)
        common.add(metadata);
    return common;
}

PhotoMetadata keywords(const char* text)
{
    return {.keywords = text};
}

} // namespace

TEST(CommonMetadata, tellsTextsThatDifferFromThoseThatAllHave)
{
    const auto common
        = commonOf({{.title = "Bridge", .creator = "Ann"}, {.title = "Bridge"}, {.title = "Bridge"}});
    EXPECT_EQ(common.text(0), SharedText("Bridge"));
    EXPECT_EQ(common.text(1), SharedText()) << "empty everywhere is no difference";
    EXPECT_EQ(common.text(3), std::nullopt) << "one has a creator";
    EXPECT_FALSE(common.keywordsDiffer());
}

TEST(CommonMetadata, keywordsInCommonAreThoseOfAllPhotos)
{
    struct Case {
        std::vector<PhotoMetadata> photos;
        const char* common;
        bool differ;
    };
    for (const auto& [photos, common, differ] : {
             Case{{keywords("a, b"), keywords("a, b")}, "a, b", false},
             {{keywords("a, b"), keywords("b, c"), keywords("b, c")}, "b", true},
             {{keywords("b"), keywords("a, b"), keywords("b")}, "b", true},
             {{keywords("a"), keywords("")}, "", true},
             {{keywords(""), keywords("a"), keywords("a")}, "", true},
         }) {
        const auto found = commonOf(photos);
        EXPECT_EQ(found.text(keywordsField), SharedText(common));
        EXPECT_EQ(found.keywordsDiffer(), differ) << common;
    }
}

TEST(KeywordList, isCutAtCommasTrimmedAndNeverEmpty)
{
    EXPECT_EQ(splitKeywords(" a,b ,, c d ,"), (std::vector<std::string>{"a", "b", "c d"}));
    EXPECT_EQ(splitKeywords(""), std::vector<std::string>{});
    EXPECT_EQ(joinKeywords({"a", "c d"}), "a, c d");
}

TEST(KeywordEdit, isWhatWasAddedAndTakenAway)
{
    const auto edit = keywordEdit("a, b", "b,c ,, c, d");
    EXPECT_EQ(edit.appliedTo("x, a, d"), "x, d, c");
    EXPECT_EQ(edit.appliedTo(""), "c, d");
    EXPECT_TRUE(keywordEdit("a, b", " b,a").empty());
    EXPECT_EQ(tidyKeywordText(" a,b ,, a"), "a, b");
}

TEST(LibraryStore, describesManyPhotosInOneStepAndOnlyInWhatWasTouched)
{
    TestLibrary library;
    const auto a = library.photo("a.jpg", {.title = "A", .keywords = "sea, sky"});
    const auto b = library.photo("b.jpg", {.title = "B", .keywords = "sky"});
    const auto c = library.photo("c.jpg");
    ManualMainThread main;
    LibraryStore store(main, std::move(library.catalog));
    const auto item = [&](PhotoID id) { return *store.list().find(id); };
    const std::vector all{a, b, c};
    editKeywords(store, all, keywordEdit("sky", "night"));
    EXPECT_EQ(item(a).metadata.keywords, "sea, night");
    EXPECT_EQ(item(b).metadata.keywords, "night");
    EXPECT_EQ(item(c).metadata.keywords, "night");
    EXPECT_EQ(store.undoTitle(), "Change Keywords");
    setMetadataField(store, all, 3, "Ann");
    EXPECT_EQ(item(b).metadata.creator, "Ann");
    EXPECT_EQ(item(b).metadata.title, "B");
    EXPECT_TRUE(item(c).dirty);
    store.undo();
    store.undo();
    EXPECT_EQ(item(a).metadata.keywords, "sea, sky");
    EXPECT_EQ(item(b).metadata.creator, "");
    EXPECT_FALSE(store.undoTitle());
}

TEST(KeywordCompletion, completesTheEntryBeforeTheCursor)
{
    struct Case {
        std::string list;
        std::size_t cursor;
        std::string typed, completed;
        std::size_t place;
    };
    for (const auto& [list, cursor, typed, expected, place] : {
             Case{"", 0, "", "Bridge, ", 8},
             {"br", 2, "br", "Bridge, ", 8},
             {"sea, br", 7, "br", "sea, Bridge, ", 13},
             {"br, sea", 2, "br", "Bridge, sea", 6},
             {"sea,br,sky", 6, "br", "sea,Bridge,sky", 10},
             {"sea, bridges", 7, "br", "sea, Bridge, ", 13},
         }) {
        EXPECT_EQ(typedKeyword(list, cursor).text, typed) << list;
        const auto result = completed(list, cursor, "Bridge");
        EXPECT_EQ(result.list, expected) << list;
        EXPECT_EQ(result.cursor, place) << list;
    }
}

TEST(KeywordCompletion, suggestsWhatTheLibraryKnows)
{
    TestLibrary library;
    library.photo("a.jpg", {.keywords = "Bridge, Old bridge, sea"});
    library.photo("b.jpg", {.keywords = "sea, Übersee"});
    library.catalog->createKeyword("Brücke", std::nullopt);
    const auto known = libraryKeywords(*library.catalog);
    using Texts = std::vector<std::string>;
    EXPECT_EQ(known, (Texts{"Bridge", "Brücke", "Old bridge", "sea", "Übersee"}));
    EXPECT_EQ(suggestions(known, "BR", 2, 9), (Texts{"Bridge", "Brücke", "Old bridge"}));
    EXPECT_EQ(suggestions(known, "BR", 2, 2), (Texts{"Bridge", "Brücke"}));
    EXPECT_EQ(suggestions(known, "Bridge, br", 10, 9), (Texts{"Brücke", "Old bridge"})) << "one is there";
    EXPECT_EQ(suggestions(known, "übe", 4, 9), Texts{"Übersee"});
    EXPECT_EQ(suggestions(known, "sea, ", 5, 9), Texts());
}

} // namespace korvo
