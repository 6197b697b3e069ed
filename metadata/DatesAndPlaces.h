#pragma once

#include "metadata/Coordinate.h"
#include "metadata/FileFields.h"
#include "metadata/MetadataSave.h"

namespace korvo {

/// What is done to photos, each by itself.
struct PhotoCorrection {
    std::function<void(const FileRecord&)> inCatalog; // may throw DatabaseError
    /// Gives no arguments where the file is to stay as it is.
    std::function<FileChange(const FileRecord&)> inFile;
};

/// Moves capture dates by some seconds. Those that were not read yet are read first.
PhotoCorrection dateShiftBy(Catalog& catalog, double seconds);

/// Gives photos a position, or takes it from them.
PhotoCorrection positionChangeTo(Catalog& catalog, const std::optional<Coordinate>& position);

/// Corrects photos, versions with their masters, photo by photo in the catalog and then in the file, where it
/// may fail. A stop leaves the remaining photos as they are; a file whose change it cuts off counts as
/// failed. The originals inside an Aperture library stay as they are. A fault of the catalog, or a tool that
/// vanishes, ends it and is told with what was done. Throws ExifToolError::Case::notFound, with nothing done,
/// and DatabaseError when nothing could be begun.
FilesWritten correctPhotos(Catalog& catalog, std::span<const PhotoID> photos,
    const PhotoCorrection& correction, const ExifTool& tool, const std::stop_token& stop,
    const FileProgress& progress);

} // namespace korvo
