#pragma once

#include <string>
#include <string_view>

namespace korvo {

/// UTF-8 of text in Windows' extension of Latin-1 (code page 1252).
std::string fromWindowsLatin(std::string_view text);

/// UTF-8 of text whose encoding nobody noted: the text itself when it is well-formed UTF-8, else taken as
/// Latin.
std::string fromUnknownEncoding(std::string_view text);

} // namespace korvo
