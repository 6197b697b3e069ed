#pragma once

#include "catalog/Catalog.h"
#include "metadata/PhotoExifInfo.h"

namespace korvo {

/// The facts of a file that the catalog keeps.
inline CameraData cameraData(const PhotoExifInfo& exif)
{
    return {exif.camera.value_or(""), exif.lens.value_or(""), exif.isoValue, exif.focalValue,
        exif.apertureValue, exif.shutterSeconds, exif.captureTimestamp};
}

} // namespace korvo
