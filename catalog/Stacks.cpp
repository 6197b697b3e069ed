#include "catalog/Stacks.h"

#include "catalog/ChangeRow.h"
#include "catalog/Meta.h"

#include <algorithm>
#include <stdexcept>

namespace korvo {

namespace {

constexpr auto setPlace = "UPDATE photos SET stack_id = ?, stack_position = ? WHERE id = ? OR version_of = ?";
constexpr auto setPosition = "UPDATE photos SET stack_position = ? WHERE id = ? OR version_of = ?";
constexpr auto setPickOf = "UPDATE stacks SET pick_photo_id = ? WHERE id = ?";

constexpr auto membersAsShown = R"(SELECT p.id FROM photos p JOIN stacks s ON s.id = p.stack_id
WHERE p.stack_id = ? AND p.version_of IS NULL
ORDER BY (p.id = s.pick_photo_id) DESC, p.stack_position, p.filename COLLATE NOCASE, p.id)";

std::vector<PhotoID> membersOf(Database& database, std::string_view select, std::int64_t stack)
{
    std::vector<PhotoID> members;
    auto statement = database.kept(select);
    statement.bind(stack);
    while (statement.step())
        members.push_back(statement.integer(0));
    return members;
}

/// Of masters that are in no other stack, in their order.
std::int64_t insertStack(Database& database, std::span<const PhotoID> masters, PhotoID pick)
{
    const auto id = database.insert("INSERT INTO stacks (pick_photo_id, collapsed) VALUES (?, 1)", pick);
    for (std::int64_t position = 0; const PhotoID master : masters)
        database.run(setPlace, id, position++, master, master);
    return id;
}

void dissolve(Database& database, std::int64_t stack)
{
    database.run("UPDATE photos SET stack_id = NULL WHERE stack_id = ?", stack);
    database.run("DELETE FROM stacks WHERE id = ?", stack);
}

void requireStack(Database& database, std::int64_t id)
{
    if (database.scalar("SELECT COUNT(*) FROM stacks WHERE id = ?", id) == 0)
        throw NotFoundError("stack", id);
}

} // namespace

std::vector<Stack> stacksIn(Database& database, const std::set<std::int64_t>& ids)
{
    std::vector<Stack> stacks;
    auto statement = database.kept("SELECT pick_photo_id, collapsed FROM stacks WHERE id = ?");
    for (const auto id : ids) {
        statement.bind(id);
        if (statement.step())
            stacks.push_back({id, statement.integer(0), statement.integer(1) != 0,
                membersOf(database, membersAsShown, id)});
    }
    return stacks;
}

Stack stackIn(Database& database, std::int64_t id)
{
    requireStack(database, id);
    return stacksIn(database, {id}).front();
}

namespace {

PhotoID memberOf(Catalog& catalog, std::int64_t stack, PhotoID photo)
{
    requireStack(catalog.database(), stack);
    const auto master = catalog.existingMasterOf(photo);
    if (catalog.database().scalar("SELECT stack_id FROM photos WHERE id = ?", master) != stack)
        throw std::invalid_argument(
            "photo " + std::to_string(photo) + " is not in the stack " + std::to_string(stack));
    return master;
}

} // namespace

std::vector<Stack> stacksIn(Database& database)
{
    std::vector<Stack> stacks;
    // CROSS JOIN keeps SQLite from going through all photos for the few stacks.
    auto statement = database.kept(R"(SELECT s.id, s.collapsed, p.id
FROM stacks s CROSS JOIN photos p ON p.stack_id = s.id AND p.version_of IS NULL
ORDER BY s.id, (p.id = s.pick_photo_id) DESC, p.stack_position, p.filename COLLATE NOCASE, p.id)");
    while (statement.step()) {
        const auto id = statement.integer(0);
        if (stacks.empty() || stacks.back().id != id)
            stacks.push_back({id, statement.integer(2), statement.integer(1) != 0, {}});
        stacks.back().members.push_back(statement.integer(2));
    }
    return stacks;
}

