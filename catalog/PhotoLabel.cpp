#include "catalog/PhotoLabel.h"

#include "base/Text.h"

#include <cmath>

namespace korvo {

std::optional<PhotoLabel> labelNamed(std::string_view text)
{
    text = trimmed(text);
    for (std::size_t label = 0; label < photoLabelNames.size(); ++label)
        if (compareNoCase(text, photoLabelNames[label]) == 0)
            return static_cast<PhotoLabel>(label);
    if (compareNoCase(text, "none") == 0)
        return PhotoLabel::none;
    const auto number = typedNumber(text);
    const bool isLabel = number && *number == std::floor(*number) && std::abs(*number) < 8;
    return isLabel ? photoLabel(static_cast<std::int64_t>(*number)) : std::nullopt;
}

} // namespace korvo
