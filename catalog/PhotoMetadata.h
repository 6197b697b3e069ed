#pragma once

#include "base/Record.h"
#include "base/SharedText.h"

namespace korvo {

/// The descriptive fields of a photo. A master and all its versions share one set.
struct PhotoMetadata {
    SharedText altText;
    SharedText title;
    SharedText caption;
    SharedText keywords; // as one text, joined with ", "
    SharedText creator;
    SharedText copyright;
};

KORVO_RECORD(PhotoMetadata, altText, title, caption, keywords, creator, copyright)

} // namespace korvo
