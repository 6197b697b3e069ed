#include "metadata/AdjustmentSteps.h"

#include "catalog/UnreadPhotos.h"
#include "catalog/UserText.h"
#include "catalog/sql/DatabaseError.h"
#include "metadata/ExifReader.h"

#include <algorithm>
#include <iterator>
#include <ranges>
#include <tuple>

namespace korvo {

namespace {

/// Shifts dates in the catalog alone.
void shiftInCatalog(
    Catalog& catalog, const std::vector<PhotoID>& photos, double seconds, FilesWritten& result)
{
    try {
        Transaction transaction(catalog.database());
        for (const PhotoID photo : photos)
            catalog.shiftCaptureDate(photo, seconds);
        transaction.commit();
        result.touched.insert(result.touched.end(), photos.begin(), photos.end());
        result.done += photos.size();
    } catch (const DatabaseError& error) { // what is done in files must be told
        result.fault = textForUser(error);
    }
}

std::optional<Coordinate> positionInCatalog(Catalog& catalog, PhotoID photo)
{
    const auto items = catalog.photosByID(std::span(&photo, 1));
    if (items.empty() || !items.front().latitude || !items.front().longitude)
        return std::nullopt;
    return Coordinate{*items.front().latitude, *items.front().longitude};
}

void setInCatalog(Catalog& catalog, PhotoID photo, const std::optional<Coordinate>& position)
{
    catalog.setUserPosition(photo, position ? std::optional(position->latitude) : std::nullopt,
        position ? std::optional(position->longitude) : std::nullopt);
}

void append(FilesWritten& all, FilesWritten more)
{
    all.done += more.done;
    all.failures.insert(all.failures.end(), more.failures.begin(), more.failures.end());
    all.touched.insert(all.touched.end(), more.touched.begin(), more.touched.end());
    all.fault = std::move(more.fault);
}

/// For one of several photos, whose progress is told by who goes through them.
void untold(std::size_t, std::size_t) { }

} // namespace

FilesWritten DateShift::run(UndoWay way, Catalog& catalog, const ExifTool& tool, const std::stop_token& stop,
    const FileProgress& progress)
{
    const bool isForth = way == UndoWay::forth;
    std::vector<PhotoID> inBoth, inCatalogAlone;
    for (const PhotoID photo : catalog.mastersOf(photos_))
        if (inCatalog_.contains(photo) != isForth)
            (inFiles_.contains(photo) != isForth ? inBoth : inCatalogAlone).push_back(photo);
    const double seconds = isForth ? seconds_ : -seconds_;
    auto result = shiftDates(catalog, inBoth, seconds, tool, stop, progress);
    auto written = std::set(result.touched.begin(), result.touched.end());
    for (const auto& failure : result.failures)
        written.erase(failure.id);
    if (!result.stopped && result.fault.empty())
        shiftInCatalog(catalog, inCatalogAlone, seconds, result);
    const auto note = [&](std::set<PhotoID>& shifted, const auto& photos) {
        for (const PhotoID photo : photos)
            isForth ? std::ignore = shifted.insert(photo) : std::ignore = shifted.extract(photo);
    };
    note(inCatalog_, result.touched);
    note(inFiles_, written);
    return result;
}

FilesWritten PositionChange::give(
    Catalog& catalog, PhotoID photo, const ExifTool& tool, const std::stop_token& stop)
{
    const auto record = catalog.fileRecord(photo);
    const Before before{positionInCatalog(catalog, photo), record ? readGPS(record->path) : std::nullopt,
        catalog.isPositionRead(photo)};
    auto result = setLocation(catalog, std::span(&photo, 1), position_, tool, stop, untold);
    if (!result.touched.empty()) {
        before_.try_emplace(photo, before);
        if (result.failures.empty())
            inFiles_.insert(photo);
    }
    return result;
}

FilesWritten PositionChange::putBack(
    Catalog& catalog, PhotoID photo, const ExifTool& tool, const std::stop_token& stop)
{
    const auto before = before_.at(photo);
    FilesWritten result;
    if (inFiles_.contains(photo))
        result = setLocation(catalog, std::span(&photo, 1), before.inFile, tool, stop, untold);
    else {
        result.touched = {photo};
        result.done = 1;
    }
    if (!result.fault.empty() || result.touched.empty())
        return result;
    try {
        if (before.wasRead)
            setInCatalog(catalog, photo, before.inCatalog);
        else
            forgetPosition(catalog, photo); // what the file holds is read again
    } catch (const DatabaseError& error) { // the file is done
        result.fault = textForUser(error);
        return result;
    }
    if (result.failures.empty()) {
        before_.erase(photo);
        inFiles_.erase(photo);
    }
    return result;
}

FilesWritten PositionChange::run(UndoWay way, Catalog& catalog, const ExifTool& tool,
    const std::stop_token& stop, const FileProgress& progress)
{
    std::vector<PhotoID> photos;
    if (way == UndoWay::forth)
        photos = catalog.mastersOf(photos_);
    else
        std::ranges::copy(std::views::keys(before_), std::back_inserter(photos));
    FilesWritten result;
    try {
        for (std::size_t i = 0; i < photos.size() && !stop.stop_requested() && result.fault.empty(); ++i) {
            progress(i + 1, photos.size());
            append(result,
                way == UndoWay::forth ? give(catalog, photos[i], tool, stop)
                                      : putBack(catalog, photos[i], tool, stop));
        }
    } catch (const std::runtime_error& error) { // of the catalog or the tool: what is done must be told
        if (result.touched.empty())
            throw;
        result.fault = textForUser(error);
    }
    result.stopped = stop.stop_requested();
    return result;
}

} // namespace korvo
