#pragma once

#include "platform/Image.h"

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace korvo {

/// A picture's size when its longer side is to have no more than `size` pixels; its own when `size` is 0 or
/// not smaller. No side becomes 0.
std::pair<int, int> shrunkSize(int width, int height, int size);

/// The picture, with its longer side no more than `size`; itself when it is no larger or `size` is 0.
Bitmap shrunk(Bitmap image, int size);

/// Shrinks a picture whose rows come one after the other, by a bicubic filter (Catmull-Rom) as wide as the
/// step between the new pixels, and keeps no more rows than that needs.
class Shrinking {
public:
    static constexpr int channels = 4;

    Shrinking(int width, int height, int newWidth, int newHeight);

    /// Takes the next row, of `channels` numbers a pixel, and calls `emit` with each new row that it
    /// completes.
    void take(const float* row, const std::function<void(const float*)>& emit);

    /// Writes a row of new numbers, from 0 to 255 and beyond, as a bitmap's; returns where the next one goes.
    static std::uint8_t* store(const float* row, int width, std::uint8_t* rgba);

private:
    /// The part that the old pixels from `first` on have in one new pixel.
    struct Weights {
        int first = 0;
        std::vector<float> each;
    };
    static std::vector<Weights> weights(int oldLength, int newLength);

    void shrinkAcross(const float* row);
    std::vector<float>& sumOf(int newRow) { return sums_[static_cast<std::size_t>(newRow) % sums_.size()]; }

    int newWidth_;
    std::vector<Weights> across_, down_;
    std::vector<float> row_; ///< shrunk across
    std::vector<std::vector<float>> sums_; ///< of the new rows that are under way
    int next_ = 0; ///< old row
    int finished_ = 0; ///< new rows
};

} // namespace korvo
