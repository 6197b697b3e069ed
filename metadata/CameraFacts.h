#pragma once

#include "base/Text.h"
#include "catalog/Catalog.h"
#include "metadata/DescriptiveFields.h"
#include "metadata/PhotoExifInfo.h"

namespace korvo {

/// The facts of a file that the catalog keeps.
inline CameraData cameraData(const PhotoExifInfo& exif)
{
    return {exif.camera.value_or(""), exif.lens.value_or(""), exif.isoValue, exif.focalValue,
        exif.apertureValue, exif.shutterSeconds, exif.captureTimestamp};
}

/// The words of a file as the catalog keeps them.
inline PhotoMetadata photoMetadata(const DescriptiveFields& fields)
{
    return {fields.altText, fields.title, fields.caption, joinKeywords(fields.keywords), fields.creator,
        fields.copyright};
}

} // namespace korvo
