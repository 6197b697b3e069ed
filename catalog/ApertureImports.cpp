#include "catalog/ApertureImports.h"

#include "catalog/Meta.h"
#include "platform/ApertureBundles.h"

namespace korvo {

namespace {

/// Each imported Aperture library has an entry in the library's own key/value store: its identity, and where
/// it lay when it was imported.
constexpr std::string_view importPrefix = "aperture_library:";

std::string importKey(std::string_view identity)
{
    return std::string(importPrefix) + std::string(identity);
}

} // namespace

PhotoID addAperturePhoto(Database& database, const AperturePhoto& photo, std::optional<PhotoID> versionOf)
{
    const std::string_view path = photo.path;
    const PhotoMetadata& metadata = photo.metadata;
    const CameraData& camera = photo.camera;
    return database.insert(R"(INSERT INTO photos
    (path, filename, added_at, mtime, file_size, rating, flagged,
     alt_text, title, caption, keywords, creator, copyright, edits, label,
     version_of, version_name, reference_path, project_id,
     camera, lens, iso, focal_length, aperture, shutter, exif_read, capture_date, capture_read,
     latitude, longitude, gps_read)
VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?))",
        path, path.substr(path.rfind('/') + 1), photo.addedAt, photo.fileDate, photo.fileSize, photo.rating,
        photo.flagged, metadata.altText.view(), metadata.title.view(), metadata.caption.view(),
        metadata.keywords.view(), metadata.creator.view(), metadata.copyright.view(), photo.edits,
        static_cast<int>(photo.label), versionOf, photo.versionName, photo.referencePath, photo.projectID,
        camera.camera, camera.lens, camera.iso, camera.focalLength, camera.aperture, camera.shutter,
        photo.isCameraRead, camera.captureDate, camera.captureDate.has_value(), photo.latitude,
        photo.longitude, photo.latitude.has_value());
}

bool hasImported(Database& database, std::string_view identity)
{
    return readMeta(database, importKey(identity)).has_value();
}

void noteImport(Database& database, std::string_view identity, const std::filesystem::path& bundle)
{
    writeMeta(database, importKey(identity), bundle.native());
}

bool isReadOnlyOriginal(Database& database, std::string_view path)
{
    if (liesInNamedBundle(path))
        return true;
    // The range, for which the index serves: this is asked for each photo whose metadata change.
    auto bundle
        = database.kept("SELECT value || '/' FROM meta WHERE key >= ?1 AND key < ?1 || char(1114111)");
    bundle.bind(importPrefix);
    while (bundle.step())
        if (path.starts_with(bundle.text(0)))
            return true;
    return false;
}

} // namespace korvo
