#pragma once

#include "catalog/PhotoItem.h"
#include "metadata/PhotoExifInfo.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace korvo {

// What the inspector says of a photo beside its descriptive fields.

/// "Canon EOS R5 · RF50mm F1.8 STM"; empty when neither is known.
std::string cameraLine(const PhotoItem& item);
/// "1/250 s · ƒ/2.8 · 50 mm · ISO 400": what is known of it.
std::string exposureLine(const PhotoItem& item);
/// "48.13700° N, 11.57500° E"; empty without a position.
std::string positionText(const PhotoItem& item);
/// "Taken 2024-05-01 12:00:00", of a photo without a capture date "File of …"; empty without either.
std::string dateText(const PhotoItem& item);

/// Whether the file holds what the catalog says: "Not yet written into the file", and of several photos
/// "3 of 12 photos not yet written into their files"; empty when nothing waits.
std::string unwrittenText(std::size_t waiting, std::size_t photos);

/// What only the file itself says.
struct FileFacts {
    bool isMissing = false;
    std::string fault = {}; // why one that may be there cannot be looked at
    std::optional<std::uint64_t> size; // bytes
    std::optional<std::string> pixelSize; // "6000 × 4000"
};

/// Looks at the file; may take its time.
FileFacts fileFacts(const std::filesystem::path& file);
/// "6000 × 4000 · 12.3 MB" of a file that is there, or its fault.
std::string fileLine(const FileFacts& facts);

} // namespace korvo
