#pragma once

#include "platform/Image.h"

namespace korvo::bench {

/// A yardstick: six adjustments of about the stage's kind, as plain loops over rows that the compiler
/// vectorises for the machine it runs on, with a coarse table to encode by and a sharpening of 3x3 pixels on
/// encoded values. Two threads, each with half of the image.
void plainRender(const Bitmap& image, Bitmap& result);

/// One pass of two threads over the floats: the least that any float render moves.
void copyFloats(const std::vector<float>& from, std::vector<float>& to);

} // namespace korvo::bench
