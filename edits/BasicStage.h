#pragma once

#include "edits/BasicPlan.h"
#include "platform/Image.h"

#include <memory>

/// The first stage of a render: the basic adjustments, in one pass over the image, on all processors. What
/// comes out does not depend on how many there are.
namespace korvo {

/// Writes the adjusted image to `result`, whose storage is used again when it has the size already. Alpha is
/// copied. A plan that does nothing copies the image, and encodes the linear one.
void runBasicStage(const BasicPlan& plan, const Bitmap& image, Bitmap& result);
void runBasicStage(const BasicPlan& plan, const LinearImage& image, LinearImage& result);
/// Adjusts and encodes in one pass.
void runBasicStage(const BasicPlan& plan, const LinearImage& image, Bitmap& result);

/// The adjusted image; the image itself when there is nothing to do.
std::shared_ptr<const Bitmap> basicStage(const BasicPlan& plan, std::shared_ptr<const Bitmap> image);
std::shared_ptr<const LinearImage> basicStage(
    const BasicPlan& plan, std::shared_ptr<const LinearImage> image);

} // namespace korvo
