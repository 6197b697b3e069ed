#include "catalog/LibraryStore.h"

#include <algorithm>
#include <array>
#include <unordered_set>

namespace korvo {

namespace {

using Kind = LibrarySource::Kind;

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

/// The ids without repetitions: several members of a collapsed stack are all shown as its pick.
std::vector<PhotoID> onceEach(std::vector<PhotoID> ids)
{
    std::unordered_set<PhotoID> seen;
    std::erase_if(ids, [&](PhotoID id) { return !seen.insert(id).second; });
    return ids;
}

/// The photos that a source lists; none, and the reason, for one that cannot be listed.
template <typename Ask>
std::vector<PhotoItem> listedBy(Ask ask, std::optional<std::string>& fault)
{
    try {
        return ask();
    } catch (const SmartAlbumError& error) {
        fault = error.what(); // the album stays to be mended in the editor, and lists nothing till then
    } catch (const NotFoundError& error) {
        fault = error.what(); // it was deleted while it was shown; undo may bring it back
    }
    return {};
}

/// Each change another connection commits gives a new number.
std::int64_t dataVersion(Catalog& catalog)
{
    return catalog.database().scalar("PRAGMA data_version");
}

} // namespace

LibraryStore::LibraryStore(MainThread& main, std::unique_ptr<Catalog> catalog)
    : main_(main), catalog_(std::move(catalog)), dataVersion_(dataVersion(*catalog_))
{
    list_.setStacks(catalog_->stacks());
    load(source_);
}

void LibraryStore::load(std::optional<LibrarySource> source)
{
    std::optional<std::string> fault;
    auto items = listedBy([&] { return catalog_->photos(source); }, fault);
    list_.assign(std::move(items));
    source_ = std::move(source);
    sourceFault_ = std::move(fault);
}

const LibraryTree& LibraryStore::tree()
{
    if (!tree_)
        tree_ = catalog_->tree();
    return *tree_;
}

void LibraryStore::chooseSource(std::optional<LibrarySource> source)
{
    main_.assertCurrent();
    load(std::move(source));
    const bool selected = !selection_.empty();
    selection_.clear();
    changed.emit({.photos = {}, .list = true, .selection = selected});
}

void LibraryStore::arrange(std::optional<SortKey> key, std::optional<GridFilter> filter)
{
    main_.assertCurrent();
    const auto first = firstSelectedPosition();
    list_.arrange(key, filter);
    changed.emit({.photos = {}, .list = true, .selection = repairSelection(first)});
}

void LibraryStore::narrow(std::span<const SmartAlbumRules> rules)
{
    main_.assertCurrent();
    const auto first = firstSelectedPosition();
    list_.narrow(rules);
    changed.emit({.photos = {}, .list = true, .selection = repairSelection(first)});
}

void LibraryStore::select(std::vector<PhotoID> ids)
{
    main_.assertCurrent();
    if (ids == selection_)
        return;
    selection_ = std::move(ids);
    changed.emit({.photos = {}, .selection = true});
}

void LibraryStore::perform(std::string title, const std::function<void(Catalog&)>& change)
{
    main_.assertCurrent();
    Changeset changes;
    {
        Transaction transaction(catalog_->database());
        const ChangeRecorder recorder(catalog_->database());
        change(*catalog_);
        changes = recorder.changes();
        transaction.commit();
    }
    if (changes.empty())
        return;
    const auto rows = changedRows(catalog_->database(), changes);
    history_.add({std::move(title), std::move(changes)});
    publish(rows);
}

std::optional<std::string> LibraryStore::undoTitle() const
{
    const UndoStep* const step = history_.toUndo();
    return step ? std::optional(step->title) : std::nullopt;
}

std::optional<std::string> LibraryStore::redoTitle() const
{
    const UndoStep* const step = history_.toRedo();
    return step ? std::optional(step->title) : std::nullopt;
}

void LibraryStore::undo()
{
    main_.assertCurrent();
    const UndoStep* const step = history_.toUndo();
    if (!step)
        return;
    const auto inverse = step->changes.inverted();
    const auto touched = changedRows(catalog_->database(), inverse);
    ChangedRows rows;
    try {
        rows = replay(inverse, touched);
    } catch (const DatabaseError&) { // it can never be undone; the steps before it still may
        history_.forgetUndo();
        throw;
    }
    history_.undone();
    publish(rows, touched.inserted.empty() ? touched.updated : touched.inserted);
}

void LibraryStore::redo()
{
    main_.assertCurrent();
    const UndoStep* const step = history_.toRedo();
    if (!step)
        return;
    const auto touched = changedRows(catalog_->database(), step->changes);
    ChangedRows rows;
    try {
        rows = replay(step->changes, touched);
    } catch (const DatabaseError&) {
        history_.forgetRedo();
        throw;
    }
    history_.redone();
    publish(rows, touched.updated);
}

ChangedRows LibraryStore::replay(const Changeset& changes, const ChangedRows& touched)
{
    Database& database = catalog_->database();
    Transaction transaction(database);
    const ChangeRecorder recorder(database);
    if (touches(touched, metadataColumns))
        catalog_->keepMetadataBase(touched.updated);
    apply(database, changes);
    // The file may have been written meanwhile; only a further write makes sure that it holds these values.
    if (touches(touched, metadataColumns))
        catalog_->markDirty(touched.updated);
    // Others may have stacked the photos anew: their stacks lose them now.
    if (touched.stacks)
        catalog_->repairStacks(changedRows(database, recorder.changes()).stackIDs);
    const auto happened = recorder.changes();
    transaction.commit();
    auto rows = changedRows(database, happened);
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
    publish(rows);
}

void LibraryStore::reload()
{
    main_.assertCurrent();
    const auto first = firstSelectedPosition();
    list_.setStacks(catalog_->stacks());
    load(source_);
    tree_.reset();
    changed.emit({.photos = {}, .list = true, .tree = true, .selection = repairSelection(first)});
}

void LibraryStore::reloadIfChangedElsewhere()
{
    if (const auto version = dataVersion(*catalog_); version != dataVersion_) {
        reload();
        dataVersion_ = version;
    }
}

void LibraryStore::publish(const ChangedRows& rows, std::span<const PhotoID> select)
{
    LibraryChange change;
    change.photos = rows.updated;
    change.metadata = touches(rows, metadataColumns);
    change.tree
        = rows.tree || !rows.inserted.empty() || !rows.deleted.empty() || touches(rows, countedColumns);
    if (change.tree)
        tree_.reset();
    const auto first = firstSelectedPosition();
    change.list = updateList(rows);
    if (rows.stacks) {
        list_.setStacks(catalog_->stacks());
        change.list = true;
    }
    const auto before = selection_;
    if (!select.empty())
        selection_.assign(select.begin(), select.end());
    repairSelection(first);
    change.selection = selection_ != before;
    changed.emit(change);
}

bool LibraryStore::mustReload(const ChangedRows& rows) const
{
    if (!source_)
        return false;
    const bool renamed = rows.photoColumns.contains("filename");
    switch (source_->kind) {
    case Kind::album:
        return renamed || rows.albums.contains(source_->id);
    case Kind::smartAlbum:
        return rows.smartAlbums.contains(source_->id);
    case Kind::recentlyAdded:
        return renamed || !rows.inserted.empty() || !rows.deleted.empty();
    case Kind::project:
    case Kind::person:
    case Kind::faces:
        return rows.tree;
    default:
        return false;
    }
}

bool LibraryStore::updateList(const ChangedRows& rows)
{
    if (mustReload(rows)) {
        load(source_);
        return true;
    }
    if (sourceFault_)
        return false;
    auto ids = rows.updated;
    ids.insert(ids.end(), rows.inserted.begin(), rows.inserted.end());
    std::optional<std::string> fault;
    auto current = listedBy([&] { return catalog_->photosOfSource(source_, ids); }, fault);
    if (fault) { // another process has deleted it or made it unreadable
        load(source_);
        return true;
    }
    // The members of these are not decided by the photos' own values.
    if (source_ && (source_->kind == Kind::album || source_->kind == Kind::recentlyAdded))
        std::erase_if(current, [this](const PhotoItem& item) { return !list_.find(item.id); });
    std::unordered_set<PhotoID> gone;
    for (const auto& touched : {rows.updated, rows.deleted})
        for (const PhotoID id : touched)
            if (list_.find(id))
                gone.insert(id);
    for (const auto& item : current)
        gone.erase(item.id);
    return list_.update(std::move(current), gone);
}

std::optional<std::size_t> LibraryStore::firstSelectedPosition() const
{
    return selection_.empty() ? std::nullopt : list_.shownPosition(selection_.front());
}

bool LibraryStore::repairSelection(std::optional<std::size_t> firstPosition)
{
    const auto before = selection_;
    std::vector<PhotoID> kept;
    for (const PhotoID id : selection_)
        if (const auto shownID = list_.shownFor(id))
            kept.push_back(*shownID);
    selection_ = onceEach(std::move(kept));
    const auto& shown = list_.shown();
    if (selection_.empty() && firstPosition && !shown.empty())
        selection_ = {list_.items()[shown[std::min(*firstPosition, shown.size() - 1)]].id};
    return selection_ != before;
}

} // namespace korvo
