#pragma once

#include "catalog/PhotoItem.h"
#include "catalog/sql/Database.h"

#include <optional>
#include <span>

namespace korvo {

// What the file of a photo that waits to be written held when the catalog and it last agreed: the base from
// which both may have gone on.

/// Nothing where none is known.
std::optional<PhotoMetadata> metadataBase(Database& database, PhotoID id);
/// To be called before the metadata of photos change: where nothing waits, what the catalog holds is what the
/// file holds.
void keepMetadataBase(Database& database, std::span<const PhotoID> ids);
void storeMetadataBase(Database& database, PhotoID id, const PhotoMetadata& base);
/// Unless the photo waits still.
void dropMetadataBase(Database& database, PhotoID id);

} // namespace korvo
