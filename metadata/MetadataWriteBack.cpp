#include "metadata/MetadataWriteBack.h"

#include "base/Text.h"
#include "catalog/UserText.h"
#include "catalog/sql/DatabaseError.h"
#include "metadata/AdjustmentSteps.h"

#include <fmt/format.h>

namespace korvo {

namespace {

using namespace std::chrono_literals;

constexpr auto autosaveKey = "korvo_autosave_to_files";
constexpr auto autosaveDelay = 2500ms;

std::string refusal(RevertRefused::Case which)
{
    return which == RevertRefused::Case::busy
        ? "A save or generation is running — try again when it finishes."
        : "These are in an Aperture library. Korvo never writes into those originals, so there's nothing to "
          "revert in the files.";
}

std::string partly(const char* verb, const FilesWritten& result)
{
    return fmt::format("{} {}, failed {} — see marked photos.", verb, result.done, result.failures.size());
}

} // namespace

RevertRefused::RevertRefused(Case which) : std::runtime_error(refusal(which)), which_(which) { }

std::string saveSummary(const FilesWritten& result)
{
    return result.failures.empty() ? "Saved metadata into " + counted(result.done, "file") + "."
                                   : partly("Saved", result);
}

std::string revertSummary(const FilesWritten& result)
{
    return result.failures.empty() ? "Reverted metadata on " + counted(result.done, "photo") + "."
                                   : partly("Reverted", result);
}

std::string shiftSummary(const FilesWritten& result)
{
    return result.failures.empty() ? "Moved the dates of " + counted(result.done, "photo") + "."
                                   : partly("Moved", result);
}

std::string positionSummary(const FilesWritten& result, const std::optional<Coordinate>& position)
{
    if (!result.failures.empty())
        return partly(position ? "Located" : "Cleared", result);
    return (position ? "Located " : "Took the position from ") + counted(result.done, "photo") + ".";
}

AutosaveTexts autosaveTexts(MetadataWriteBack::Autosave autosave)
{
    return {"Write metadata into files automatically",
        autosave == MetadataWriteBack::Autosave::on ? "ALT text, title, caption, keywords, creator, and "
                                                      "copyright are written into your files a moment "
                                                      "after you stop typing — along with any other photos "
                                                      "still waiting to be saved. Revert Metadata "
                                                      "(File menu) restores a file's as-found state."
                                                    : "ALT text, title, caption, keywords, creator, and "
                                                      "copyright wait in the library until you Save to "
                                                      "Files (⌘S).",
        "Adjustments are never written into originals — they render into exports and galleries."};
}

std::string revertQuestion(std::size_t photos)
{
    return "Restores ALT text, title, caption, keywords, creator, and copyright on "
        + counted(photos, "photo")
        + " to what the file held when Korvo found it. Unsaved edits are discarded too. Adjustments are not "
          "affected.";
}

MetadataWriteBack::MetadataWriteBack(
    MainThread& main, LibraryStore& store, const ExifTool& tool, Defaults& defaults)
    : main_(main), store_(store), tool_(tool), defaults_(defaults),
      autosave_(defaults.get(autosaveKey) == "1" ? Autosave::on : Autosave::off),
      dirtyCount_(store.catalog().dirtyCount()),
      storeChanged_(store.changed.connect([this](const LibraryChange& change) { libraryChanged(change); }))
{
    if (autosave_ == Autosave::on && dirtyCount_ > 0)
        scheduleAutosave();
}

void MetadataWriteBack::setAutosaveToFiles(Autosave autosave)
{
    main_.assertCurrent();
    defaults_.set(autosaveKey, autosave == Autosave::on ? "1" : "0");
    autosave_ = autosave;
    if (autosave == Autosave::off)
        autosaveTask_ = nullptr;
    else if (dirtyCount_ > 0)
        scheduleAutosave();
    changed.emit();
}

void MetadataWriteBack::libraryChanged(const LibraryChange& change)
{
    if (change.photos.empty() && !change.list && !change.tree && !change.metadata)
        return; // the selection alone: arrow keys must not wait for the catalog
    try {
        count();
        if (autosave_ == Autosave::on && change.metadata && store_.catalog().anyDirty(change.photos))
            scheduleAutosave();
    } catch (const DatabaseError&) { // the next change counts again; others still hear of this one
    }
}

void MetadataWriteBack::count()
{
    if (const auto count = store_.catalog().dirtyCount(); count != dirtyCount_) {
        dirtyCount_ = count;
        changed.emit();
    }
}

const std::string* MetadataWriteBack::failureOf(PhotoID photo) const
{
    const auto& status = store_.status(photo);
    return status.kind == PhotoItem::Status::Kind::error ? &status.message : nullptr;
}

void MetadataWriteBack::scheduleAutosave()
{
    main_.assertCurrent();
    autosaveTask_ = main_.postAfter(autosaveDelay, [this] {
        if (saving_) // what changed during a save waits for its turn
            scheduleAutosave();
        else
            saveMetadataToFiles();
    });
}

void MetadataWriteBack::saveMetadataToFiles()
{
    main_.assertCurrent();
    if (saving_ || store_.catalog().dirtyCount() == 0)
        return;
    begin("Saving", saveSummary,
        [&tool = tool_](Catalog& catalog, const std::stop_token& stop, const FileProgress& progress) {
            return saveMetadata(catalog, tool, stop, progress);
        });
}

void MetadataWriteBack::requireRevertible(std::span<const PhotoID> photos) const
{
    if (saving_)
        throw RevertRefused(RevertRefused::Case::busy);
    if (allInApertureLibraries(store_.catalog(), photos))
        throw RevertRefused(RevertRefused::Case::apertureOriginals);
}

void MetadataWriteBack::revertMetadataToAsFound(std::span<const PhotoID> photos)
{
    main_.assertCurrent();
    if (photos.empty())
        return;
    requireRevertible(photos);
    begin("Reverting", revertSummary,
        [&tool = tool_, ids = std::vector(photos.begin(), photos.end())](Catalog& catalog,
            const std::stop_token& stop,
            const FileProgress& progress) { return revertMetadata(catalog, ids, tool, stop, progress); });
}

void MetadataWriteBack::shiftDates(std::span<const PhotoID> photos, double seconds)
{
    const auto step = std::make_shared<DateShift>(std::vector(photos.begin(), photos.end()), seconds);
    adjust({"Shift Capture Dates", "Shifting", shiftSummary,
        [step](auto&&... arguments) { return step->run(arguments...); }});
}

void MetadataWriteBack::setPosition(
    std::span<const PhotoID> photos, const std::optional<Coordinate>& position)
{
    const auto step = std::make_shared<PositionChange>(std::vector(photos.begin(), photos.end()), position);
    adjust({position ? "Set Position" : "Clear Position", "Locating",
        [position](const FilesWritten& result) { return positionSummary(result, position); },
        [step](auto&&... arguments) { return step->run(arguments...); }});
}

void MetadataWriteBack::adjust(const Adjustment& adjustment)
{
    main_.assertCurrent();
    begin(adjustment, UndoWay::forth,
        [this, adjustment, since = store_.newestStep()](const FilesWritten& result) {
            if (!result.touched.empty())
                store_.adopt(
                    adjustment.title, [this, adjustment](UndoWay way) { begin(adjustment, way, {}); }, since);
        });
}

void MetadataWriteBack::begin(const Adjustment& adjustment, UndoWay way, Ended ended)
{
    if (saving_)
        throw RevertRefused(RevertRefused::Case::busy);
    Summary summary = adjustment.summary;
    if (way == UndoWay::back)
        summary = [title = adjustment.title](const FilesWritten& result) {
            return result.failures.empty()
                ? "Took back “" + title + "” for " + counted(result.done, "photo") + "."
                : partly("Took back", result);
        };
    begin(
        adjustment.verb, std::move(summary),
        [run = adjustment.run, way, &tool = tool_](Catalog& catalog, const std::stop_token& stop,
            const FileProgress& progress) { return run(way, catalog, tool, stop, progress); },
        std::move(ended));
    adjusting_ = adjustment.title;
}

void MetadataWriteBack::begin(std::string verb, Summary summary, Work work, Ended ended)
{
    saving_ = true;
    stop_ = {};
    ended_ = std::move(ended);
    task_ = runInBackground(main_,
        [this, &catalog = store_.catalog(), stop = stop_, doing = std::move(verb), sum = std::move(summary),
            job = std::move(work)](const Task::Context& context) {
            const auto deliver = [&](FilesWritten result, std::string message, bool missing) {
                context.deliver([=, this] {
                    exiftoolMissing_ = missing;
                    finish(result, message);
                });
            };
            const std::stop_callback goes(
                context.stopToken(), [&] { std::stop_source(stop).request_stop(); });
            try {
                auto result = job(catalog, stop.get_token(), [&](std::size_t number, std::size_t total) {
                    context.deliver([=, this] { say(fmt::format("{} {} of {}…", doing, number, total)); });
                });
                const auto message = result.fault.empty() ? sum(result) : result.fault;
                deliver(std::move(result), message, false);
            } catch (const ExifToolError& error) {
                deliver({.fault = textForUser(error)}, textForUser(error),
                    error.which() == ExifToolError::Case::notFound);
            } catch (const std::exception& error) { // of the catalog: what was not written waits on
                deliver({.fault = textForUser(error)}, textForUser(error), false);
            }
        });
    changed.emit();
}

void MetadataWriteBack::say(std::string message)
{
    statusMessage_ = std::move(message);
    changed.emit();
}

void MetadataWriteBack::finish(const FilesWritten& result, std::string message)
{
    saving_ = false;
    adjusting_.clear();
    statusMessage_ = std::move(message);
    failures_ = result.failures;
    hasFailed_ = !result.failures.empty() || !result.fault.empty();
    std::vector<std::pair<PhotoID, PhotoItem::Status>> statuses;
    for (const PhotoID photo : result.touched)
        statuses.emplace_back(photo, PhotoItem::Status());
    for (const auto& [photo, why] : result.failures)
        statuses.emplace_back(photo, PhotoItem::Status{PhotoItem::Status::Kind::error, why});
    store_.setStatuses(statuses);
    if (const auto ended = std::exchange(ended_, {}))
        ended(result);
    try {
        store_.photosChanged(store_.catalog().withVersions(result.touched));
        dirtyCount_ = store_.catalog().dirtyCount();
    } catch (const DatabaseError&) { // the next change counts again; that the work has ended is told
    }
    changed.emit();
}

} // namespace korvo
