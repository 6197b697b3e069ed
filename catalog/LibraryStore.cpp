#include "catalog/LibraryStore.h"

#include "base/Text.h"

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

/// Each change another connection commits gives a new number.
std::int64_t dataVersion(Catalog& catalog)
{
    return catalog.database().scalar("PRAGMA data_version");
}

} // namespace

LibraryStore::LibraryStore(
    MainThread& main, std::unique_ptr<Catalog> catalog, std::chrono::milliseconds patience)
    : main_(main), catalog_(std::move(catalog)), patience_(patience), dataVersion_(dataVersion(*catalog_))
{
    load(source_);
}

LibraryStore::Shown LibraryStore::load(std::optional<LibrarySource> source)
{
    auto reader = std::make_unique<Reading<ReadList>>(
        main_, *catalog_,
        [source, like = list_.emptied()](Database& database, const std::stop_token& stop) {
            return readList(database, source, like, stop);
        },
        [this] { listArrived(); });
    std::optional<ReadList> read;
    if (reader->waitFor(patience_))
        read = reader->take();
    reader_ = read ? nullptr : std::move(reader);
    sinceReading_.clear();
    readAgain_ = false;
    if (source != source_) {
        source_ = std::move(source);
        isListed_ = false;
        toSelect_.clear();
    }
    if (read)
        show(*std::move(read));
    else if (!isListed_) // nothing can be done with photos that are of another source
        discard(std::exchange(list_, list_.emptied()));
    return reader_ ? Shown::later : Shown::yes;
}

void LibraryStore::show(ReadList read)
{
    read.list.takeOverFrom(list_);
    discard(std::exchange(list_, std::move(read.list)));
    sourceFault_ = std::move(read.fault);
    isListed_ = true;
}

void LibraryStore::discard(PhotoList list)
{
    constexpr std::size_t fewEnough = 10'000; // to be freed at once
    if (list.items().size() > fewEnough)
        discarding_ = runInBackground(main_,
            [old = std::make_shared<PhotoList>(std::move(list))](const Task::Context&) mutable { old = {}; });
}

void LibraryStore::listArrived()
{
    main_.assertCurrent();
    const auto first = firstSelectedPosition();
    const auto reader = std::move(reader_);
    try {
        show(reader->take());
        for (const auto& rows : std::exchange(sinceReading_, {}))
            updateList(rows);
    } catch (const std::exception& error) { // it is read again when others' changes are looked for
        sourceFault_ = error.what();
        dataVersion_ = -1;
    }
    const bool selected = repairSelection(first);
    changed.emit({.photos = {}, .list = true, .selection = selected});
    if (readAgain_ && !reader_)
        reload();
}

const LibraryTree& LibraryStore::tree()
{
    if (countAgain_ && !counting_)
        count();
    if (!tree_)
        tree_ = treeIn(catalog_->database(), counts_);
    return *tree_;
}

void LibraryStore::treeChanged()
{
    tree_.reset();
    countAgain_ = true;
}

void LibraryStore::count()
{
    countAgain_ = false;
    counting_ = std::make_unique<Reading<LibraryCounts>>(
        main_, *catalog_, [](Database& database, const std::stop_token&) { return countsIn(database); },
        [this] { countsArrived(); });
    if (counting_->waitFor(patience_)) {
        const auto counting = std::move(counting_);
        counts_ = counting->take();
        tree_.reset();
    }
}

void LibraryStore::countsArrived()
{
    const auto counting = std::move(counting_);
    const auto before = counts_;
    try {
        counts_ = counting->take();
    } catch (const DatabaseError&) { // the counts of before stay; the next change counts again
    }
    if (countAgain_)
        count();
    if (before != counts_) {
        tree_.reset();
        changed.emit({.photos = {}, .tree = true});
    }
}

void LibraryStore::chooseSource(std::optional<LibrarySource> source)
{
    main_.assertCurrent();
    load(std::move(source));
    const bool selected = !selection_.empty();
    selection_.clear();
    toSelect_.clear();
    changed.emit({.photos = {}, .list = true, .selection = selected});
}

void LibraryStore::arrange(std::optional<SortKey> key, std::optional<GridFilter> filter)
{
    main_.assertCurrent();
    if (key == list_.sortKey() && filter == list_.filter())
        return; // a list that is being read is not begun anew
    const auto first = firstSelectedPosition();
    list_.arrange(key, filter);
    arranged(first);
}

void LibraryStore::narrow(std::span<const SmartAlbumRules> rules)
{
    main_.assertCurrent();
    const auto first = firstSelectedPosition();
    list_.narrow(rules);
    arranged(first);
}

void LibraryStore::arranged(std::optional<std::size_t> firstPosition)
{
    if (reader_) // into a list that is arranged as this one was
        load(source_);
    const bool selected = repairSelection(firstPosition);
    changed.emit({.photos = {}, .list = true, .selection = selected});
}

