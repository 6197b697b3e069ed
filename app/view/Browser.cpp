#include "app/view/Browser.h"

#include "app/view/Survey.h"

#include <algorithm>
#include <functional>
#include <unordered_set>
#include <utility>

namespace korvo {

namespace {

PhotoID shownAt(const PhotoList& list, std::size_t place)
{
    return list.items()[list.shown()[place]].id;
}

} // namespace

Browser::Browser(LibraryStore& store)
    : store_(store),
      storeChanged_(store.changed.connect([this](const LibraryChange& change) { storeChanged(change); })),
      stepEnded_(store.stepEnded.connect([this](StepOutcome) { stepEnded(); }))
{ }

void Browser::setMode(ViewMode mode)
{
    if (mode == mode_ || (mode != ViewMode::grid && store_.list().shown().empty()))
        return;
    if (!current_ && mode != ViewMode::grid)
        setCurrent(shownAt(store_.list(), 0));
    if (mode == ViewMode::survey)
        setCurrent(*current_); // it may be a cursor that selects nothing
    mode_ = mode;
    keepSurvey();
    changed.emit();
}

const PhotoItem* Browser::currentItem() const
{
    return current_ ? store_.list().find(*current_) : nullptr;
}

void Browser::setCurrent(PhotoID id)
{
    const auto place = store_.list().shownPosition(id);
    if (!place)
        return;
    const bool moved = current_ != id;
    current_ = id;
    place_ = *place;
    const auto& selected = store_.selection();
    if (std::find(selected.begin(), selected.end(), id) == selected.end())
        store_.select({id});
    if (moved)
        changed.emit();
}

void Browser::step(std::ptrdiff_t places)
{
    const auto count = std::ssize(store_.list().shown());
    if (count == 0)
        return;
    const auto from = place();
    const auto to = from ? static_cast<std::ptrdiff_t>(*from) + places : 0;
    setCurrent(
        shownAt(store_.list(), static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(to, 0, count - 1))));
}

std::optional<PhotoID> Browser::after(std::span<const PhotoID> ids) const
{
    const std::unordered_set<PhotoID> marked(ids.begin(), ids.end());
    const auto behindLast = [&](const auto& order, const auto& idOf) -> std::optional<PhotoID> {
        const auto isMarked = [&](PhotoID id) { return marked.contains(id); };
        const auto behind = std::ranges::find_if(order.rbegin(), order.rend(), isMarked, idOf).base();
        return behind == order.begin() || behind == order.end() ? std::nullopt : std::optional(idOf(*behind));
    };
    if (mode_ == ViewMode::survey)
        return behindLast(surveyed(store_), std::identity());
    const auto& list = store_.list();
    return behindLast(list.shown(), [&](std::uint32_t position) { return list.items()[position].id; });
}

/// What was taken away, such as the album that was just made, lists nothing: all photos are better.
void Browser::leaveGoneSource()
{
    try {
        if (store_.source())
            store_.catalog().requireSource(*store_.source());
    } catch (const NotFoundError&) {
        store_.chooseSource(std::nullopt);
    }
}

void Browser::stepEnded()
{
    if (const auto together = std::exchange(together_, {}); together && mode_ == ViewMode::survey)
        selectShown(*together);
    leaveGoneSource();
}

void Browser::undo()
{
    undoTogether();
    leaveGoneSource();
}

void Browser::undoTogether()
{
    if (mode_ != ViewMode::survey)
        return store_.undo();
    auto together = store_.selection();
    std::vector<PhotoID> touched;
    const auto connection = store_.changed.connect([&](const LibraryChange& change) {
        touched.insert(touched.end(), change.photos.begin(), change.photos.end());
    });
    store_.undo();
    if (store_.longStep()) {
        together_ = std::move(together); // what comes back of so many is no survey
        return;
    }
    const auto& cameBack = touched.empty() ? store_.selection() : touched;
    if (cameBack.size() <= mostSurveyed) // else there is no survey in it
        together.insert(together.end(), cameBack.begin(), cameBack.end());
    selectShown(std::move(together));
}

void Browser::redo()
{
    const auto together = store_.selection();
    store_.redo();
    if (mode_ == ViewMode::survey && store_.longStep())
        together_ = together;
    else if (mode_ == ViewMode::survey)
        selectShown(together);
    leaveGoneSource();
}

