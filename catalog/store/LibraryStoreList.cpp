#include "base/UserError.h"
#include "catalog/SourceQuery.h"
#include "catalog/Stacks.h"
#include "catalog/store/LibraryStore.h"

#include <algorithm>
#include <unordered_set>

namespace korvo {

namespace {

using Kind = LibrarySource::Kind;

} // namespace

void LibraryStore::giveUp(std::unique_ptr<ListReading> reading)
{
    try {
        reading->leaveTo(left_);
    } catch (...) {
        // No thread could be begun to end it; the list is read when others' changes are looked for.
        dataVersion_ = -1;
        throw;
    }
}

LibraryStore::Shown LibraryStore::load(std::optional<LibrarySource> source)
{
    auto reading = std::make_unique<ListReading>(
        main_, *catalog_, source, list_.arrangement(), [this] { listArrived(); });
    std::optional<ListOfSource> read;
    if (reading->waitFor(patience_))
        read = reading->take();
    if (reading_)
        giveUp(std::exchange(reading_, nullptr));
    reading_ = read ? nullptr : std::move(reading);
    if (source != source_) {
        source_ = std::move(source);
        isListed_ = false;
        toSelect_.clear();
    }
    if (read)
        show(*std::move(read), {});
    else if (!isListed_) // nothing can be done with photos that are of another source
        replaceList(PhotoList());
    return reading_ ? Shown::later : Shown::yes;
}

void LibraryStore::show(ListOfSource read, const ChangedRows& since)
{
    replaceList(std::move(read.list));
    sourceFault_ = std::move(read.fault);
    isListed_ = true;
    follow([&] { updateRows(since); });
    if (!list_.isArranged()) // the wish came too late
        order(patience_);
}

void LibraryStore::replaceList(PhotoList list)
{
    ordering_.reset();
    late_ = {};
    list.wish(list_.arrangement());
    discard(std::exchange(list_, std::move(list)));
}

void LibraryStore::discard(PhotoList list)
{
    if (list.items().size() > bounds_.photosListed)
        freeElsewhere(main_, left_, std::move(list));
}

void LibraryStore::listArrived()
{
    main_.assertCurrent();
    const auto next = placeAfterSelection();
    const auto reading = std::move(reading_);
    try {
        show(reading->take(), reading->since);
    } catch (const std::exception& error) { // it is read again when others' changes are looked for
        sourceFault_ = textForUser(error);
        dataVersion_ = -1;
    }
    const bool selected = repairSelection(next);
    changed.emit({.photos = {}, .list = true, .tree = counter_.isDue(), .selection = selected});
    if (reading->isOutdated && !reading_)
        reload();
}

void LibraryStore::arrange(std::optional<SortKey> key, std::optional<GridFilter> filter)
{
    arrange({key, filter, list_.arrangement().narrowing});
}

void LibraryStore::narrow(std::span<const SmartAlbumRules> rules)
{
    arrange({list_.sortKey(), list_.filter(), {rules.begin(), rules.end()}});
}

void LibraryStore::arrange(ListArrangement as)
{
    main_.assertCurrent();
    if (as == list_.arrangement())
        return;
    const auto late = endOrdering(); // which looks at what is wished
    list_.wish(std::move(as));
    if (reading_)
        reading_->arrange(list_.arrangement());
    const auto next = placeAfterSelection();
    follow([&] { updateRows(late); });
    const auto shown = order(patience_);
    if (shown == Shown::later && late.updated.empty())
        return;
    const bool selected = repairSelection(next);
    changed.emit({.photos = late.updated, .list = true, .selection = selected});
}

ChangedRows LibraryStore::endOrdering()
{
    ordering_.reset();
    return std::exchange(late_, {});
}

LibraryStore::Shown LibraryStore::order(std::chrono::milliseconds patience)
{
    if (list_.items().size() <= bounds_.photosListed) {
        list_.show(list_.ordered());
        return Shown::yes;
    }
    ordering_ = std::make_unique<Background<PhotoList::Order>>(
        main_, [this](const std::stop_token& stop) { return list_.ordered(stop); },
        [this] { orderArrived(); });
    if (!ordering_->waitFor(patience))
        return Shown::later;
    list_.show(std::exchange(ordering_, nullptr)->take());
    return Shown::yes;
}

void LibraryStore::orderArrived()
{
    main_.assertCurrent();
    const auto next = placeAfterSelection();
    list_.show(std::exchange(ordering_, nullptr)->take());
    const auto late = std::exchange(late_, {});
    follow([&] { updateRows(late); });
    const bool selected = repairSelection(next);
    changed.emit({.photos = late.updated, .list = true, .selection = selected});
}

bool LibraryStore::follow(const std::function<void()>& step)
{
    try {
        step();
        return true;
    } catch (const std::exception&) { // the list is read again when others' changes are looked for
        dataVersion_ = -1;
        return false;
    }
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
    // Reading all again keeps nobody waiting.
    if (rows.updated.size() + rows.inserted.size() > bounds_.photosListed)
        return load(source_) == Shown::yes;
    if (reading_)
        merge(reading_->since, rows);
    if (mustReload(rows)) {
        if (reading_)
            reading_->isOutdated = true;
        else if (load(source_) == Shown::yes)
            return true;
    }
    if (!isListed_)
        return rows.stacks;
    // One that is begun again is not waited for: the user may be holding a key down.
    const auto patience = ordering_ ? std::chrono::milliseconds(0) : patience_;
    ordering_.reset(); // which looks at what is changed now
    const bool changesRows = updateRows(rows);
    const bool isReordered = !list_.isArranged() && order(patience) == Shown::yes;
    return changesRows || isReordered;
}

bool LibraryStore::updateRows(const ChangedRows& rows)
{
    const bool changesPhotos = !sourceFault_ && updatePhotos(rows);
    if (rows.stacks)
        list_.updateStacks(rows.stackIDs, stacksIn(catalog_->database(), rows.stackIDs));
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
    if (rows.updated.empty() && rows.inserted.empty() && rows.deleted.empty())
        return false;
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

} // namespace korvo
