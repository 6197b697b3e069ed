#pragma once

#include "edits/BasicPlan.h"
#include "platform/Image.h"

// The first stage of a render: the basic adjustments, in one pass over the image, on all processors. What
// comes out does not depend on how many there are.
namespace korvo {

/// Writes the adjusted image to `result`, whose storage is used again when it has the size already. Alpha is
/// copied. A plan that does nothing copies the image, and encodes the linear one.
void runBasicStage(const BasicPlan& plan, const Bitmap& image, Bitmap& result);
void runBasicStage(const BasicPlan& plan, const LinearImage& image, LinearImage& result);
/// Adjusts and encodes in one pass.
void runBasicStage(const BasicPlan& plan, const LinearImage& image, Bitmap& result);

} // namespace korvo