bool Browser::listsVersions() const
{
    return store_.source() && store_.source()->kind == LibrarySource::Kind::versions;
}

void Browser::showVersions(PhotoID photo)
{
    const LibrarySource versions{LibrarySource::Kind::versions, store_.catalog().masterOf(photo), {}};
    if (store_.source() != versions) {
        if (!listsVersions())
            leftForVersions_ = {store_.source(), store_.selection()};
        store_.chooseSource(versions);
    }
    selectShown({photo});
}

void Browser::leaveVersions()
{
    if (!listsVersions())
        return;
    const auto [source, selection] = std::exchange(leftForVersions_, {});
    store_.chooseSource(source);
    selectShown(selection);
}

/// Nothing is selected that nobody sees. Of a list that is still being read the store sees to that.
void Browser::selectShown(std::vector<PhotoID> ids)
{
    const auto& list = store_.list();
    if (!ids.empty() && !store_.isReading() && !store_.isOrdering()) {
        std::vector<PhotoID> shown; // of collapsed stacks the picks
        std::unordered_set<PhotoID> known;
        for (const PhotoID id : ids)
            if (const auto seen = list.shownFor(id); seen && known.insert(*seen).second)
                shown.push_back(*seen);
        ids = std::move(shown);
        if (ids.empty() && !list.shown().empty())
            ids.push_back(shownAt(list, 0));
    }
    store_.select(std::move(ids));
}

std::vector<PhotoID> Browser::targets() const
{
    if (mode_ == ViewMode::grid)
        return store_.selection();
    return currentItem() ? std::vector{*current_} : std::vector<PhotoID>();
}

std::size_t Browser::targetCount() const
{
    return mode_ == ViewMode::grid ? store_.selection().size() : currentItem() != nullptr;
}

std::optional<std::size_t> Browser::place() const
{
    const auto& list = store_.list();
    if (!current_)
        return std::nullopt;
    if (place_ < list.shown().size() && shownAt(list, place_) == *current_)
        return place_;
    return list.shownPosition(*current_);
}

void Browser::storeChanged(const LibraryChange& change)
{
    if (!change.list && !change.selection)
        return;
    if (change.selection && store_.longStep()) // the user has gone on
        together_.reset();
    if (store_.isReading() && store_.list().shown().empty())
        return; // another source's photos are about to come
    const auto before = std::pair(current_, mode_);
    keepCurrent();
    keepSurvey();
    if (store_.list().shown().empty())
        mode_ = ViewMode::grid;
    if (before != std::pair(current_, mode_))
        changed.emit();
}

void Browser::keepCurrent()
{
    const auto& selected = store_.selection();
    const auto at = place();
    const auto isSelected
        = [&] { return std::find(selected.begin(), selected.end(), *current_) != selected.end(); };
    if (at && (selected.empty() || isSelected())) {
        place_ = *at;
        return;
    }
    const auto& shown = store_.list().shown();
    const bool left = current_ && !at;
    if (left && mode_ != ViewMode::grid && !shown.empty()) // the next one is looked at
        return setCurrent(inPlaceOfCurrent());
    current_ = selected.empty() ? std::nullopt : std::optional(selected.front());
    place_ = place().value_or(0);
}

/// What is surveyed is part of the selection, which the current photo may be in without being shown.
void Browser::keepSurvey()
{
    if (mode_ != ViewMode::survey)
        return;
    const auto photos = surveyed(store_);
    if (photos.empty())
        mode_ = ViewMode::grid;
    else if (std::ranges::find(photos, current_) == photos.end())
        setCurrent(photos.front());
}

/// What is to be looked at after the current photo has left the list. A survey goes on with those that
/// remain.
PhotoID Browser::inPlaceOfCurrent() const
{
    const auto& list = store_.list();
    const auto photos = mode_ == ViewMode::survey ? surveyed(store_) : std::vector<PhotoID>();
    if (photos.empty())
        return shownAt(list, std::min(place_, list.shown().size() - 1));
    const auto next
        = std::ranges::find_if(photos, [&](PhotoID id) { return list.shownPosition(id) >= place_; });
    return next == photos.end() ? photos.back() : *next;
}

} // namespace korvo
