#pragma once

#include "base/Enum.h"
#include "catalog/PhotoItem.h"

#include <functional>

namespace korvo {

/// What the grid is sorted by. Without one the source's own order stands: an album's, or that of the file
/// names.
enum class SortKey : std::uint8_t {
    name, // file name without regard to case
    imported, // when the photo was added, newest last
    fileDate, // the file's modification, newest last
    rating, // most stars first
    captured // when the photo was taken, else the file's modification, newest last
};
KORVO_ENUM(SortKey, name, captured, imported, fileDate, rating) // as the menu has them

/// What the grid shows of the source. Each case is one test and no more: "Starred" says nothing about flags.
enum class GridFilter : std::uint8_t {
    unratedOrBetter, // hides rejected photos
    starred,
    flagged,
    rejected,
    videos,
    hasGPS,
    noGPS,
    hasAlt,
    missingAlt,
    adjusted,
    playground // has an animated composition
};
KORVO_ENUM(GridFilter, unratedOrBetter, starred, flagged, rejected, videos, hasGPS, noGPS, hasAlt, missingAlt,
    adjusted, playground)

/// As the menu says it.
std::string_view titleOf(SortKey key);
std::string_view titleOf(GridFilter filter);

/// Whether a filter shows the photo.
bool passes(const PhotoItem& item, GridFilter filter);

/// Whether a photo is shown.
using PhotoTest = std::function<bool(const PhotoItem&)>;

/// The test of a filter; every photo passes without one.
PhotoTest testOf(std::optional<GridFilter> filter);

} // namespace korvo
