#pragma once

#include "catalog/LibrarySource.h"
#include "catalog/PhotoItem.h"
#include "catalog/SmartAlbumMatcher.h"
#include "catalog/Tree.h"

#include <functional>
#include <stop_token>
#include <unordered_map>
#include <vector>

namespace korvo {

class Database;

// What the library lists, read from any connection to it. Catalog does so from its own.

/// The photos of a source, as far as it came at a stop request: in its order when that was made by hand, else
/// as they come. Throws as Catalog::photos does.
std::vector<PhotoItem> photosIn(
    Database& database, const std::optional<LibrarySource>& source, const std::stop_token& stop = {});

/// The same one by one; `use` returns whether to go on. `orderByName` ends the statement of a source without
/// an order made by hand.
using PhotoUse = std::function<bool(PhotoItem&&)>;
void forEachPhoto(Database& database, const std::optional<LibrarySource>& source,
    std::string_view orderByName, const PhotoUse& use);

/// Throws NotFoundError.
SmartAlbumRow smartAlbumIn(Database& database, std::int64_t id);
/// Throws NotFoundError and SmartAlbumError.
SmartAlbumMatcher smartAlbumMatcher(Database& database, std::int64_t id);

/// How many photos and versions there are of some kinds. Takes long in a large library, whose photos are all
/// looked at.
struct LibraryCounts {
    LibraryTotals totals;
    std::vector<std::pair<std::int64_t, std::int64_t>> inProjects; // id and count
    std::unordered_map<PhotoID, std::int64_t> versions; // of each master that has any

    bool operator==(const LibraryCounts&) const = default;
};
LibraryCounts countsIn(Database& database);
std::vector<KeywordRow> keywordsIn(Database& database);
/// The tree with these counts. Does not take long.
LibraryTree treeIn(Database& database, const LibraryCounts& counts);

} // namespace korvo
