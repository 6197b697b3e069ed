#include "metadata/AdjustmentSteps.h"

#include "catalog/UnreadPhotos.h"
#include "catalog/sql/DatabaseError.h"
#include "metadata/ExifReader.h"

#include <algorithm>
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

/// The position that a photo has, in its file if that was not read yet.
std::optional<Coordinate> positionOf(Catalog& catalog, PhotoID photo)
{
    if (!catalog.isPositionRead(photo)) {
        const auto record = catalog.fileRecord(photo);
        return record ? readGPS(record->path) : std::nullopt;
    }
    const auto items = catalog.photosByID(std::span(&photo, 1));
    if (items.empty() || !items.front().latitude || !items.front().longitude)
        return std::nullopt;
    return Coordinate{*items.front().latitude, *items.front().longitude};
}

/// For a photo whose file was never changed.
void putBackInCatalog(Catalog& catalog, PhotoID photo, bool wasRead,
    const std::optional<Coordinate>& position, FilesWritten& result)
{
    try {
        if (!wasRead)
            forgetPosition(catalog, photo); // what the file holds is read again
        else
            catalog.setUserPosition(photo, position ? std::optional(position->latitude) : std::nullopt,
                position ? std::optional(position->longitude) : std::nullopt);
        result.touched.push_back(photo);
        ++result.done;
    } catch (const DatabaseError& error) {
        result.fault = textForUser(error);
    }
}

void append(FilesWritten& all, FilesWritten more)
{
    all.done += more.done;
    all.failures.insert(all.failures.end(), more.failures.begin(), more.failures.end());
    all.touched.insert(all.touched.end(), more.touched.begin(), more.touched.end());
    all.stopped = more.stopped;
    all.fault = std::move(more.fault);
}

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

FilesWritten PositionChange::runForth(
    Catalog& catalog, const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress)
{
    std::map<PhotoID, Before> before;
    for (const PhotoID photo : catalog.mastersOf(photos_)) {
        const bool wasRead = catalog.isPositionRead(photo);
        before[photo] = {positionOf(catalog, photo), wasRead};
    }
    auto result = setLocation(catalog, photos_, position_, tool, stop, progress);
    for (const PhotoID photo : result.touched)
        before_.try_emplace(photo, before[photo]);
    auto written = std::set(result.touched.begin(), result.touched.end());
    for (const auto& failure : result.failures)
        written.erase(failure.id);
    inFiles_.merge(written);
    return result;
}

FilesWritten PositionChange::run(UndoWay way, Catalog& catalog, const ExifTool& tool,
    const std::stop_token& stop, const FileProgress& progress)
{
    if (way == UndoWay::forth)
        return runForth(catalog, tool, stop, progress);
    FilesWritten result;
    const std::vector all(before_.begin(), before_.end());
    for (std::size_t i = 0; i < all.size() && !result.stopped && result.fault.empty(); ++i) {
        const auto& [photo, before] = all[i];
        progress(i + 1, all.size());
        if (inFiles_.contains(photo))
            append(result,
                setLocation(catalog, std::span(&photo, 1), before.position, tool, stop,
                    [](std::size_t, std::size_t) {}));
        else
            putBackInCatalog(catalog, photo, before.wasRead, before.position, result);
    }
    for (const PhotoID photo : result.touched) {
        before_.erase(photo);
        inFiles_.erase(photo);
    }
    return result;
}

} // namespace korvo
