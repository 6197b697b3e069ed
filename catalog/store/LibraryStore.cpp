#include "catalog/store/LibraryStore.h"

#include "base/Text.h"
#include "catalog/MetadataBase.h"
#include "catalog/Stacks.h"

#include <algorithm>
#include <array>

namespace korvo {

namespace {

constexpr std::array<std::string_view, 6> metadataColumns
    = {"alt_text", "title", "caption", "keywords", "creator", "copyright"};
/// Those that the sidebar counts.
constexpr std::array<std::string_view, 3> countedColumns = {"alt_text", "dirty", "project_id"};

template <std::size_t N>
bool touches(const ChangedRows& rows, const std::array<std::string_view, N>& columns)
{
    return std::any_of(columns.begin(), columns.end(),
        [&](std::string_view column) { return rows.photoColumns.contains(column); });
}

/// Each change another connection commits gives a new number.
std::int64_t dataVersion(Catalog& catalog)
{
    return catalog.database().scalar("PRAGMA data_version");
}

} // namespace

LibraryStore::LibraryStore(
    MainThread& main, std::unique_ptr<Catalog> catalog, std::chrono::milliseconds patience)
    : main_(main), catalog_(std::move(catalog)), patience_(patience), dataVersion_(dataVersion(*catalog_)),
      counter_(main, *catalog_, patience, [this] {
          tree_.reset();
          changed.emit({.photos = {}, .tree = true});
      })
{
    load(source_);
}

const LibraryTree& LibraryStore::tree()
{
    if (!reading_ && counter_.bringUpToDate()) // photos come before their counts
        tree_.reset();
    if (!tree_)
        tree_ = treeIn(catalog_->database(), counter_.counts().value_or(LibraryCounts()));
    return *tree_;
}

std::int64_t LibraryStore::versionCount(PhotoID master) const
{
    if (!counter_.counts())
        return 0;
    const auto& versions = counter_.counts()->versions;
    const auto found = versions.find(master);
    return found == versions.end() ? 0 : found->second;
}

void LibraryStore::treeChanged()
{
    tree_.reset();
    counter_.invalidate();
}

const PhotoItem::Status& LibraryStore::status(PhotoID id) const
{
    static const PhotoItem::Status idle;
    const auto found = statuses_.find(id);
    return found == statuses_.end() ? idle : found->second;
}

void LibraryStore::setStatus(std::span<const PhotoID> ids, const PhotoItem::Status& status)
{
    std::vector<std::pair<PhotoID, PhotoItem::Status>> statuses;
    for (const PhotoID id : ids)
        statuses.emplace_back(id, status);
    setStatuses(statuses);
}

void LibraryStore::setStatuses(std::span<const std::pair<PhotoID, PhotoItem::Status>> statuses)
{
    main_.assertCurrent();
    LibraryChange change;
    for (const auto& [id, status] : statuses) {
        if (this->status(id) == status)
            continue;
        change.photos.push_back(id);
        if (status == PhotoItem::Status())
            statuses_.erase(id);
        else
            statuses_[id] = status;
    }
    if (!change.photos.empty())
        changed.emit(change);
}

void LibraryStore::chooseSource(std::optional<LibrarySource> source)
{
    main_.assertCurrent();
    const bool wasReading = isReading(); // of what will not come: its end will not tell that counts are due
    load(std::move(source));
    const bool tree = wasReading && !isReading() && counter_.isDue();
    const bool selected = !selection_.empty();
    selection_.clear();
    toSelect_.clear();
    changed.emit({.photos = {}, .list = true, .tree = tree, .selection = selected});
}

LibraryStore::Recorded LibraryStore::recorded(const std::function<void(Catalog&)>& change)
{
    Transaction transaction(catalog_->database(), writePatience);
    const ChangeRecorder recorder(catalog_->database());
    change(*catalog_);
    Recorded done{recorder.changes(), {}};
    done.rows = changedRows(catalog_->database(), done.changes);
    transaction.commit();
    return done;
}

void LibraryStore::perform(std::string title, const std::function<void(Catalog&)>& change)
{
    main_.assertCurrent();
    auto [changes, rows] = recorded(change);
    if (changes.empty())
        return;
    history_.add({.title = std::move(title),
        .changes = std::move(changes),
        .photos = rows.updated.size() + rows.inserted.size() + rows.deleted.size(),
        .added = {}});
    publish(std::move(rows));
}

void LibraryStore::adopt(std::string_view verb, AddedRows added, std::uint64_t since)
{
    main_.assertCurrent();
    if (added.areThere())
        history_.addBehind(since,
            {.title = std::string(verb) + " " + counted(added.photos.size(), "Photo"),
                .changes = {},
                .added = std::move(added)});
    reload();
}

void LibraryStore::adopt(std::string title, std::function<void(UndoWay)> retrace, std::uint64_t since)
{
    main_.assertCurrent();
    history_.addBehind(
        since, {.title = std::move(title), .changes = {}, .added = {}, .retrace = std::move(retrace)});
    changed.emit({});
}

std::optional<std::uint64_t> LibraryStore::undoStep() const
{
    const UndoStep* const step = history_.toUndo();
    return step ? std::optional(step->number) : std::nullopt;
}

std::optional<std::uint64_t> LibraryStore::redoStep() const
{
    const UndoStep* const step = history_.toRedo();
    return step ? std::optional(step->number) : std::nullopt;
}

std::optional<std::string> LibraryStore::undoTitle() const
{
    const UndoStep* const step = history_.toUndo();
    return step ? std::optional(step->title) : std::nullopt;
}

std::size_t LibraryStore::undoPhotos() const
{
    const UndoStep* const step = history_.toUndo();
    return step ? step->photos : 0;
}

std::optional<std::string> LibraryStore::redoTitle() const
{
    const UndoStep* const step = history_.toRedo();
    return step ? std::optional(step->title) : std::nullopt;
}

void LibraryStore::attempt(UndoWay way, const std::function<void()>& step)
{
    try {
        step();
    } catch (const DatabaseError& error) {
        if (error.mayPass())
            throw;
        const auto title = (way == UndoWay::back ? history_.toUndo() : history_.toRedo())->title;
        way == UndoWay::back ? history_.forgetUndo()
                             : history_.forgetRedo(); // those behind it can still be taken
        if (error.primaryCode() == SQLITE_CONSTRAINT)
            throw DatabaseError::outdated(title, way == UndoWay::back ? "undone" : "done again", error);
        throw;
    }
}

std::size_t LibraryStore::undo()
{
    main_.assertCurrent();
    const UndoStep* const step = history_.toUndo();
    if (step && step->added.areThere())
        return takeOut(step->added);
    if (step && step->retrace) {
        step->retrace(UndoWay::back);
        history_.undone();
        changed.emit({});
    } else if (step)
        takeStep(step->changes.inverted(), UndoWay::back);
    return 0;
}

void LibraryStore::redo()
{
    main_.assertCurrent();
    const UndoStep* const step = history_.toRedo();
    if (step && step->retrace) {
        step->retrace(UndoWay::forth);
        history_.redone();
        changed.emit({});
    } else if (step)
        takeStep(step->changes, UndoWay::forth);
}

std::size_t LibraryStore::takeOut(const AddedRows& added)
{
    Recorded taken;
    Changeset redo;
    attempt(UndoWay::back, [&] {
        Transaction transaction(catalog_->database(), writePatience);
        taken = recorded([&](Catalog& catalog) { catalog.takeOut(added); });
        redo = taken.changes.inverted();
        transaction.commit();
    });
    history_.undone(std::move(redo));
    const auto photos = taken.rows.deleted.size();
    publish(std::move(taken.rows));
    return photos;
}

void LibraryStore::takeStep(const Changeset& changes, UndoWay way)
{
    const auto touched = changedRows(catalog_->database(), changes);
    ChangedRows rows;
    attempt(way, [&] { rows = replay(changes, touched); });
    way == UndoWay::back ? history_.undone() : history_.redone();
    const bool bringsBack = way == UndoWay::back && !touched.inserted.empty();
    publish(std::move(rows), bringsBack ? touched.inserted : touched.updated);
}

ChangedRows LibraryStore::replay(const Changeset& changes, const ChangedRows& touched)
{
    Database& database = catalog_->database();
    Transaction transaction(database, writePatience);
    const ChangeRecorder recorder(database);
    if (touches(touched, metadataColumns))
        keepMetadataBase(database, touched.updated);
    apply(database, changes);
    // The file may have been written meanwhile; only a further write makes sure that it holds these values.
    if (touches(touched, metadataColumns))
        catalog_->markDirty(touched.updated);
    // Others may have stacked the photos anew: their stacks lose them now.
    if (touched.stacks)
        repairStacks(database, changedRows(database, recorder.changes()).stackIDs);
    auto rows = changedRows(database, recorder.changes());
    transaction.commit();
    // What others had brought to the same state already may still be shown in its old one.
    rows.updated.insert(rows.updated.end(), touched.updated.begin(), touched.updated.end());
    std::sort(rows.updated.begin(), rows.updated.end());
    rows.updated.erase(std::unique(rows.updated.begin(), rows.updated.end()), rows.updated.end());
    return rows;
}

void LibraryStore::photosChanged(std::span<const PhotoID> ids)
{
    main_.assertCurrent();
    ChangedRows rows;
    rows.updated.assign(ids.begin(), ids.end());
    if (!ordering_)
        return publish(std::move(rows));
    // Batches may come faster than a long list is ordered, which thus would never end if each began it anew.
    merge(late_, rows);
    if (reading_)
        merge(reading_->since, rows);
    changed.emit({.photos = rows.updated});
}

void LibraryStore::reload()
{
    main_.assertCurrent();
    const auto first = firstSelectedPosition();
    if (reading_)
        reading_->isOutdated = true;
    const bool shown = !reading_ && load(source_) == Shown::yes;
    treeChanged();
    const bool selected = shown && repairSelection(first);
    changed.emit({.photos = {}, .list = shown, .tree = true, .selection = selected});
}

void LibraryStore::reloadIfChangedElsewhere()
{
    if (const auto version = dataVersion(*catalog_); version != dataVersion_) {
        reload();
        dataVersion_ = version;
    }
}

void LibraryStore::publish(ChangedRows rows, std::span<const PhotoID> select)
{
    merge(rows, std::exchange(late_, {}));
    LibraryChange change;
    change.photos = rows.updated;
    change.metadata = touches(rows, metadataColumns);
    change.tree
        = rows.tree || !rows.inserted.empty() || !rows.deleted.empty() || touches(rows, countedColumns);
    if (change.tree)
        treeChanged();
    const auto first = firstSelectedPosition();
    const bool wasReading = isReading();
    if (!follow([&] { change.list = updateList(rows); }))
        change.list = true; // it may be half done
    change.tree |= wasReading && !isReading() && counter_.isDue();
    const auto before = selection_;
    if (!select.empty())
        selection_.assign(select.begin(), select.end());
    if (!select.empty() && (reading_ || ordering_))
        toSelect_ = selection_;
    if (change.list || !select.empty())
        repairSelection(first);
    change.selection = selection_ != before;
    changed.emit(change);
}

} // namespace korvo
