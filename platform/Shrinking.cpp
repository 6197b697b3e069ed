#include "platform/Shrinking.h"

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

constexpr double support = 2;

/// The Catmull-Rom cubic (Keys 1981 with a = -1/2).
double kernel(double x)
{
    x = std::abs(x);
    if (x < 1)
        return (1.5 * x - 2.5) * x * x + 1;
    return x < support ? ((-0.5 * x + 2.5) * x - 4) * x + 2 : 0;
}

std::uint8_t clampedByte(float value)
{
    return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 255.0F) + 0.5F);
}

} // namespace

std::pair<int, int> shrunkSize(int width, int height, int size)
{
    const int longer = std::max(width, height);
    if (size <= 0 || size >= longer)
        return {width, height};
    const auto shrunk
        = [&](int side) { return static_cast<int>(std::max(1L, std::lround(double(side) * size / longer))); };
    return {shrunk(width), shrunk(height)};
}

std::vector<Shrinking::Weights> Shrinking::weights(int oldLength, int newLength)
{
    const double step = double(oldLength) / newLength, radius = support * step;
    std::vector<Weights> all(static_cast<std::size_t>(newLength));
    for (std::size_t i = 0; i < all.size(); ++i) {
        const double centre = (double(i) + 0.5) * step - 0.5;
        const int first = std::max(0, static_cast<int>(std::ceil(centre - radius)));
        const int last = std::min(oldLength - 1, static_cast<int>(std::floor(centre + radius)));
        double sum = 0;
        for (int at = first; at <= last; ++at)
            sum += kernel((at - centre) / step);
        all[i].first = first;
        for (int at = first; at <= last; ++at)
            all[i].each.push_back(static_cast<float>(kernel((at - centre) / step) / sum));
    }
    return all;
}

Shrinking::Shrinking(int width, int height, int newWidth, int newHeight)
    : newWidth_(newWidth), across_(weights(width, newWidth)), down_(weights(height, newHeight)),
      row_(static_cast<std::size_t>(newWidth) * channels)
{
    // Each old row belongs to the new rows whose centres lie within the filter's radius.
    const auto underWay = static_cast<std::size_t>(2 * support) + 2;
    sums_.assign(std::min(underWay, down_.size()), std::vector<float>(row_.size()));
}

void Shrinking::shrinkAcross(const float* row)
{
    float* to = row_.data();
    for (const auto& [first, each] : across_) {
        float sum[channels]{};
        const float* from = row + static_cast<std::ptrdiff_t>(first) * channels;
        for (const float weight : each)
            for (float& channel : sum)
                channel += weight * *from++;
        to = std::copy_n(sum, channels, to);
    }
}

void Shrinking::take(const float* row, const std::function<void(const float*)>& emit)
{
    shrinkAcross(row);
    const int newRows = static_cast<int>(down_.size());
    for (int at = finished_; at < newRows; ++at) {
        const auto& [first, each] = down_[static_cast<std::size_t>(at)];
        if (next_ < first)
            break;
        if (const auto index = static_cast<std::size_t>(next_ - first); index < each.size()) {
            auto& sum = sumOf(at);
            if (index == 0)
                std::fill(sum.begin(), sum.end(), 0.0F);
            for (std::size_t i = 0; i < sum.size(); ++i)
                sum[i] += each[index] * row_[i];
        }
    }
    ++next_;
    while (finished_ < newRows) {
        const auto& [first, each] = down_[static_cast<std::size_t>(finished_)];
        if (next_ < first + static_cast<int>(each.size()))
            break;
        emit(sumOf(finished_++).data());
    }
}

std::uint8_t* Shrinking::store(const float* row, int width, std::uint8_t* rgba)
{
    for (int x = 0; x < width; ++x, row += 4, rgba += 4) {
        rgba[3] = clampedByte(row[3]);
        for (int channel = 0; channel < 3; ++channel)
            rgba[channel] = std::min(clampedByte(row[channel]), rgba[3]);
    }
    return rgba;
}

Bitmap shrunk(Bitmap image, int size)
{
    const auto [width, height] = shrunkSize(image.width, image.height, size);
    if (width == image.width && height == image.height)
        return image;
    Bitmap result(width, height);
    Shrinking shrinking(image.width, image.height, width, height);
    std::vector<float> row(image.rowBytes());
    std::uint8_t* to = result.bytes.data();
    for (int y = 0; y < image.height; ++y) {
        std::copy_n(image.row(y), row.size(), row.begin());
        shrinking.take(
            row.data(), [&](const float* numbers) { to = Shrinking::store(numbers, result.width, to); });
    }
    return result;
}

} // namespace korvo
