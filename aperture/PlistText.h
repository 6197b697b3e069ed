#pragma once

#include "base/Bytes.h"
#include "base/SharedText.h"

namespace korvo {

/// Text from UTF-8; each invalid sequence becomes one U+FFFD.
SharedText textFromUtf8(Bytes bytes);

/// Text from UTF-16 with the high byte of each unit first; unpaired surrogates become U+FFFD.
SharedText textFromUtf16(Bytes bytes);

} // namespace korvo
