#include "catalog/MetadataBase.h"

#include "base/Json.h"
#include "catalog/Meta.h"

namespace korvo {

namespace {

std::string baseKey(PhotoID id)
{
    return "metadata_base:" + std::to_string(id);
}

} // namespace

std::optional<PhotoMetadata> metadataBase(Database& database, PhotoID id)
try {
    const auto stored = readMeta(database, baseKey(id));
    return stored ? std::optional(fromJson<PhotoMetadata>(*stored)) : std::nullopt;
} catch (const JsonError&) {
    return std::nullopt; // as if nothing were known: what the file holds is then taken more readily
}

void keepMetadataBase(Database& database, std::span<const PhotoID> ids)
{
    for (const PhotoID id : ids)
        database.run(R"(INSERT OR REPLACE INTO meta
SELECT ?, json_object('altText', alt_text, 'title', title, 'caption', caption, 'keywords', keywords,
    'creator', creator, 'copyright', copyright)
FROM photos WHERE id = ? AND dirty = 0 AND version_of IS NULL)",
            baseKey(id), id);
}

void storeMetadataBase(Database& database, PhotoID id, const PhotoMetadata& base)
{
    writeMeta(database, baseKey(id), toJson(base));
}

void dropMetadataBase(Database& database, PhotoID id)
{
    database.run(
        "DELETE FROM meta WHERE key = ? AND NOT EXISTS (SELECT 1 FROM photos WHERE id = ? AND dirty = 1)",
        baseKey(id), id);
}

} // namespace korvo
