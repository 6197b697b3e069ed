#pragma once

#include "metadata/Coordinate.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace korvo {

/// Size of a picture as it is stored, before any rotation.
struct PixelSize {
    std::uint64_t width = 0, height = 0;

    bool empty() const { return width == 0 || height == 0; }
    friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// The camera facts of a file as they were written, in the terms of Exif 2.32. The texts lie in the file's
/// window.
struct ExifTags {
    std::string_view make, model, lens, artist;
    std::string_view copyright; ///< with its NULs: the photographer's notice, NUL, the editor's notice, NUL
    std::string_view dateTimeOriginal; ///< "yyyy:MM:dd HH:mm:ss"
    std::string_view offsetTimeOriginal; ///< "+HH:mm" or "-HH:mm"
    std::optional<double> exposureTime, fNumber, focalLength;
    std::optional<std::uint32_t> iso;
    std::optional<Coordinate> coordinate;
    PixelSize size; ///< as the EXIF directory tells it
};

} // namespace korvo
