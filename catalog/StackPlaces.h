#pragma once

#include "base/StopCheck.h"
#include "catalog/Stack.h"

#include <cstdint>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

namespace korvo {

/// Where the members of the stacks stand in the grid: together, in their stack's order, where the first of
/// them that is shown would stand by itself. Of a collapsed stack that first one is shown alone: its pick, or
/// where the source or the filter leaves the pick out, the next member, so that no photo is out of reach.
/// Versions, which only albums list, are shown as they are.
class StackPlaces {
public:
    StackPlaces() = default;
    explicit StackPlaces(const std::vector<Stack>& stacks) { add(stacks); }

    /// Takes the stacks of these ids as they are now; those that are missing are gone. The items must know
    /// which stack they are in.
    void update(const std::set<std::int64_t>& ids, const std::vector<Stack>& stacks);

    struct Arrangement {
        std::vector<std::uint32_t> shown; // positions in the items
        std::unordered_map<PhotoID, PhotoID> hidden; // members of collapsed stacks, and who stands for them
    };

    /// Brings the stacks into an order of positions in `items`. Throws Stopped after a stop request.
    Arrangement arranged(const std::vector<std::uint32_t>& order, const std::vector<PhotoItem>& items,
        const std::stop_token& stop = {}) const;

    /// How many members a stack has.
    std::size_t size(std::int64_t stack) const
    {
        const auto found = sizes_.find(stack);
        return found == sizes_.end() ? 0 : found->second;
    }

private:
    struct Place {
        std::int64_t stack;
        std::size_t rank; // 0 is the pick
        bool collapsed;
    };
    struct ShownMember {
        Place place;
        std::uint32_t position; // in the items
    };

    void add(const std::vector<Stack>& stacks);
    std::vector<ShownMember> membersIn(
        const std::vector<std::uint32_t>& order, const std::vector<PhotoItem>& items, StopCheck& check) const;

    std::unordered_map<PhotoID, Place> places_; // also of photos that have left their stack
    std::unordered_map<std::int64_t, std::size_t> sizes_;
};

} // namespace korvo