std::int64_t createStack(Catalog& catalog, std::span<const PhotoID> photos, std::optional<PhotoID> pick)
{
    auto& database = catalog.database();
    Transaction transaction(database);
    for (const PhotoID photo : photos)
        catalog.existingMasterOf(photo);
    const auto members = catalog.mastersOf(photos);
    if (members.size() < 2)
        throw std::invalid_argument("a stack takes two photos or more, each with a file of its own");
    const auto top = pick ? catalog.existingMasterOf(*pick) : members.front();
    if (std::find(members.begin(), members.end(), top) == members.end())
        throw std::invalid_argument("the pick of a stack is one of its photos");
    const auto before = stacksOf(database, "SELECT stack_id FROM photos WHERE id = ?", members);
    const auto id = insertStack(database, members, top);
    repairStacks(database, before);
    transaction.commit();
    return id;
}

std::vector<std::int64_t> createStacks(Catalog& catalog, const AutoStackPlan& plan)
{
    auto& database = catalog.database();
    std::vector<std::int64_t> made;
    Transaction transaction(database);
    for (const auto& group : plan.groups()) {
        // The plan may be older than a stack that another process made, or a removal.
        std::vector<PhotoID> free;
        for (const PhotoID photo : plan.photos(group))
            if (database.scalar(
                    "SELECT 1 FROM photos WHERE id = ? AND stack_id IS NULL AND version_of IS NULL", photo)
                != 0)
                free.push_back(photo);
        const bool hasPick = std::find(free.begin(), free.end(), group.pick) != free.end();
        if (free.size() >= 2)
            made.push_back(insertStack(database, free, hasPick ? group.pick : free.front()));
    }
    transaction.commit();
    return made;
}

void unstack(Catalog& catalog, std::int64_t id)
{
    auto& database = catalog.database();
    Transaction transaction(database);
    requireStack(database, id);
    dissolve(database, id);
    transaction.commit();
}

void setPick(Catalog& catalog, std::int64_t stack, PhotoID photo)
{
    auto& database = catalog.database();
    Transaction transaction(database);
    const auto pick = memberOf(catalog, stack, photo);
    database.run(setPickOf, pick, stack);
    transaction.commit();
}

void setStackState(Catalog& catalog, std::int64_t id, StackState state)
{
    changeRow(catalog.database(), "stack", id, "UPDATE stacks SET collapsed = ? WHERE id = ?",
        state == StackState::collapsed, id);
}

void moveInStack(Catalog& catalog, std::int64_t stack, PhotoID photo, std::size_t position)
{
    auto& database = catalog.database();
    Transaction transaction(database);
    const auto member = memberOf(catalog, stack, photo);
    auto members = membersOf(database, membersAsShown, stack);
    if (member != members.front()) {
        std::erase(members, member);
        const auto at = static_cast<std::ptrdiff_t>(std::clamp<std::size_t>(position, 1, members.size()));
        members.insert(members.begin() + at, member);
    }
    for (std::int64_t index = 0; const PhotoID id : members)
        database.run(setPosition, index++, id, id);
    transaction.commit();
}

std::set<std::int64_t> stacksOf(
    Database& database, std::string_view selectStack, std::span<const std::int64_t> ids)
{
    std::set<std::int64_t> stacks;
    auto statement = database.kept(selectStack);
    for (const auto id : ids) {
        statement.bind(id);
        while (statement.step())
            if (const auto stack = statement.optionalInteger(0))
                stacks.insert(*stack);
    }
    return stacks;
}

void repairOldStacks(Database& database)
{
    constexpr auto done = "stacks_sound";
    if (readMeta(database, done))
        return;
    Transaction transaction(database);
    std::set<std::int64_t> unsound;
    {
        auto statement = database.prepare(R"(SELECT s.id FROM stacks s
WHERE (SELECT COUNT(*) FROM photos p WHERE p.stack_id = s.id AND p.version_of IS NULL) < 2
    OR NOT EXISTS (SELECT 1 FROM photos p
        WHERE p.id = s.pick_photo_id AND p.stack_id = s.id AND p.version_of IS NULL))");
        while (statement.step())
            unsound.insert(statement.integer(0));
    }
    repairStacks(database, unsound);
    writeMeta(database, done, "1");
    transaction.commit();
}

void repairStacks(Database& database, const std::set<std::int64_t>& ids)
{
    for (const auto id : ids) {
        const auto members = membersOf(database, membersAsShown, id);
        if (members.size() < 2)
            dissolve(database, id);
        else
            database.run(setPickOf, members.front(), id); // the pick itself, if it is still there
    }
}

} // namespace korvo
