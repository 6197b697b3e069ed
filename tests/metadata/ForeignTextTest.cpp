#include "metadata/ForeignText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace korvo {

TEST(ForeignText, isUtf8WhereItCanBeAndElseWindowsLatin)
{
    struct Case {
        std::string bytes, text;
    };
    for (const auto& [bytes, text] : {
             Case{"", ""}, {"plain", "plain"}, {"caf\xC3\xA9", "café"}, // well-formed UTF-8 stays
             {"caf\xE9", "café"}, // Latin-1
             {"\x80 9 \x96 \x93q\x94", "€ 9 – “q”"}, // what Windows puts where Latin-1 has controls
             {"\xF0\x9F\x93\xB7", "📷"}, {"\xF0\x9F\x93", "ðŸ“"}, // cut off within a character
             {"\xC0\xAF", "À¯"}, // longer than it need be, which is no UTF-8
             {"\xED\xA0\x80", "í\u00A0€"}, // a surrogate by itself
         })
        EXPECT_EQ(fromUnknownEncoding(bytes), text);
    EXPECT_EQ(fromWindowsLatin("caf\xC3\xA9"), "cafÃ©") << "where it is known to be Latin";
}

TEST(ForeignText, everyByteBecomesACharacterOfItsOwn)
{
    std::string all;
    for (int byte = 1; byte < 256; ++byte)
        all += static_cast<char>(byte);
    const auto text = fromWindowsLatin(all);
    const auto characters
        = std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; });
    EXPECT_EQ(characters, 255);
    EXPECT_EQ(fromUnknownEncoding(text), text) << "and what comes out is UTF-8";
}

} // namespace korvo
