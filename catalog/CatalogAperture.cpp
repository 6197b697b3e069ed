#include "catalog/Catalog.h"

#include "catalog/Meta.h"
#include "platform/ApertureBundles.h"

#include <algorithm>

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

PhotoID Catalog::addImportedPhoto(const AperturePhoto& photo, std::optional<PhotoID> versionOf)
{
    const std::string_view path = photo.path;
    const PhotoMetadata& metadata = photo.metadata;
    const CameraData& camera = photo.camera;
    return database_.insert(R"(INSERT INTO photos
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

std::optional<PhotoID> Catalog::masterAt(std::string_view path)
{
    const auto id = database_.scalar("SELECT id FROM photos WHERE path = ? AND version_of IS NULL", path);
    return id ? std::optional(id) : std::nullopt;
}

bool Catalog::hasImported(std::string_view identity)
{
    return readMeta(database_, importKey(identity)).has_value();
}

void Catalog::noteImport(std::string_view identity, const std::filesystem::path& bundle)
{
    const ConnectionLock lock(database_.handle());
    writeMeta(database_, importKey(identity), bundle.native());
    aperturePrefixesCache_.reset();
}

std::vector<std::string> Catalog::aperturePrefixes()
{
    const ConnectionLock lock(database_.handle()); // guards the cache too
    if (!aperturePrefixesCache_) {
        aperturePrefixesCache_.emplace();
        auto row = database_.kept("SELECT value FROM meta WHERE substr(key, 1, length(?1)) = ?1");
        row.bind(importPrefix);
        while (row.step())
            aperturePrefixesCache_->push_back(std::string(row.text(0)) + "/");
    }
    return *aperturePrefixesCache_;
}

bool Catalog::mayBeWritten(PhotoID id)
{
    auto row = database_.kept("SELECT path FROM photos WHERE id = ?");
    row.bind(id);
    return row.step() && !isReadOnlyOriginal(row.text(0));
}

bool Catalog::isReadOnlyOriginal(std::string_view path)
{
    const auto prefixes = aperturePrefixes();
    return liesInNamedBundle(path)
        || std::any_of(prefixes.begin(), prefixes.end(),
            [&](const std::string& prefix) { return path.starts_with(prefix); });
}

} // namespace korvo
