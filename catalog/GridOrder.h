#pragma once

#include "catalog/PhotoItem.h"

#include <array>
#include <functional>
#include <optional>
#include <stop_token>
#include <string_view>
#include <vector>

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

struct SortKeyName {
    SortKey key;
    std::string_view rawValue;
    std::string_view title; // in the menu
};

struct GridFilterName {
    GridFilter filter;
    std::string_view rawValue;
    std::string_view title; // in the menu
};

inline constexpr std::array<SortKeyName, 5> sortKeyNames{{{SortKey::name, "name", "By Name"},
    {SortKey::captured, "captured", "By Capture Date"}, {SortKey::imported, "imported", "By Date Added"},
    {SortKey::fileDate, "fileDate", "By File Date"}, {SortKey::rating, "rating", "By Rating"}}};

inline constexpr std::array<GridFilterName, 11> gridFilterNames{{
    {GridFilter::unratedOrBetter, "unratedOrBetter", "Unrated or Better"},
    {GridFilter::starred, "starred", "Starred"},
    {GridFilter::flagged, "flagged", "Flagged"},
    {GridFilter::rejected, "rejected", "Rejected"},
    {GridFilter::videos, "videos", "Videos"},
    {GridFilter::hasGPS, "hasGPS", "Has Location"},
    {GridFilter::noGPS, "noGPS", "No Location"},
    {GridFilter::hasAlt, "hasAlt", "Has ALT Text"},
    {GridFilter::missingAlt, "missingAlt", "Missing ALT Text"},
    {GridFilter::adjusted, "adjusted", "Adjusted"},
    {GridFilter::playground, "playground", "Playground"},
}};

std::optional<SortKey> parseSortKey(std::string_view rawValue);
std::optional<GridFilter> parseGridFilter(std::string_view rawValue);

/// Whether a filter shows the photo.
bool passes(const PhotoItem& item, GridFilter filter);

/// Whether `a` stands before `b`; ties go by file name, then by id. The order is total.
bool standsBefore(const PhotoItem& a, const PhotoItem& b, SortKey key);

/// Whether a photo is shown.
using PhotoTest = std::function<bool(const PhotoItem&)>;

/// The test of a filter; every photo passes without one.
PhotoTest testOf(std::optional<GridFilter> filter);

/// How a source orders its photos before they are sorted by anything else.
enum class ListedBy : std::uint8_t { name, hand };

/// The order of a source. Photos themselves stay where their texts lie in memory, which makes looking at all
/// of them several times as fast.
struct Listing {
    ListedBy by = ListedBy::name;
    std::vector<std::uint32_t> order; // positions in the items
};

/// The listing of photos as they were read: by their names, or as they stand. Throws Stopped after a stop
/// request, as gridOrder does.
Listing listed(const std::vector<PhotoItem>& items, ListedBy by, const std::stop_token& stop = {});

/// Moves photos to where the listing has them.
void putInOrder(std::vector<PhotoItem>& items, Listing listing);

/// The positions in `items` of the photos shown, in the order shown.
std::vector<std::uint32_t> gridOrder(const std::vector<PhotoItem>& items, const Listing& listing,
    std::optional<SortKey> key, const PhotoTest& isShown, const std::stop_token& stop = {});

/// Brings an order that has a key, or is the listing's own, up to date after the items at `changed` (each
/// once) took new values in place or came.
void updateGridOrder(std::vector<std::uint32_t>& order, const std::vector<PhotoItem>& items,
    const Listing& listing, std::vector<std::uint32_t> changed, std::optional<SortKey> key,
    const PhotoTest& isShown);

} // namespace korvo
