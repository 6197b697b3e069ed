#pragma once

#include "catalog/Catalog.h"
#include "metadata/Coordinate.h"

#include <filesystem>
#include <optional>

namespace korvo {

/// What the catalog takes from a file, read in one look at its head.
struct FileContents {
    PhotoMetadata metadata;
    CameraData camera;
    std::optional<Coordinate> position;
};

/// Throws MetadataError when the file cannot be opened or read.
FileContents readContents(const std::filesystem::path& file);

/// Gives a new photo the camera facts and the position of its file.
void storeCameraFacts(Catalog& catalog, PhotoID photo, const FileContents& contents);

} // namespace korvo
