#pragma once

#include "catalog/AutoStack.h"
#include "catalog/Catalog.h"
#include "catalog/Stack.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <vector>

namespace korvo {

// Stacks. Where an id is a version's, its master is meant. A stack always has two members or more, and its
// pick is one of them: one left with a single member is dissolved, and one that loses its pick takes the
// member shown next.

/// All stacks, in the order of their ids, their members as shown.
std::vector<Stack> stacksIn(Database& database);
/// Those of these ids that there are.
std::vector<Stack> stacksIn(Database& database, const std::set<std::int64_t>& ids);
/// One of them. Throws NotFoundError.
Stack stackIn(Database& database, std::int64_t id);
/// Gathers photos, in this order, under the pick, which without one is the first. Members leave the stacks
/// they were in. Throws std::invalid_argument for fewer than two and for a pick that is none of them.
std::int64_t createStack(Catalog& catalog, std::span<const PhotoID> photos, std::optional<PhotoID> pick);
/// Photos that have been stacked or removed since the plan was made are left out of it. The ids of the stacks
/// that were made, in the plan's order.
std::vector<std::int64_t> createStacks(Catalog& catalog, const AutoStackPlan& plan);
void unstack(Catalog& catalog, std::int64_t id);
/// Throws std::invalid_argument when the photo is not in the stack. The members keep their order.
void setPick(Catalog& catalog, std::int64_t stack, PhotoID photo);
void setStackState(Catalog& catalog, std::int64_t id, StackState state);
/// Moves a member to a place among the members as shown, from 1, at most to the end; the others close up,
/// and the pick stays before them all. Throws std::invalid_argument when the photo is not in the stack.
void moveInStack(Catalog& catalog, std::int64_t stack, PhotoID photo, std::size_t position);

// For what removes photos: which stacks they are in, and what is to be done when they are gone.

/// The stacks that a statement names for these ids, which it has as its one parameter.
std::set<std::int64_t> stacksOf(
    Database& database, std::string_view selectStack, std::span<const std::int64_t> ids);
/// Dissolves those of the stacks that have fewer than two members, and gives a pick to those without one.
void repairStacks(Database& database, const std::set<std::int64_t>& ids);
/// Does so, once in a library's life, for stacks that other programs left so.
void repairOldStacks(Database& database);

} // namespace korvo
