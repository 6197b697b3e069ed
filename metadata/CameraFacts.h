#pragma once

#include "catalog/Catalog.h"
#include "catalog/KeywordList.h"
#include "metadata/DescriptiveFields.h"
#include "metadata/DescriptiveReader.h"
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

/// Gives a new photo what its file says, from one look at its head. Throws MetadataError when the file cannot
/// be opened or read.
inline void readInto(NewPhoto& photo, const std::filesystem::path& file)
{
    const auto read = readFileMetadata(file);
    photo.metadata = photoMetadata(read.descriptive);
    photo.camera = cameraData(read.exif);
    if (const auto& position = read.exif.coordinate) {
        photo.latitude = position->latitude;
        photo.longitude = position->longitude;
    }
    photo.read = {.camera = true, .captureDate = true, .position = true};
}

} // namespace korvo
