#pragma once

#include "app/pictures/PhotoExport.h"
#include "catalog/Catalog.h"

#include <functional>
#include <span>

namespace korvo {

/// What the user chose for an export.
struct ExportPlan {
    std::filesystem::path folder; ///< made if it is not there
    PictureFormat format = PictureFormat::jpeg;
    int size = 0; ///< the most pixels of the longer side; 0: as many as there are
    int quality = 90; ///< 1 to 100, of JPEG and WebP
    std::string pattern = "{name}"; ///< of the file names
    Position position = Position::keep;
};

/// What became of the photos.
struct ExportResult {
    std::size_t written = 0;
    std::vector<std::string> failures; ///< sentences that name the file
    bool cancelled = false;
};

/// What a run needs, all of which must outlive it.
struct ExportTools {
    Catalog& catalog;
    ImageReader& reader;
    const ExifTool& exifTool;
};

/// Renders photos into files of the folder. No file that is there is replaced: "-2", "-3" and so on are added
/// to names that are taken. What fails is listed, and the rest goes on. `progress` is called with the number
/// of photos dealt with. Throws std::system_error when the folder cannot be made.
ExportResult runExport(const ExportTools& tools, std::span<const PhotoItem> photos, const ExportPlan& plan,
    const std::stop_token& stop, const std::function<void(std::size_t done)>& progress);

} // namespace korvo
