#include "catalog/LibrarySource.h"

#include "base/Text.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace korvo {

TEST(LibrarySource, eachTextThatHelpNamesIsReadAndWrittenAlike)
{
    const auto names = sourceNames();
    std::size_t numbered = 0;
    for (const auto part : split(names, ',')) {
        std::string text(trimmed(part));
        const bool hasNumber = text.ends_with("ID");
        if (hasNumber)
            text.replace(text.size() - 2, 2, std::to_string(++numbered));
        const auto source = parseSource(text);
        EXPECT_EQ(sourceText(source), text);
        EXPECT_EQ(source ? source->id : 0, hasNumber ? static_cast<std::int64_t>(numbered) : 0) << text;
    }
    EXPECT_EQ(numbered, 6U);
}

TEST(LibrarySource, otherTextsAreErrorsThatNameTheChoices)
{
    for (const char* text : {"", "All", "album", "album:", "album:x", "album:3x", "album: 3", "album:1.5",
             "album:99999999999999999999", "flagged:1", "flagged "})
        try {
            parseSource(text);
            ADD_FAILURE() << text;
        } catch (const std::invalid_argument& error) {
            EXPECT_NE(std::string(error.what()).find(sourceNames()), std::string::npos) << text;
        }
}

} // namespace korvo
