#include "catalog/AutoStack.h"

#include "base/Text.h"

#include <algorithm>

namespace korvo {

namespace {

/// Times are seconds since 1970 with fractions, which a double holds to a quarter of a microsecond: those
/// exactly one interval apart may come out a little more.
constexpr double rounding = 1e-6;

PhotoID pickOf(std::span<const AutoStackShot> group)
{
    return std::max_element(group.begin(), group.end(), [](const auto& a, const auto& b) {
        return a.rating < b.rating;
    })->id;
}

std::vector<AutoStackShot> sortedShots(
    const std::vector<PhotoItem>& items, std::span<const std::uint32_t> positions)
{
    auto shots = autoStackShots(items, positions);
    sortByTime(shots);
    return shots;
}

} // namespace

std::vector<AutoStackShot> autoStackShots(
    const std::vector<PhotoItem>& items, std::span<const std::uint32_t> positions)
{
    std::vector<AutoStackShot> shots;
    shots.reserve(positions.size());
    for (const auto position : positions) {
        const PhotoItem& item = items[position];
        const double time = item.takenAt().value_or(0);
        if (item.isMaster() && !item.stackID && time > 0)
            shots.push_back({time, item.id, static_cast<std::uint32_t>(shots.size()), item.rating});
    }
    return shots;
}

void sortByTime(std::vector<AutoStackShot>& shots)
{
    std::sort(shots.begin(), shots.end(), [](const auto& a, const auto& b) {
        return a.time < b.time || (a.time == b.time && a.place < b.place);
    });
}

AutoStackPlan::AutoStackPlan(
    const std::vector<PhotoItem>& items, std::span<const std::uint32_t> positions, double interval)
    : AutoStackPlan(sortedShots(items, positions), interval)
{ }

AutoStackPlan::AutoStackPlan(std::span<const AutoStackShot> shots, double interval)
{
    for (std::size_t first = 0, end = 0; first < shots.size(); first = end) {
        for (end = first + 1; end < shots.size(); ++end)
            if (shots[end].time - shots[end - 1].time > interval + rounding)
                break;
        if (end - first < 2)
            continue;
        const auto group = shots.subspan(first, end - first);
        groups_.push_back({photos_.size(), group.size(), pickOf(group)});
        for (const auto& shot : group)
            photos_.push_back(shot.id);
    }
}

std::string autoStackText(const AutoStackPlan& plan, int interval)
{
    const auto result = plan.groups().empty()
        ? std::string("No stack")
        : counted(plan.groups().size(), "stack") + " from " + counted(plan.photoCount(), "photo");
    return "Within " + counted(static_cast<std::size_t>(interval), "second") + ": " + result;
}

} // namespace korvo
