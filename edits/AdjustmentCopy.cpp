#include "edits/AdjustmentCopy.h"

namespace korvo {

PhotoEdits withAdjustmentsOf(const PhotoEdits& source, const PhotoEdits& target)
{
    using E = PhotoEdits;
    PhotoEdits result = source;
    const auto keep = [&](auto... fields) { ((result.*fields = target.*fields), ...); };
    keep(&E::rotation, &E::straighten, &E::crop, &E::flipHorizontal, &E::flipVertical, &E::retouches,
        &E::redEyes, &E::brushes, &E::rawOrientation, &E::apertureMatch);
    return result;
}

PhotoEdits withoutAdjustments(const PhotoEdits& edits)
{
    return withAdjustmentsOf({}, edits);
}

} // namespace korvo
