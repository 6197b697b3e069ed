#pragma once

#include "catalog/PhotoMetadata.h"

#include <optional>

namespace korvo {

/// New values for some of the descriptive fields; those not set stay as they are.
struct MetadataChange {
    std::optional<SharedText> altText;
    std::optional<SharedText> title;
    std::optional<SharedText> caption;
    std::optional<SharedText> keywords;
    std::optional<SharedText> creator;
    std::optional<SharedText> copyright;

    PhotoMetadata appliedTo(const PhotoMetadata& old) const
    {
        return {altText.value_or(old.altText), title.value_or(old.title), caption.value_or(old.caption),
            keywords.value_or(old.keywords), creator.value_or(old.creator),
            copyright.value_or(old.copyright)};
    }
};

} // namespace korvo
