#include "metadata/DateAndPlaceSteps.h"

#include "catalog/UnreadPhotos.h"
#include "metadata/DatesAndPlaces.h"
#include "metadata/ExifReader.h"
#include "metadata/FileWorkTexts.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <ranges>
#include <set>

namespace korvo {

namespace {

// Each run of a step goes on any thread, one at a time, and throws as correctPhotos() does. isLeft() says
// between them whether something of it is still to be taken back. Doing it again is doing what was taken
// back: what a stop had spared stays so.

/// A shift of capture dates. It moves twice nothing that a failure, a stop or an unreachable file has left
/// where it was.
class DateShift {
public:
    DateShift(std::vector<PhotoID> photos, double seconds) : photos_(std::move(photos)), seconds_(seconds) { }

    FilesWritten run(UndoWay way, Catalog& catalog, const ExifTool& tool, const std::stop_token& stop,
        const FileProgress& progress);
    bool isLeft() const { return !inCatalog_.empty() || !inFiles_.empty(); }

private:
    std::vector<PhotoID> photos_;
    double seconds_;
    std::set<PhotoID> inCatalog_, inFiles_; // what is shifted
};

/// A position given to photos, or taken from them. Taking that back gives each photo the one that it had, and
/// each file that was written what it held then.
class PositionChange {
public:
    PositionChange(std::vector<PhotoID> photos, std::optional<Coordinate> position)
        : photos_(std::move(photos)), position_(position)
    { }

    FilesWritten run(UndoWay way, Catalog& catalog, const ExifTool& tool, const std::stop_token& stop,
        const FileProgress& progress);
    bool isLeft() const { return !before_.empty(); }

private:
    struct Before {
        std::optional<Coordinate> inCatalog, inFile;
        bool wasRead = false;
    };
    FilesWritten give(
        Catalog& catalog, const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress);
    FilesWritten putBack(
        Catalog& catalog, const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress);

