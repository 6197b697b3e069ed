#pragma once

#include "edits/BasicPlan.h"

#include <cstddef>
#include <cstdint>

namespace korvo {

/// One row of linear colours, a plane a channel. Rows that kernels work on may be read and written up to
/// `rowSlack` floats behind their end.
struct ColorRow {
    float* red;
    float* green;
    float* blue;
};
constexpr std::size_t rowSlack = 64; ///< no vector has more lanes

/// The inner loops of the fused pass, as compiled for one instruction set.
struct RowKernels {
    /// RGBA bytes to linear, alpha passed over. Returns whether all of them are opaque.
    bool (*decode)(const std::uint8_t* rgba, std::size_t count, const ColorRow& row);
    /// What is done to each pixel by itself, in place. With sharpening also writes the square root of the
    /// luminance to `root`.
    void (*adjust)(const BasicPlan& plan, std::size_t count, const ColorRow& row, float* root);
    /// Blurs across seven rows of roots, the fourth being the row itself.
    void (*blurAcross)(
        const BasicPlan& plan, const float* const (&roots)[7], std::size_t count, float* blurred);
    /// Blurs along `blurred`, which has three floats of its row's neighbours at both ends, and sharpens the
    /// row by it.
    void (*sharpen)(const BasicPlan& plan, const float* root, const float* blurred, std::size_t count,
        const ColorRow& row);
    /// Linear to RGB bytes, alpha from `source`, a row of RGBA bytes too. Returns whether all of them are
    /// opaque; the colours are not premultiplied.
    bool (*encode)(const ColorRow& row, const std::uint8_t* source, std::size_t count, std::uint8_t* rgba);
};

/// The kernels for this processor.
const RowKernels& rowKernels();

} // namespace korvo
