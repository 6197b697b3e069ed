#include "catalog/GridOrder.h"

#include "base/Text.h"
#include "catalog/FileTypes.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace korvo {

namespace {

constexpr double unknownDate = -std::numeric_limits<double>::infinity();

/// A number that orders as the key does; 0 for the name.
double numberOf(const PhotoItem& item, SortKey key)
{
    switch (key) {
    case SortKey::imported:
        return item.addedAt;
    case SortKey::fileDate:
        return item.fileDate.value_or(unknownDate);
    case SortKey::rating:
        return -static_cast<double>(item.rating);
    case SortKey::name:
        break;
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
    const double numberA = numberOf(a, key), numberB = numberOf(b, key);
    if (numberA != numberB)
        return numberA < numberB;
    if (const int byName = compareNoCase(a.filename, b.filename))
        return byName < 0;
    return a.id < b.id;
}

PhotoTest testOf(std::optional<GridFilter> filter)
{
    return [filter](const PhotoItem& item) { return !filter || passes(item, *filter); };
}

namespace {

/// What is compared of a name, so that hardly ever the name itself has to be looked up: its first 16 bytes,
/// without case.
struct NamePrefix {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::uint32_t position = 0;

    NamePrefix(std::string_view name, std::size_t at) : position(static_cast<std::uint32_t>(at))
    {
        for (std::size_t i = 0; i < 16; ++i) {
            auto& half = i < 8 ? first : second;
            half = half << 8 | (i < name.size() ? lowered(static_cast<std::uint8_t>(name[i])) : 0U);
        }
    }

private:
    static std::uint8_t lowered(std::uint8_t c) { return c >= 'A' && c <= 'Z' ? c | 0x20 : c; }
};

/// Moves what stands at `from[i].position` to i.
void permute(std::vector<PhotoItem>& items, std::vector<NamePrefix>& from)
{
    for (std::uint32_t start = 0; start < items.size(); ++start) {
        if (from[start].position == start)
            continue;
        PhotoItem kept = std::move(items[start]);
        auto to = start;
        for (auto next = from[to].position; next != start; next = from[to].position) {
            items[to] = std::move(items[next]);
            from[to].position = to;
            to = next;
        }
        items[to] = std::move(kept);
        from[to].position = to;
    }
}

/// The same order as byKey, of photos that stand by name already.
void sortNamed(std::vector<std::uint32_t>& order, const std::vector<PhotoItem>& items, SortKey key)
{
    std::vector<std::pair<double, std::uint32_t>> numbers;
    numbers.reserve(order.size());
    for (const auto position : order)
        numbers.emplace_back(numberOf(items[position], key), position);
    std::sort(numbers.begin(), numbers.end());
    std::transform(
        numbers.begin(), numbers.end(), order.begin(), [](const auto& number) { return number.second; });
}

} // namespace

void sortByName(std::vector<PhotoItem>& items)
{
    std::vector<NamePrefix> prefixes;
    prefixes.reserve(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        prefixes.emplace_back(items[i].filename.view(), i);
    std::sort(prefixes.begin(), prefixes.end(), [&](const NamePrefix& a, const NamePrefix& b) {
        if (a.first != b.first || a.second != b.second)
            return std::tie(a.first, a.second) < std::tie(b.first, b.second);
        return standsBefore(items[a.position], items[b.position], SortKey::name);
    });
    permute(items, prefixes);
}

std::vector<std::uint32_t> gridOrder(const std::vector<PhotoItem>& items, ListedBy listedBy,
    std::optional<SortKey> key, const PhotoTest& isShown)
{
    std::vector<std::uint32_t> order;
    order.reserve(items.size());
    for (std::uint32_t position = 0; position < items.size(); ++position)
        if (isShown(items[position]))
            order.push_back(position);
    if (key && listedBy == ListedBy::hand)
        std::sort(order.begin(), order.end(), byKey(items, key));
    else if (key && key != SortKey::name)
        sortNamed(order, items, *key);
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