    std::vector<PhotoID> photos_;
    std::optional<Coordinate> position_;
    std::map<PhotoID, Before> before_; // of those that are changed
    std::set<PhotoID> inFiles_; // those of them whose files are
};

/// The photos whose files have been done, as far as they were to be.
std::set<PhotoID> withoutFailure(const FilesWritten& result)
{
    std::set photos(result.touched.begin(), result.touched.end());
    for (const auto& failure : result.failures)
        photos.erase(failure.id);
    return photos;
}

void note(std::set<PhotoID>& shifted, UndoWay way, PhotoID photo)
{
    if (way == UndoWay::forth)
        shifted.insert(photo);
    else
        shifted.erase(photo);
}

std::optional<Coordinate> positionInCatalog(Catalog& catalog, PhotoID photo)
{
    const auto items = catalog.photosByID(std::span(&photo, 1));
    if (items.empty() || !items.front().latitude || !items.front().longitude)
        return std::nullopt;
    return Coordinate{*items.front().latitude, *items.front().longitude};
}

FilesWritten DateShift::run(UndoWay way, Catalog& catalog, const ExifTool& tool, const std::stop_token& stop,
    const FileProgress& progress)
{
    const auto isDue = [way](const std::set<PhotoID>& shifted, PhotoID photo) {
        return shifted.contains(photo) == (way == UndoWay::back);
    };
    auto photos = catalog.mastersOf(photos_);
    const std::set<PhotoID> there(photos.begin(), photos.end());
    for (auto* const shifted : {&inCatalog_, &inFiles_})
        std::erase_if(*shifted, [&](PhotoID photo) { return !there.contains(photo); });
    std::erase_if(
        photos, [&](PhotoID photo) { return !isDue(inCatalog_, photo) && !isDue(inFiles_, photo); });
    const auto shift = dateShiftBy(catalog, way == UndoWay::forth ? seconds_ : -seconds_);
    const auto inCatalog = [&](const FileRecord& record) {
        if (isDue(inCatalog_, record.id))
            shift.inCatalog(record);
    };
    const auto inFile = [&](const FileRecord& record) {
        auto change = isDue(inFiles_, record.id) ? shift.inFile(record) : FileChange();
        change.written = [this, way, id = record.id] { note(inFiles_, way, id); };
        return change;
    };
    auto result = correctPhotos(catalog, photos, {inCatalog, inFile}, tool, stop, progress);
    for (const PhotoID photo : result.touched)
        note(inCatalog_, way, photo);
    if (way == UndoWay::forth && isLeft()) {
        photos_.clear();
        std::ranges::set_union(inCatalog_, inFiles_, std::back_inserter(photos_));
    }
    return result;
}

FilesWritten PositionChange::run(UndoWay way, Catalog& catalog, const ExifTool& tool,
    const std::stop_token& stop, const FileProgress& progress)
{
    return way == UndoWay::forth ? give(catalog, tool, stop, progress)
                                 : putBack(catalog, tool, stop, progress);
}

FilesWritten PositionChange::give(
    Catalog& catalog, const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress)
{
    const auto change = positionChangeTo(catalog, position_);
    const auto inCatalog = [&](const FileRecord& record) {
        const Before before{
            positionInCatalog(catalog, record.id), readGPS(record.path), catalog.isPositionRead(record.id)};
        change.inCatalog(record);
        before_.try_emplace(record.id, before);
    };
    const auto inFile = [&](const FileRecord& record) {
        auto written = change.inFile(record);
        written.written = [this, id = record.id] { inFiles_.insert(id); };
        return written;
    };
    auto result = correctPhotos(catalog, photos_, {inCatalog, inFile}, tool, stop, progress);
    if (const auto given = std::views::keys(before_); isLeft())
        photos_.assign(given.begin(), given.end());
    return result;
}

FilesWritten PositionChange::putBack(
    Catalog& catalog, const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress)
{
    const auto inCatalog = [&](const FileRecord& record) {
        const auto& before = before_.at(record.id);
        const auto own = before.wasRead || before.inCatalog ? before.inCatalog : before.inFile;
        if (!before.wasRead && !own && !inFiles_.contains(record.id))
            return forgetPosition(catalog, record.id); // the file may have been away, and is read later
        positionChangeTo(catalog, own).inCatalog(record);
    };
    const auto inFile = [&](const FileRecord& record) {
        return inFiles_.contains(record.id)
            ? positionChangeTo(catalog, before_.at(record.id).inFile).inFile(record)
            : FileChange();
    };
    const auto keys = std::views::keys(before_);
    const auto photos = catalog.mastersOf(std::vector<PhotoID>(keys.begin(), keys.end()));
    const std::set<PhotoID> there(photos.begin(), photos.end());
    std::erase_if(before_, [&](const auto& photo) { return !there.contains(photo.first); });
    auto result = correctPhotos(catalog, photos, {inCatalog, inFile}, tool, stop, progress);
    for (const PhotoID photo : withoutFailure(result)) {
        before_.erase(photo);
        inFiles_.erase(photo);
    }
    return result;
}

/// A correction as the user sees it.
struct Correction {
    std::string title; // in the Edit menu
    std::string verb; // of doing it
    std::function<std::string(const FilesWritten&)> summary; // the same
    std::function<FilesWritten(
        UndoWay, Catalog&, const ExifTool&, const std::stop_token&, const FileProgress&)>
        run;
    std::function<bool()> isLeft;
    std::vector<PhotoID> failed = {}; // of the last run, when that left the step where it was
};

FileJob jobOf(const Correction& correction, UndoWay way)
{
    FileJob job{correction.verb, correction.summary,
        [run = correction.run, way](auto&&... arguments) { return run(way, arguments...); }};
    job.correcting = correction.title;
    if (way == UndoWay::back) {
        job.verb = "Taking back";
        job.summary = [title = correction.title](
                          const FilesWritten& result) { return takenBackSummary(result, title); };
    }
    return job;
}

/// Which way the step has gone. It is done while something of it is left, which nothing else knows how to
/// take back. But where the tool could work and the very same photos failed twice, their files may be gone
/// for good, and the step must not stand before older ones for ever.
UndoWay wayGone(Correction& correction, UndoWay way, const FilesWritten& result)
{
    const auto before = std::exchange(correction.failed, {});
    std::vector<PhotoID> failed;
    std::ranges::transform(result.failures, std::back_inserter(failed), &FileFailure::id);
    const bool isWhole = result.fault.empty() && !result.stopped;
    if (isWhole && (failed.empty() || failed == before))
        return way;
    const auto gone = correction.isLeft() ? UndoWay::forth : UndoWay::back;
    if (isWhole && gone != way)
        correction.failed = std::move(failed);
    return gone;
}

void beginStep(FileWork& work, LibraryStore& store, Correction made)
{
    const auto correction = std::make_shared<Correction>(std::move(made));
    const auto retrace = [&work, correction](UndoWay way, const auto& ended) {
        auto job = jobOf(*correction, way);
        job.ended = [correction, way, ended](
                        const FilesWritten& result) { ended(wayGone(*correction, way, result)); };
        work.begin(std::move(job));
    };
    auto job = jobOf(*correction, UndoWay::forth);
    job.ended = [&store, title = correction->title, retrace, since = store.newestStep()](
                    const FilesWritten& result) {
        if (!result.touched.empty())
            store.adopt(title, retrace, since);
    };
    work.begin(std::move(job));
}

} // namespace

void shiftDates(FileWork& work, LibraryStore& store, std::span<const PhotoID> photos, double seconds)
{
    const auto step = std::make_shared<DateShift>(std::vector(photos.begin(), photos.end()), seconds);
    beginStep(work, store,
        {"Shift Capture Dates", "Shifting", shiftSummary,
            [step](auto&&... arguments) { return step->run(arguments...); },
            [step] { return step->isLeft(); }});
}

void setPosition(FileWork& work, LibraryStore& store, std::span<const PhotoID> photos,
    const std::optional<Coordinate>& position)
{
    const auto step = std::make_shared<PositionChange>(std::vector(photos.begin(), photos.end()), position);
    beginStep(work, store,
        {position ? "Set Position" : "Clear Position", position ? "Locating" : "Clearing",
            [position](const FilesWritten& result) { return positionSummary(result, position); },
            [step](auto&&... arguments) { return step->run(arguments...); },
            [step] { return step->isLeft(); }});
}

} // namespace korvo
