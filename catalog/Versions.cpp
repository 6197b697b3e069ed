#include "catalog/Versions.h"

#include "catalog/ChangeRow.h"
#include "catalog/PhotoRows.h"

namespace korvo {

PhotoID createVersion(Catalog& catalog, PhotoID photo, const std::optional<std::string>& name,
    const std::optional<PhotoEdits>& edits, UnixTime addedAt)
{
    if (name)
        requireName(*name);
    auto& database = catalog.database();
    Transaction transaction(database);
    const auto master = catalog.existingMasterOf(photo);
    const auto count = database.scalar("SELECT COUNT(*) FROM photos WHERE version_of = ?", master);
    const auto json = edits ? std::optional(storedEdits(*edits)) : std::nullopt;
    // What was read from the file comes along too: only masters are read.
    const auto id = database.insert(R"(INSERT INTO photos
    (folder_id, path, filename, added_at, mtime, file_size, rating, flagged,
     alt_text, title, caption, keywords, creator, copyright, edits, label,
     version_of, version_name, stack_id, stack_position, project_id,
     camera, lens, iso, focal_length, aperture, shutter, exif_read, capture_date, capture_read,
     people, latitude, longitude, gps_read, place)
SELECT folder_id, path, filename, ?, mtime, file_size, rating, flagged,
     alt_text, title, caption, keywords, creator, copyright,
     COALESCE(?, edits), label, ?, ?, stack_id, stack_position, project_id,
     camera, lens, iso, focal_length, aperture, shutter, exif_read, capture_date, capture_read,
     people, latitude, longitude, gps_read, place
FROM photos WHERE id = ?)",
        addedAt, json, master, name.value_or("Version " + std::to_string(count + 2)), photo);
    transaction.commit();
    return id;
}

std::vector<PhotoItem> versionsOf(Catalog& catalog, PhotoID photo)
{
    std::vector<PhotoItem> items;
    auto statement
        = catalog.database().kept("SELECT * FROM photos WHERE version_of = "
                                  "(SELECT COALESCE(version_of, id) FROM photos WHERE id = ?) ORDER BY id");
    statement.bind(photo);
    PhotoRows rows(statement);
    while (statement.step())
        items.push_back(rows.item());
    return items;
}

void renameVersion(Catalog& catalog, PhotoID version, std::string_view name)
{
    requireName(name);
    changeRow(catalog.database(), "version", version,
        "UPDATE photos SET version_name = ? WHERE id = ? AND version_of IS NOT NULL", name, version);
}

} // namespace korvo
