#include "catalog/RenameKeyword.h"

#include "catalog/Versions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace korvo {

TEST(RenameKeyword, changesWholeEntriesInPhotosAndVersionsWhichThenWait)
{
    struct Case {
        std::string before, after;
    };
    const std::vector<Case> cases
        = {{"ape", "gorilla"}, {"tree, ape", "tree, gorilla"}, {"ape, gorilla, tree", "gorilla, tree"},
            {"apes", "apes"}, {"great ape", "great ape"}, {"Ape", "Ape"}, {"", ""}};
    TestLibrary library;
    for (const auto& [before, after] : cases)
        library.photo(std::to_string(library.names().size()) + ".jpg", {.keywords = before});
    const auto version = createVersion(*library.catalog, 2, std::nullopt, std::nullopt, 1);
    const auto id = library.catalog->createKeyword("ape", std::nullopt);
    renameKeyword(*library.catalog, id, "gorilla");

    EXPECT_EQ(library.catalog->keywords().front().name, "gorilla");
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const auto item = library.item(static_cast<PhotoID>(i + 1));
        EXPECT_EQ(item.metadata.keywords.view(), cases[i].after);
        EXPECT_EQ(item.dirty, cases[i].before != cases[i].after) << cases[i].before;
    }
    EXPECT_EQ(library.item(version).metadata.keywords.view(), "tree, gorilla");
    EXPECT_FALSE(library.item(version).dirty) << "its file is its master's";
}

TEST(RenameKeyword, refusesWhatIsNoKeywordAndChangesNothing)
{
    TestLibrary library;
    library.photo("a.jpg", {.keywords = "ape"});
    const auto id = library.catalog->createKeyword("ape", std::nullopt);
    const auto before = contentOf(*library.catalog);
    EXPECT_THROW(renameKeyword(*library.catalog, id, " "), std::invalid_argument);
    EXPECT_THROW(renameKeyword(*library.catalog, id, "a, b"), std::invalid_argument);
    EXPECT_THROW(renameKeyword(*library.catalog, id + 1, "b"), NotFoundError);
    library.catalog->database().exec(
        "CREATE TRIGGER full BEFORE UPDATE OF keywords ON photos BEGIN SELECT RAISE(ABORT, 'no room'); END");
    EXPECT_THROW(renameKeyword(*library.catalog, id, "b"), DatabaseError);
    EXPECT_EQ(contentOf(*library.catalog), before);
}

} // namespace korvo
