#pragma once

#include "platform/PixelMemory.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

/// Images in memory. Plain values: who shares one between threads or views holds a shared_ptr to a const one.
namespace korvo {

/// Leaves new numbers as the memory comes: 24 million pixels that are about to be written are not zeroed
/// first.
template <typename T>
struct PixelAllocator {
    using value_type = T;

    PixelAllocator() = default;
    template <typename U>
    PixelAllocator(const PixelAllocator<U>&)
    { }

    T* allocate(std::size_t count)
    {
        if (count > static_cast<std::size_t>(-1) / sizeof(T))
            throw std::bad_array_new_length();
        return static_cast<T*>(allocatePixels(count * sizeof(T)));
    }
    void deallocate(T* memory, std::size_t) noexcept { releasePixels(memory); }

    template <typename U>
    void construct(U* place) noexcept
    {
        ::new (static_cast<void*>(place)) U;
    }
    template <typename U, typename... Arguments>
    void construct(U* place, Arguments&&... arguments)
    {
        ::new (static_cast<void*>(place)) U(std::forward<Arguments>(arguments)...);
    }

    bool operator==(const PixelAllocator&) const = default;
};

template <typename T>
using PixelBuffer = std::vector<T, PixelAllocator<T>>;

/// 8 bits a channel, sRGB, for the screen, previews and files. A pixel is four bytes, R G B A, the colours
/// premultiplied by alpha as encoded (never above it); opaque pixels have alpha 255. Rows from the top,
/// without gaps. A new one's pixels are not set.
struct Bitmap {
    int width = 0;
    int height = 0;
    PixelBuffer<std::uint8_t> bytes;

    Bitmap() = default;
    Bitmap(int pixelsWide, int pixelsHigh)
        : width(pixelsWide), height(pixelsHigh), bytes(rowBytes() * static_cast<std::size_t>(pixelsHigh))
    { }

    std::size_t rowBytes() const { return 4 * static_cast<std::size_t>(width); }
    std::uint8_t* row(int y) { return bytes.data() + rowBytes() * static_cast<std::size_t>(y); }
    const std::uint8_t* row(int y) const { return bytes.data() + rowBytes() * static_cast<std::size_t>(y); }

    bool operator==(const Bitmap&) const = default;
};

/// Whether every pixel is opaque.
inline bool isOpaque(const Bitmap& image)
{
    for (std::size_t i = 3; i < image.bytes.size(); i += 4)
        if (image.bytes[i] != 255)
            return false;
    return true;
}

enum class AlphaPlane { absent, present };

/// Linear light in extended sRGB: sRGB's primaries and white, 0 black, 1 diffuse white, not clamped at either
/// end. One plane a channel, rows from the top, without gaps. Alpha is straight, 0 to 1, and its plane is
/// empty when the image is opaque. A new one's pixels are not set.
struct LinearImage {
    int width = 0;
    int height = 0;
    PixelBuffer<float> red;
    PixelBuffer<float> green;
    PixelBuffer<float> blue;
    PixelBuffer<float> alpha;

    LinearImage() = default;
    LinearImage(int pixelsWide, int pixelsHigh, AlphaPlane plane = AlphaPlane::absent)
        : width(pixelsWide), height(pixelsHigh), red(pixels()), green(pixels()), blue(pixels()),
          alpha(plane == AlphaPlane::present ? pixels() : 0)
    { }

    std::size_t pixels() const { return offset(height); }
    /// Where row y begins in each plane.
    std::size_t offset(int y) const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(y); }
    bool isOpaque() const { return alpha.empty(); }

    bool operator==(const LinearImage&) const = default;
};

} // namespace korvo
