#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace korvo {

/// Puts positions where they belong in an order that lacks them, looking at few of those that stand there:
/// what lies at a position is seldom in the processor's cache.
template <typename Before>
void putInto(std::vector<std::uint32_t>& order, std::vector<std::uint32_t> added, const Before& before)
{
    std::sort(added.begin(), added.end(), before);
    std::vector<std::uint32_t> merged;
    merged.reserve(order.size() + added.size());
    auto from = order.begin();
    for (const auto position : added) {
        const auto to = std::upper_bound(from, order.end(), position, before);
        merged.insert(merged.end(), from, to);
        merged.push_back(position);
        from = to;
    }
    merged.insert(merged.end(), from, order.end());
    order = std::move(merged);
}

} // namespace korvo
