#include "metadata/FileContents.h"

#include "metadata/CameraFacts.h"
#include "metadata/DescriptiveReader.h"

namespace korvo {

FileContents readContents(const std::filesystem::path& file)
{
    const auto read = readFileMetadata(file);
    return {photoMetadata(read.descriptive), cameraData(read.exif), read.exif.coordinate};
}

void storeCameraFacts(Catalog& catalog, PhotoID photo, const FileContents& contents)
{
    catalog.storeCameraData(photo, contents.camera);
    const auto& position = contents.position;
    catalog.storeReadPosition(photo, position ? std::optional(position->latitude) : std::nullopt,
        position ? std::optional(position->longitude) : std::nullopt);
}

} // namespace korvo
