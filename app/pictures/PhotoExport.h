#pragma once

#include "app/pictures/PhotoRender.h"
#include "catalog/PhotoItem.h"
#include "metadata/exiftool/ExifTool.h"
#include "metadata/exiftool/ExifToolArguments.h"

#include <functional>

namespace korvo {

/// A photo, its edits and where it goes.
struct ExportJob {
    RenderJob render;
    std::filesystem::path destination; ///< its ending names the format
    int quality = 90;
    ExportedPosition position;
    /// Names another destination in the same folder when something took that one meanwhile; without this,
    /// what is there is replaced.
    std::function<std::filesystem::path()> otherwise;
};

/// Where an exported photo was taken: what the catalog says, once it knows what the file does.
ExportedPosition exportedPosition(const PhotoItem& photo, Position wish);

/// What was written.
struct ExportedPhoto {
    int width = 0;
    int height = 0;
    std::string note; ///< what the user should know of the picture, or empty
    std::optional<std::string> exifFailure; ///< why the camera's EXIF could not be kept, if it could not
};

/// Renders a photo into a file: with an sRGB profile, and with the EXIF that its camera wrote. The file
/// appears whole or not at all. Throws ImageError, std::invalid_argument
/// for an ending of no format that we write, and std::runtime_error where the destination is an original: the
/// photo's own file, one that `isOriginal` says is one, anything in an Aperture library, and, since it may
/// lead to one, any link.
ExportedPhoto exportPhoto(ImageReader& reader, const ExifTool& tool, const ExportJob& job,
    const std::function<bool(const std::filesystem::path&)>& isOriginal, const std::stop_token& stop);

/// Removes the unfinished files of a day ago, which killed programs left in a folder.
void removeUnfinishedExports(const std::filesystem::path& folder);

} // namespace korvo
