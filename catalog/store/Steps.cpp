#include "catalog/store/Steps.h"

#include "catalog/MetadataBase.h"
#include "catalog/Stacks.h"

#include <algorithm>
#include <array>

namespace korvo {

bool touchesMetadata(const ChangedRows& rows)
{
    constexpr std::array<std::string_view, 6> columns
        = {"alt_text", "title", "caption", "keywords", "creator", "copyright"};
    return std::any_of(columns.begin(), columns.end(),
        [&](std::string_view column) { return rows.photoColumns.contains(column); });
}

std::int64_t dataVersion(Catalog& catalog)
{
    return catalog.database().scalar("PRAGMA data_version");
}

StepDone madeBeside(Catalog& catalog, const MakeStep& making)
{
    auto own = catalog.beside();
    const auto others = dataVersion(own);
    const auto before = dataVersion(catalog);
    auto done = making(own, Database::busyPatience);
    const auto after = dataVersion(catalog);
    if (dataVersion(own) == others)
        done.seen = {before, after};
    return done;
}

StepDone madeChange(
    Catalog& catalog, std::chrono::milliseconds patience, const std::function<void(Catalog&)>& change)
{
    Transaction transaction(catalog.database(), patience);
    const LongWrite mayBe;
    const ChangeRecorder recorder(catalog.database());
    change(catalog);
    StepDone done{.changes = recorder.changes(), .rows = {}};
    done.rows = changedRows(catalog.database(), done.changes);
    transaction.commit();
    return done;
}

StepDone takenOut(Catalog& catalog, std::chrono::milliseconds patience, const AddedRows& added)
{
    Transaction transaction(catalog.database(), patience);
    const LongWrite mayBe;
    auto done = madeChange(catalog, patience, [&](Catalog&) { catalog.takeOut(added); });
    done.changes = done.changes.inverted();
    transaction.commit();
    return done;
}

namespace {

/// Makes the changes, which touch these rows, again, and returns what really happened.
ChangedRows replay(Catalog& catalog, const Changeset& changes, const ChangedRows& touched)
{
    Database& database = catalog.database();
    const ChangeRecorder recorder(database);
    if (touchesMetadata(touched))
        keepMetadataBase(database, touched.updated);
    apply(database, changes);
    // The file may have been written meanwhile; only a further write makes sure that it holds these values.
    if (touchesMetadata(touched))
        catalog.markDirty(touched.updated);
    // Others may have stacked the photos anew: their stacks lose them now.
    if (touched.stacks)
        repairStacks(database, changedRows(database, recorder.changes()).stackIDs);
    return changedRows(database, recorder.changes());
}

} // namespace

StepDone retraced(Catalog& catalog, std::chrono::milliseconds patience, const Changeset& changes, UndoWay way)
{
    const auto again = way == UndoWay::back ? changes.inverted() : changes;
    auto touched = changedRows(catalog.database(), again);
    Transaction transaction(catalog.database(), patience);
    const LongWrite mayBe;
    auto rows = replay(catalog, again, touched);
    transaction.commit();
    // What others had brought to the same state already may still be shown in its old one.
    rows.updated.insert(rows.updated.end(), touched.updated.begin(), touched.updated.end());
    std::sort(rows.updated.begin(), rows.updated.end());
    rows.updated.erase(std::unique(rows.updated.begin(), rows.updated.end()), rows.updated.end());
    const bool bringsBack = way == UndoWay::back && !touched.inserted.empty();
    return {.changes = {},
        .rows = std::move(rows),
        .toSelect = std::move(bringsBack ? touched.inserted : touched.updated)};
}

} // namespace korvo
