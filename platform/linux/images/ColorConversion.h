#pragma once

#include "platform/linux/images/PictureRows.h"

#include <array>
#include <lcms2.h>
#include <memory>
#include <vector>

namespace korvo {

/// Turns rows as a file stores them into sRGB: by the picture's ICC profile, or as sRGB without one. A
/// profile of three curves and a matrix is applied by tables for linear light, every other by lcms2; a
/// profile that cannot be read, or is meant for other colours, is passed over.
class ColorConversion {
public:
    enum class Target { bitmap, linear };

    ColorConversion(const PictureInfo& picture, Target target);

    /// Whether a picture without alpha is what a bitmap holds already: its rows need no conversion.
    static bool isBitmap(const PictureInfo& picture);
    /// Whether a bitmap holds all that the picture has.
    static bool fitsBitmap(const PictureInfo& picture);

    /// To a row of RGBA bytes, premultiplied. `row` may be changed.
    void toBitmap(std::uint8_t* row, std::uint8_t* rgba, int width);
    /// To a row of RGBA numbers in linear light, alpha straight. `row` may be changed.
    void toLinear(std::uint8_t* row, float* rgba, int width);

private:
    struct CloseTransform {
        void operator()(void* transform) const { cmsDeleteTransform(transform); }
    };
    template <typename Number>
    void numbersToLinear(const Number* row, float* rgba, int width) const;
    template <typename Number>
    float light(const Number* pixel, int channel) const;
    void makeTables(cmsHPROFILE profile);

    RowFormat format_;
    std::unique_ptr<void, CloseTransform> transform_;
    std::array<std::vector<float>, 3> tables_; ///< from a stored number to linear light
    std::array<float, 9> matrix_{1, 0, 0, 0, 1, 0, 0, 0, 1};
    bool hasMatrix_ = false;
    std::vector<float> colors_; ///< three a pixel, from lcms2
};

} // namespace korvo
