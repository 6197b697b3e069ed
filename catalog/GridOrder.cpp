#include "catalog/GridOrder.h"

#include "base/StopCheck.h"
#include "base/Text.h"
#include "catalog/PutInto.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <numeric>
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
    case SortKey::captured:
        return item.takenAt().value_or(unknownDate);
    case SortKey::rating:
        return -static_cast<double>(item.rating);
    case SortKey::name:
        break;
    }
    return 0;
}

} // namespace

bool standsBefore(const PhotoItem& a, const PhotoItem& b, SortKey key)
{
    const double numberA = numberOf(a, key), numberB = numberOf(b, key);
    if (numberA != numberB)
        return numberA < numberB;
    if (const int byName = compareNoCase(a.filename, b.filename))
        return byName < 0;
    return a.id < b.id;
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

    /// Whether the name is no longer than that.
    bool isWhole() const { return (second & 0xff) == 0; }

private:
    static std::uint8_t lowered(std::uint8_t c) { return c >= 'A' && c <= 'Z' ? c | 0x20 : c; }
};

/// The positions of photos by their names, as SortKey::name orders them.
std::vector<std::uint32_t> orderByName(const std::vector<PhotoItem>& items, const std::stop_token& stop)
{
    StopCheck check(stop);
    std::vector<NamePrefix> prefixes;
    prefixes.reserve(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        prefixes.emplace_back(items[i].filename.view(), i);
    const auto before = [&](const NamePrefix& a, const NamePrefix& b) {
        if (a.first != b.first || a.second != b.second)
            return std::tie(a.first, a.second) < std::tie(b.first, b.second);
        if (a.isWhole())
            return items[a.position].id < items[b.position].id;
        return standsBefore(items[a.position], items[b.position], SortKey::name);
    };
    std::sort(prefixes.begin(), prefixes.end(), check.with(before));
    std::vector<std::uint32_t> order(items.size());
    std::transform(prefixes.begin(), prefixes.end(), order.begin(),
        [](const NamePrefix& prefix) { return prefix.position; });
    return order;
}

/// Sorts photos that stand as their list does by the numbers of a key.
void sortListed(
    std::vector<std::uint32_t>& order, const std::vector<PhotoItem>& items, SortKey key, StopCheck& check)
{
    struct Number {
        double number;
        std::uint32_t place, position;
    };
    std::vector<Number> numbers;
    numbers.reserve(order.size());
    for (const auto position : order)
        numbers.push_back(
            {numberOf(items[position], key), static_cast<std::uint32_t>(numbers.size()), position});
    const auto before = [](const Number& a, const Number& b) {
        return a.number < b.number || (a.number == b.number && a.place < b.place);
    };
    std::sort(numbers.begin(), numbers.end(), check.with(before));
    std::transform(
        numbers.begin(), numbers.end(), order.begin(), [](const Number& number) { return number.position; });
}

/// Where each item stands in the listing.
std::vector<std::uint32_t> places(const Listing& listing)
{
    std::vector<std::uint32_t> places(listing.order.size());
    for (std::uint32_t place = 0; place < places.size(); ++place)
        places[listing.order[place]] = place;
    return places;
}

} // namespace

Listing listed(const std::vector<PhotoItem>& items, ListedBy by, const std::stop_token& stop)
{
    if (by == ListedBy::name)
        return {by, orderByName(items, stop)};
    std::vector<std::uint32_t> order(items.size());
    std::iota(order.begin(), order.end(), 0U);
    return {by, std::move(order)};
}

void putInOrder(std::vector<PhotoItem>& items, Listing listing)
{
    auto& from = listing.order;
    for (std::uint32_t start = 0; start < items.size(); ++start) {
        if (from[start] == start)
            continue;
        PhotoItem kept = std::move(items[start]);
        auto to = start;
        for (auto next = from[to]; next != start; next = from[to]) {
            items[to] = std::move(items[next]);
            from[to] = to;
            to = next;
        }
        items[to] = std::move(kept);
        from[to] = to;
    }
}

std::vector<std::uint32_t> gridOrder(const std::vector<PhotoItem>& items, const Listing& listing,
    std::optional<SortKey> key, const PhotoTest& isShown, const std::stop_token& stop)
{
    StopCheck check(stop);
    std::vector<bool> shown(items.size()); // found in the order in which the items lie
    for (std::size_t position = 0; position < items.size(); ++position) {
        check();
        shown[position] = isShown(items[position]);
    }
    std::vector<std::uint32_t> order;
    order.reserve(items.size());
    std::copy_if(listing.order.begin(), listing.order.end(), std::back_inserter(order),
        [&](std::uint32_t position) { return shown[position]; });
    if (key && listing.by == ListedBy::hand)
        std::sort(order.begin(), order.end(), check.with([&](std::uint32_t a, std::uint32_t b) {
            return standsBefore(items[a], items[b], *key);
        }));
    else if (key && key != SortKey::name)
        sortListed(order, items, *key, check);
    return order;
}

void updateGridOrder(std::vector<std::uint32_t>& order, const std::vector<PhotoItem>& items,
    const Listing& listing, std::vector<std::uint32_t> changed, std::optional<SortKey> key,
    const PhotoTest& isShown)
{
    std::vector<bool> isChanged(items.size());
    for (const auto position : changed)
        isChanged[position] = true;
    std::erase_if(order, [&](std::uint32_t position) { return isChanged[position]; });
    std::erase_if(changed, [&](std::uint32_t position) { return !isShown(items[position]); });
    if (!key && listing.by == ListedBy::hand)
        putInto(order, std::move(changed),
            [place = places(listing)](std::uint32_t a, std::uint32_t b) { return place[a] < place[b]; });
    else
        putInto(order, std::move(changed), [&](std::uint32_t a, std::uint32_t b) {
            return standsBefore(items[a], items[b], key.value_or(SortKey::name));
        });
}

} // namespace korvo
