#include "base/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace korvo {

TEST(Text, whatIsShownGivesTerminalsNoOrders)
{
    EXPECT_EQ(printable("a\x1B[2Jb\n\t\x7F\u009Bc"), "a\\u001B[2Jb\\n\\t\\u007F\\u009Bc");
    EXPECT_EQ(printable("Jürgen 桜\u00A0\xFF\xC2"), "Jürgen 桜\u00A0\xFF\xC2");
}

TEST(Text, sizesAndSentencesAreForPeople)
{
    EXPECT_EQ(sizeText(999), "999 bytes");
    EXPECT_EQ(sizeText(1234), "1.2 kB");
    EXPECT_EQ(sizeText(999'950), "1.0 MB");
    EXPECT_EQ(sizeText(24'316'000), "24.3 MB");
    EXPECT_EQ(counted(999, "photo") + ", " + grouped(1000) + ", " + grouped(1'234'567),
        "999 photos, 1,000, 1,234,567");
    EXPECT_EQ(asSentence("no album with the id 3"), "No album with the id 3.");
    EXPECT_EQ(asSentence("Choose another?"), "Choose another?");
}

TEST(Text, blankIsWhatShowsNothing)
{
    for (const char* blank : {"", " \t\n", "\u00A0", "\u3000 \u2003"})
        EXPECT_TRUE(isBlank(blank)) << blank;
    for (const char* text : {" a ", ".", "\u3042", "\xFF", "\xE3\x80"})
        EXPECT_FALSE(isBlank(text)) << text;
}

TEST(Text, repairsOnlyWhatIsNotUtf8)
{
    struct Case {
        std::string_view text, repaired;
    };
    for (const auto& [text, repaired] : {
             Case{"Jürgen 桜 🌸", "Jürgen 桜 🌸"},
             {"a\xFF"
              "b",
                 "a\uFFFDb"},
             {"\xC0\xAF", "\uFFFD\uFFFD"}, // an overlong slash
             {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"}, // a surrogate
             {"\xE6\xA1", "\uFFFD\uFFFD"}, // cut off
             {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"}, // beyond U+10FFFF
         }) {
        EXPECT_EQ(repairedUtf8(text), repaired);
        EXPECT_EQ(isUtf8(text), text == repaired);
    }
}

TEST(Text, aWholeNumberIsAllOfItsText)
{
    EXPECT_EQ(wholeNumber<std::int64_t>("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(wholeNumber<unsigned>("4294967295"), 4294967295U);
    for (const char* other : {"", " 1", "1 ", "+1", "1.0", "0x1", "4294967296", "-1"})
        EXPECT_FALSE(wholeNumber<unsigned>(other)) << other;
}

TEST(Text, comparesAsTheCatalogOrders)
{
    EXPECT_EQ(compareNoCase("IMG_1.jpg", "img_1.JPG"), 0);
    EXPECT_LT(compareNoCase("a", "B"), 0);
    EXPECT_LT(compareNoCase("a", "aa"), 0);
    EXPECT_LT(compareNoCase("z", "Ä"), 0) << "bytes beyond ASCII come last";
    EXPECT_NE(compareNoCase("ä", "Ä"), 0);
}

} // namespace korvo
