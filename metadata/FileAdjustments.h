#pragma once

#include "metadata/Coordinate.h"
#include "metadata/MetadataSave.h"

namespace korvo {

/// Moves the capture dates of photos by some seconds, in the catalog as a whole or not at all, and then in
/// their files, each of which may fail by itself. Dates that were not read yet are read first. The originals
/// inside an Aperture library keep theirs. Throws ExifToolError::Case::notFound, with nothing done, and
/// DatabaseError.
FilesWritten shiftDates(Catalog& catalog, std::span<const PhotoID> photos, double seconds,
    const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress);

/// Gives photos a position, or takes it from them, in the same manner.
FilesWritten setLocation(Catalog& catalog, std::span<const PhotoID> photos,
    const std::optional<Coordinate>& position, const ExifTool& tool, const std::stop_token& stop,
    const FileProgress& progress);

} // namespace korvo
