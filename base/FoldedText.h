#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// Folds texts for comparison: two texts fold to the same if they differ in nothing but case and in whether
/// accents are composed (canonical caseless matching, Unicode 15 D145, composed at the end so that a letter
/// is not found in the accented one). Reuses its memory: after a few calls it allocates nothing.
class TextFolder {
public:
    /// The folded text, valid until the next call. Bytes that are not UTF-8 become U+FFFD.
    std::string_view fold(std::string_view text);

    /// Whether the last text was all ASCII, which is some twenty times faster to fold.
    bool lastWasAscii() const { return lastWasAscii_; }

private:
    std::string_view foldUnicode(std::string_view text);

    bool lastWasAscii_ = true;
    std::string result_;
    std::vector<char16_t> from_;
    std::vector<char16_t> to_;
};

/// The text in lower case, letter for letter and in no country's way: "ß" stays, and accents stay as composed
/// as they are. Bytes that are not UTF-8 become U+FFFD.
std::string lowered(std::string_view text);

/// The folded text, for what is folded once.
std::string folded(std::string_view text);

} // namespace korvo