void LibraryStore::select(std::vector<PhotoID> ids)
{
    main_.assertCurrent();
    toSelect_.clear();
    if (!isListed_)
        toSelect_ = std::move(ids);
    else if (ids != selection_) {
        selection_ = std::move(ids);
        changed.emit({.photos = {}, .selection = true});
    }
}

Changeset LibraryStore::recorded(const std::function<void(Catalog&)>& change)
{
    Transaction transaction(catalog_->database(), writePatience);
    const ChangeRecorder recorder(catalog_->database());
    change(*catalog_);
    auto changes = recorder.changes();
    transaction.commit();
    return changes;
}

void LibraryStore::perform(std::string title, const std::function<void(Catalog&)>& change)
{
    main_.assertCurrent();
    auto changes = recorded(change);
    if (changes.empty())
        return;
    const auto rows = changedRows(catalog_->database(), changes);
    history_.add({.title = std::move(title), .changes = std::move(changes), .added = {}});
    publish(rows);
}

void LibraryStore::adopt(std::string_view verb, AddedRows added)
{
    main_.assertCurrent();
    if (added.areThere())
        history_.add({.title = std::string(verb) + " " + counted(added.photos.size(), "Photo"),
            .changes = {},
            .added = std::move(added)});
    reload();
}

std::optional<std::uint64_t> LibraryStore::undoStep() const
{
    const UndoStep* const step = history_.toUndo();
    return step ? std::optional(step->number) : std::nullopt;
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
    if (step->added.areThere()) {
        const auto taken = recorded([&](Catalog& catalog) { catalog.takeOut(step->added); });
        history_.undone(taken.inverted());
        return publish(changedRows(catalog_->database(), taken));
    }
    const auto inverse = step->changes.inverted();
    const auto touched = changedRows(catalog_->database(), inverse);
    ChangedRows rows;
    try {
        rows = replay(inverse, touched);
    } catch (const DatabaseError& error) {
        if (!error.mayPass()) // the steps before it still may be undone
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
    } catch (const DatabaseError& error) {
        if (!error.mayPass())
            history_.forgetRedo();
        throw;
    }
    history_.redone();
    publish(rows, touched.updated);
}

ChangedRows LibraryStore::replay(const Changeset& changes, const ChangedRows& touched)
{
    Database& database = catalog_->database();
    Transaction transaction(database, writePatience);
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
    readAgain_ = reader_ != nullptr;
    const bool shown = !readAgain_ && load(source_) == Shown::yes;
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

void LibraryStore::publish(const ChangedRows& rows, std::span<const PhotoID> select)
{
    LibraryChange change;
    change.photos = rows.updated;
    change.metadata = touches(rows, metadataColumns);
    change.tree
        = rows.tree || !rows.inserted.empty() || !rows.deleted.empty() || touches(rows, countedColumns);
    if (change.tree)
        treeChanged();
    const auto first = firstSelectedPosition();
    change.list = updateList(rows);
    const auto before = selection_;
    if (!select.empty())
        selection_.assign(select.begin(), select.end());
    if (!select.empty() && reader_)
        toSelect_ = selection_;
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
    if (reader_)
        sinceReading_.push_back(rows);
    if (mustReload(rows)) {
        readAgain_ = reader_ != nullptr;
        if (!readAgain_ && load(source_) == Shown::yes)
            return true;
    }
    const bool changesPhotos = isListed_ && !sourceFault_ && updatePhotos(rows);
    if (rows.stacks && isListed_)
        list_.setStacks(catalog_->stacks());
    return changesPhotos || rows.stacks;
}

std::optional<std::vector<PhotoItem>> LibraryStore::listedOf(std::span<const PhotoID> ids)
{
    try {
        return catalog_->photosOfSource(source_, ids);
    } catch (const SmartAlbumError&) { // another process has made it unreadable
    } catch (const NotFoundError&) { // or deleted it
    }
    return std::nullopt;
}

bool LibraryStore::updatePhotos(const ChangedRows& rows)
{
    auto ids = rows.updated;
    ids.insert(ids.end(), rows.inserted.begin(), rows.inserted.end());
    auto current = listedOf(ids);
    if (!current) // the source can no longer be listed
        return load(source_) == Shown::yes;
    // The members of these are not decided by the photos' own values.
    if (listedBy(source_) == ListedBy::hand)
        std::erase_if(*current, [this](const PhotoItem& item) { return !list_.find(item.id); });
    std::unordered_set<PhotoID> gone;
    for (const auto& touched : {rows.updated, rows.deleted})
        for (const PhotoID id : touched)
            if (list_.find(id))
                gone.insert(id);
    for (const auto& item : *current)
        gone.erase(item.id);
    return list_.update(*std::move(current), gone);
}

std::optional<std::size_t> LibraryStore::firstSelectedPosition() const
{
    return selection_.empty() ? std::nullopt : list_.shownPosition(selection_.front());
}

bool LibraryStore::repairSelection(std::optional<std::size_t> firstPosition)
{
    const auto before = selection_;
    if (!reader_ && !toSelect_.empty())
        selection_ = std::exchange(toSelect_, {});
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
