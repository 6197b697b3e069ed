#include "app/view/Stacking.h"

#include "catalog/Stacks.h"
#include "catalog/store/GroupActions.h"

#include <algorithm>
#include <map>
#include <set>

namespace korvo {

namespace {

std::optional<std::int64_t> stackOf(const LibraryStore& store, PhotoID id)
{
    const auto* const item = store.list().find(id);
    return item && item->stackID ? std::optional(*item->stackID) : std::nullopt;
}

std::set<std::int64_t> stacksOfListed(const LibraryStore& store, std::span<const PhotoID> ids)
{
    std::set<std::int64_t> stacks;
    for (const PhotoID id : ids)
        if (const auto stack = stackOf(store, id))
            stacks.insert(*stack);
    return stacks;
}

/// The members that only the pick is shown of, it first; null for an expanded stack.
const std::vector<PhotoID>* hidden(const Stack& stack)
{
    return stack.collapsed && !stack.members.empty() ? &stack.members : nullptr;
}

Stack stackIn(LibraryStore& store, std::int64_t id)
{
    return stackIn(store.catalog().database(), id);
}

} // namespace

void stackPhotos(LibraryStore& store, std::span<const PhotoID> ids, std::optional<PhotoID> pick)
{
    std::map<std::int64_t, Stack> stacks; // many of the photos may be of one long stack
    for (const auto stack : stacksOfListed(store, ids))
        stacks.emplace(stack, stackIn(store, stack));
    std::vector<PhotoID> all;
    for (const PhotoID id : ids) {
        const auto stack = stackOf(store, id);
        if (const auto* const members = stack ? hidden(stacks.at(*stack)) : nullptr;
            members && members->front() == id)
            all.insert(all.end(), members->begin(), members->end());
        else
            all.push_back(id);
    }
    createStack(store, all, pick);
}

void unstackPhotos(LibraryStore& store, std::span<const PhotoID> ids)
{
    const auto change = [stacks = stacksOfListed(store, ids)](Catalog& catalog) {
        for (const auto stack : stacks)
            unstack(catalog, stack);
    };
    store.perform("Unstack", change, ids.size());
}

void toggleStacks(LibraryStore& store, std::span<const PhotoID> ids)
{
    const auto stacks = stacksOfListed(store, ids);
    if (stacks.empty())
        return;
    const bool isCollapsed = stackIn(store, *stacks.begin()).collapsed;
    const auto state = isCollapsed ? StackState::expanded : StackState::collapsed;
    const auto change = [stacks, state](Catalog& catalog) {
        for (const auto stack : stacks)
            setStackState(catalog, stack, state);
    };
    store.perform(isCollapsed ? "Expand Stack" : "Collapse Stack", change, ids.size());
}

void makePick(LibraryStore& store, PhotoID id)
{
    if (const auto stack = stackOf(store, id))
        setPick(store, *stack, id);
}

std::string stepInStack(LibraryStore& store, PhotoID id, int places)
{
    const auto number = stackOf(store, id);
    if (!number)
        return {};
    const auto stack = stackIn(store, *number);
    if (stack.collapsed)
        return "The stack is collapsed. S expands it.";
    const auto at
        = std::ranges::find(stack.members, store.catalog().existingMasterOf(id)) - stack.members.begin();
    if (at == 0)
        return "The pick stands first in its stack. “Make the Pick” gives its place to another.";
    const auto to = at + places;
    if (to > 0 && to < std::ssize(stack.members))
        moveInStack(store, stack.id, id, static_cast<std::size_t>(to));
    return {};
}

} // namespace korvo
