#include "catalog/StackPlaces.h"

#include <algorithm>
#include <tuple>

namespace korvo {

void StackPlaces::add(const std::vector<Stack>& stacks)
{
    for (const Stack& stack : stacks) {
        sizes_.insert_or_assign(stack.id, stack.members.size());
        for (std::size_t rank = 0; rank < stack.members.size(); ++rank)
            places_.insert_or_assign(stack.members[rank], Place{stack.id, rank, stack.collapsed});
    }
}

void StackPlaces::update(const std::set<std::int64_t>& ids, const std::vector<Stack>& stacks)
{
    for (const auto id : ids)
        sizes_.erase(id);
    add(stacks);
}

std::vector<StackPlaces::ShownMember> StackPlaces::membersIn(
    const std::vector<std::uint32_t>& order, const std::vector<PhotoItem>& items, StopCheck& check) const
{
    std::vector<ShownMember> members;
    for (const auto position : order) {
        check();
        const auto stack = items[position].stackID;
        if (!stack)
            continue;
        const auto found = places_.find(items[position].id);
        if (found != places_.end() && found->second.stack == *stack)
            members.push_back({found->second, position});
    }
    std::sort(members.begin(), members.end(), check.with([](const ShownMember& a, const ShownMember& b) {
        return std::tie(a.place.stack, a.place.rank) < std::tie(b.place.stack, b.place.rank);
    }));
    return members;
}

StackPlaces::Arrangement StackPlaces::arranged(const std::vector<std::uint32_t>& order,
    const std::vector<PhotoItem>& items, const std::stop_token& stop) const
{
    StopCheck check(stop);
    const auto members = places_.empty() ? std::vector<ShownMember>() : membersIn(order, items, check);
    if (members.empty())
        return {order, {}};
    constexpr std::uint32_t alone = ~0U; // in no stack
    constexpr std::uint32_t follows = alone - 1; // placed with its stack's first
    std::vector<std::uint32_t> memberAt(items.size(), alone);
    for (std::uint32_t i = 0; i < members.size(); ++i) {
        const bool isFirst = i == 0 || members[i - 1].place.stack != members[i].place.stack;
        memberAt[members[i].position] = isFirst ? i : follows;
    }
    Arrangement arrangement;
    arrangement.shown.reserve(order.size());
    for (const auto position : order) {
        check();
        if (memberAt[position] != follows)
            arrangement.shown.push_back(position);
        if (memberAt[position] >= follows)
            continue;
        const auto& first = members[memberAt[position]];
        for (auto i = memberAt[position] + 1; i < members.size(); ++i) {
            if (members[i].place.stack != first.place.stack)
                break;
            if (first.place.collapsed)
                arrangement.hidden.emplace(items[members[i].position].id, items[position].id);
            else
                arrangement.shown.push_back(members[i].position);
        }
    }
    return arrangement;
}

} // namespace korvo
