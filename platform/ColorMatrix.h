#pragma once

#include <array>
#include <cstddef>

namespace korvo {

/// Rows of a 3x3 matrix that is applied to (R, G, B) columns.
using ColorMatrix = std::array<double, 9>;
using Color = std::array<double, 3>;

constexpr ColorMatrix identityMatrix{1, 0, 0, 0, 1, 0, 0, 0, 1};

/// How much each channel of linear sRGB adds to the luminance Y.
constexpr Color luminanceWeights{0.2126, 0.7152, 0.0722};

constexpr Color operator*(const ColorMatrix& m, const Color& c)
{
    return {m[0] * c[0] + m[1] * c[1] + m[2] * c[2], m[3] * c[0] + m[4] * c[1] + m[5] * c[2],
        m[6] * c[0] + m[7] * c[1] + m[8] * c[2]};
}

/// The matrix that applies `first`, then `second`.
constexpr ColorMatrix operator*(const ColorMatrix& second, const ColorMatrix& first)
{
    ColorMatrix result{};
    for (std::size_t i = 0; i < 9; ++i)
        for (std::size_t k = 0; k < 3; ++k)
            result[i] += second[i / 3 * 3 + k] * first[k * 3 + i % 3];
    return result;
}

constexpr ColorMatrix diagonal(const Color& c)
{
    return {c[0], 0, 0, 0, c[1], 0, 0, 0, c[2]};
}

constexpr ColorMatrix inverse(const ColorMatrix& m)
{
    const ColorMatrix adjugate{m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8],
        m[1] * m[5] - m[2] * m[4], m[5] * m[6] - m[3] * m[8], m[0] * m[8] - m[2] * m[6],
        m[2] * m[3] - m[0] * m[5], m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7],
        m[0] * m[4] - m[1] * m[3]};
    const double determinant = m[0] * adjugate[0] + m[1] * adjugate[3] + m[2] * adjugate[6];
    ColorMatrix result{};
    for (std::size_t i = 0; i < 9; ++i)
        result[i] = adjugate[i] / determinant;
    return result;
}

} // namespace korvo
