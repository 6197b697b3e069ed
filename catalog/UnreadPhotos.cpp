#include "catalog/UnreadPhotos.h"

namespace korvo {

bool isUnread(Catalog& catalog, std::string_view path)
{
    return catalog.database().scalar(R"(SELECT COUNT(*) FROM photos
WHERE path = ? AND version_of IS NULL AND file_size IS NULL AND dirty = 0
    AND COALESCE(camera, '') = '' AND capture_date IS NULL AND latitude IS NULL
    AND alt_text || title || caption || keywords || creator || copyright = '')",
               path)
        > 0;
}

void storeLateReading(Catalog& catalog, PhotoID id, const NewPhoto& photo)
{
    Transaction transaction(catalog.database());
    catalog.setMetadata(id, photo.metadata, WriteBack::done);
    catalog.fileChanged(id, photo.fileDate.value(), photo.fileSize.value());
    catalog.database().run(
        "UPDATE photos SET exif_read = 0, capture_read = 0, gps_read = 0 WHERE id = ? OR version_of = ?", id,
        id);
    transaction.commit();
}

} // namespace korvo
