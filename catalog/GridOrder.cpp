#include "catalog/GridOrder.h"

#include "base/Text.h"
#include "catalog/FileTypes.h"

#include <algorithm>
#include <limits>

namespace korvo {

namespace {

constexpr double unknownDate = -std::numeric_limits<double>::infinity();

/// Less than 0 when a comes first by the key alone.
int compareByKey(const PhotoItem& a, const PhotoItem& b, SortKey key)
{
    const auto ascending = [](auto x, auto y) { return x < y ? -1 : y < x ? 1 : 0; };
    switch (key) {
    case SortKey::name:
        return 0;
    case SortKey::imported:
        return ascending(a.addedAt, b.addedAt);
    case SortKey::fileDate:
        return ascending(a.fileDate.value_or(unknownDate), b.fileDate.value_or(unknownDate));
    case SortKey::rating:
        return ascending(b.rating, a.rating);
    }
    return 0;
}

/// Orders positions as the grid shows them; without a key, as the source does.
auto byKey(const std::vector<PhotoItem>& items, std::optional<SortKey> key)
{
    return [&items, key](std::uint32_t a, std::uint32_t b) {
        return key ? standsBefore(items[a], items[b], *key) : a < b;
    };
}

} // namespace

std::optional<SortKey> parseSortKey(std::string_view rawValue)
{
    for (const auto& name : sortKeyNames)
        if (name.rawValue == rawValue)
            return name.key;
    return std::nullopt;
}

std::optional<GridFilter> parseGridFilter(std::string_view rawValue)
{
    for (const auto& name : gridFilterNames)
        if (name.rawValue == rawValue)
            return name.filter;
    return std::nullopt;
}

bool passes(const PhotoItem& item, GridFilter filter)
{
    const bool hasPosition = item.latitude && item.longitude;
    switch (filter) {
    case GridFilter::unratedOrBetter:
        return !item.isRejected();
    case GridFilter::starred:
        return item.rating > 0;
    case GridFilter::flagged:
        return item.flagged;
    case GridFilter::rejected:
        return item.isRejected();
    case GridFilter::videos:
        return fileKind(item.filename) == FileKind::video;
    case GridFilter::hasGPS:
        return hasPosition;
    case GridFilter::noGPS:
        return !hasPosition;
    case GridFilter::hasAlt:
        return !item.metadata.altText.empty();
    case GridFilter::missingAlt:
        return item.metadata.altText.empty();
    case GridFilter::adjusted:
        return item.hasEdits();
    case GridFilter::playground:
        return !item.memeJSON.empty();
    }
    return true;
}

bool standsBefore(const PhotoItem& a, const PhotoItem& b, SortKey key)
{
    if (const int byValue = compareByKey(a, b, key))
        return byValue < 0;
    if (const int byName = compareNoCase(a.filename, b.filename))
        return byName < 0;
    return a.id < b.id;
}

PhotoTest testOf(std::optional<GridFilter> filter)
{
    return [filter](const PhotoItem& item) { return !filter || passes(item, *filter); };
}

std::vector<std::uint32_t> gridOrder(
    const std::vector<PhotoItem>& items, std::optional<SortKey> key, const PhotoTest& isShown)
{
    std::vector<std::uint32_t> order;
    order.reserve(items.size());
    for (std::uint32_t position = 0; position < items.size(); ++position)
        if (isShown(items[position]))
            order.push_back(position);
    if (key)
        std::sort(order.begin(), order.end(), byKey(items, key));
    return order;
}

void updateGridOrder(std::vector<std::uint32_t>& order, const std::vector<PhotoItem>& items,
    const std::vector<std::uint32_t>& changed, std::optional<SortKey> key, const PhotoTest& isShown)
{
    const auto isChanged = [&](std::uint32_t position) {
        return std::binary_search(changed.begin(), changed.end(), position);
    };
    std::erase_if(order, isChanged);
    const auto kept = static_cast<std::ptrdiff_t>(order.size());
    for (const auto position : changed)
        if (isShown(items[position]))
            order.push_back(position);
    std::sort(order.begin() + kept, order.end(), byKey(items, key));
    std::inplace_merge(order.begin(), order.begin() + kept, order.end(), byKey(items, key));
}

} // namespace korvo
