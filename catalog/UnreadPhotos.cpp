#include "catalog/UnreadPhotos.h"

namespace korvo {

HeldFile heldFile(Catalog& catalog, std::string_view path)
{
    auto statement = catalog.database().kept(R"(SELECT file_size IS NULL AND dirty = 0
    AND COALESCE(camera, '') = '' AND capture_date IS NULL AND latitude IS NULL
    AND alt_text || title || caption || keywords || creator || copyright = ''
FROM photos WHERE path = ? AND version_of IS NULL)");
    statement.bind(path);
    if (!statement.step())
        return HeldFile::none;
    return statement.integer(0) ? HeldFile::unread : HeldFile::read;
}

void storeLateReading(Catalog& catalog, PhotoID id, const NewPhoto& photo)
{
    Transaction transaction(catalog.database());
    catalog.setMetadata(id, photo.metadata, WriteBack::done);
    catalog.fileChanged(id, photo.fileDate.value(), photo.fileSize.value());
    catalog.database().run(
        "UPDATE photos SET exif_read = 0, capture_read = 0, gps_read = 0 WHERE id = ? OR version_of = ?", id,
        id);
    if (photo.read.camera)
        catalog.storeCameraData(id, photo.camera);
    if (photo.read.position)
        catalog.storeReadPosition(id, photo.latitude, photo.longitude);
    transaction.commit();
}

void forgetPosition(Catalog& catalog, PhotoID id)
{
    runAlone(catalog.database(),
        "UPDATE photos SET latitude = NULL, longitude = NULL, gps_read = 0 WHERE id = ? OR version_of = ?",
        id, id);
}

} // namespace korvo
