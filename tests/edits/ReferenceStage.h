#pragma once

#include "edits/BasicFilters.h"
#include "platform/Image.h"

namespace korvo {

/// The basic adjustments written for reading: one filter after the other over the whole image, in double,
/// without merging, tiles or approximations. What the fused pass is compared with.
LinearImage referenceStage(const std::vector<BasicFilter>& filters, LinearImage image);

double luminance(const std::array<double, 3>& color);

/// An image of one colour a pixel, and its colours back.
LinearImage imageOf(const std::vector<std::array<double, 3>>& colors, int width);
std::array<double, 3> colorAt(const LinearImage& image, std::size_t pixel);

} // namespace korvo
