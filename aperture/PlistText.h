#pragma once

#include "base/Bytes.h"

#include <memory_resource>
#include <string_view>

namespace korvo {

/// Text from UTF-8; each invalid sequence becomes one U+FFFD. It lies in the memory.
std::string_view textFromUtf8(Bytes bytes, std::pmr::memory_resource& memory);

/// Text from UTF-16 with the high byte of each unit first; unpaired surrogates become U+FFFD.
std::string_view textFromUtf16(Bytes bytes, std::pmr::memory_resource& memory);

} // namespace korvo
