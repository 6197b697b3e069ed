#pragma once

#include "metadata/Coordinate.h"
#include "metadata/MetadataSave.h"

namespace korvo {

/// Moves the capture dates of photos by some seconds, photo by photo in the catalog and then in the file,
/// where it may fail. Dates that were not read yet are read first. A stop leaves the remaining photos as they
/// are; a file whose change it cuts off counts as failed. The originals inside an Aperture library keep their
/// dates. A fault of the catalog ends it and is told with what was done. Throws
/// ExifToolError::Case::notFound, with nothing done, and DatabaseError when nothing could be begun.
FilesWritten shiftDates(Catalog& catalog, std::span<const PhotoID> photos, double seconds,
    const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress);

/// Gives photos a position, or takes it from them, in the same manner.
FilesWritten setLocation(Catalog& catalog, std::span<const PhotoID> photos,
    const std::optional<Coordinate>& position, const ExifTool& tool, const std::stop_token& stop,
    const FileProgress& progress);

} // namespace korvo
