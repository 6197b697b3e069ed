#include "catalog/store/LibraryStore.h"

#include <algorithm>
#include <array>

namespace korvo {

namespace {

/// Whether photos got other values of what the sidebar counts.
bool touchesCounts(const ChangedRows& rows)
{
    constexpr std::array<std::string_view, 3> columns = {"alt_text", "dirty", "project_id"};
    return std::any_of(columns.begin(), columns.end(),
        [&](std::string_view column) { return rows.photoColumns.contains(column); });
}

} // namespace

LibraryStore::LibraryStore(MainThread& main, std::unique_ptr<Catalog> catalog,
    std::chrono::milliseconds patience, const StoreBounds& bounds)
    : main_(main), catalog_(std::move(catalog)), patience_(patience), bounds_(bounds),
      dataVersion_(dataVersion(*catalog_)), counter_(main, *catalog_, patience, [this] {
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
    const auto next = placeAfterSelection();
    if (reading_)
        reading_->isOutdated = true;
    const bool shown = !reading_ && load(source_) == Shown::yes;
    treeChanged();
    const bool selected = shown && repairSelection(next);
    changed.emit({.photos = {}, .list = shown, .tree = true, .selection = selected});
}

void LibraryStore::reloadIfChangedElsewhere()
{
    if (const auto version = dataVersion(*catalog_); version != dataVersion_) {
        reload();
        dataVersion_ = version;
    }
}

void LibraryStore::publish(ChangedRows rows, std::span<const PhotoID> select, std::size_t takenOut)
{
    merge(rows, std::exchange(late_, {}));
    LibraryChange change;
    change.takenOut = takenOut;
    change.photos = rows.updated;
    change.metadata = touchesMetadata(rows);
    change.tree = rows.tree || !rows.inserted.empty() || !rows.deleted.empty() || touchesCounts(rows);
    if (change.tree)
        treeChanged();
    const auto next = placeAfterSelection();
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
        repairSelection(next);
    change.selection = selection_ != before;
    changed.emit(change);
}

} // namespace korvo
