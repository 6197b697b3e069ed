#include "base/FoldedText.h"

#include "base/Text.h"

#include <gtest/gtest.h>

namespace korvo {

TEST(FoldedText, isEqualForTextsThatDifferInCaseOrCompositionOnly)
{
    struct Case {
        const char* a;
        const char* b;
        bool equal;
    };
    for (const auto& [a, b, equal] : {
             Case{"IMG_1.JPG", "img_1.jpg", true},
             {"ÄRGER", "ärger", true},
             {"\u00C4rger", "A\u0308RGER", true}, // composed and decomposed
             {"İstanbul", "i\u0307STANBUL", true},
             {"ΟΔΟΣ", "οδος", true}, // the sigma at a word's end
             {"Straße", "STRASSE", true},
             {"\u1E9B\u0323", "\u017F\u0323\u0307", true}, // marks in another order
             {"café", "cafe", false},
             {"", "a", false},
         })
        EXPECT_EQ(folded(a) == folded(b), equal) << a << " and " << b;
    EXPECT_EQ(folded("café").find("cafe"), std::string::npos) << "an accent is a part of its letter";
    EXPECT_EQ(folded("a\xFF"), "a\uFFFD");
}

TEST(FoldedText, aFolderTakesTextsOfAnyLengthOneAfterTheOther)
{
    TextFolder folder;
    for (const std::size_t length : {0, 1, 7, 1000, 3, 5000, 2}) {
        std::string wide;
        for (std::size_t i = 0; i < length; ++i)
            wide += "\u0390"; // folds to three characters that compose again
        EXPECT_EQ(folder.fold(wide), wide);
        EXPECT_EQ(folder.fold(std::string(length, 'X')), std::string(length, 'x'));
        EXPECT_TRUE(folder.lastWasAscii());
    }
}

TEST(FoldedText, foldsEachCharacterAlikeWhereverItStands)
{
    std::string all;
    for (char c = 0; c < 127; ++c)
        all += c;
    TextFolder folder;
    for (std::size_t length = 0; length <= 17; ++length)
        for (std::size_t start = 0; start + length <= all.size(); ++start) {
            auto text = all.substr(start, length);
            auto lower = asciiLower(text);
            ASSERT_EQ(folder.fold(text), lower);
            ASSERT_TRUE(folder.lastWasAscii());
            text.insert(start % (length + 1), "É");
            lower.insert(start % (length + 1), "é");
            ASSERT_EQ(folder.fold(text), lower);
            ASSERT_FALSE(folder.lastWasAscii());
        }
}

} // namespace korvo
