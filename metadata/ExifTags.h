#pragma once

#include "metadata/Coordinate.h"
#include "metadata/MetadataBlocks.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace korvo {

/// The camera facts of a file as they were written (Exif 2.32); the texts lie in the file's window.
struct ExifTags {
    std::string_view make, model, lens, dateTimeOriginal, offsetTimeOriginal, artist;
    std::string_view copyright; ///< with its NULs: the photographer's notice, NUL, the editor's notice, NUL
    std::optional<double> exposureTime, fNumber, focalLength;
    std::optional<std::uint32_t> iso;
    std::optional<Coordinate> coordinate;
};

/// Reads the EXIF blocks of a file. Blocks that are damaged give what can be read of them.
ExifTags readExifTags(FileWindow& file, const MetadataBlocks& blocks);

} // namespace korvo
