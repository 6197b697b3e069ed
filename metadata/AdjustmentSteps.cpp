#include "metadata/AdjustmentSteps.h"

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

FilesWritten PositionChange::run(UndoWay way, Catalog& catalog, const ExifTool& tool,
    const std::stop_token& stop, const FileProgress& progress)
{
    if (way == UndoWay::forth) {
        std::map<PhotoID, std::optional<Coordinate>> before;
        for (const PhotoID photo : catalog.mastersOf(photos_))
            before[photo] = positionOf(catalog, photo);
        auto result = setLocation(catalog, photos_, position_, tool, stop, progress);
        for (const PhotoID photo : result.touched)
            before_.try_emplace(photo, before[photo]);
        return result;
    }
    FilesWritten result;
    const std::vector all(before_.begin(), before_.end());
    for (std::size_t i = 0; i < all.size() && !result.stopped && result.fault.empty(); ++i) {
        const auto& [photo, position] = all[i];
        progress(i + 1, all.size());
        append(result,
            setLocation(
                catalog, std::span(&photo, 1), position, tool, stop, [](std::size_t, std::size_t) {}));
    }
    for (const PhotoID photo : result.touched)
        before_.erase(photo);
    return result;
}

} // namespace korvo
