#pragma once

#include "base/Task.h"
#include "catalog/store/LibraryStore.h"
#include "metadata/Coordinate.h"
#include "metadata/MetadataSave.h"
#include "platform/Defaults.h"

#include <stop_token>
#include <string>

namespace korvo {

/// Why a revert is not begun; what() is for the user.
class RevertRefused : public std::runtime_error {
public:
    enum class Case { busy, apertureOriginals };

    explicit RevertRefused(Case which);

    Case which() const { return which_; }

private:
    Case which_;
};

/// What a save or a revert has to say at its end.
std::string saveSummary(const FilesWritten& result);
std::string revertSummary(const FilesWritten& result);
std::string shiftSummary(const FilesWritten& result);
std::string positionSummary(const FilesWritten& result, const std::optional<Coordinate>& position);

/// What the user is asked before a revert, and the title above it.
constexpr auto revertTitle = "Revert metadata?";
std::string revertQuestion(std::size_t photos);

/// Keeps files in step with the metadata of the open library: saving on command or by itself, going back to
/// what the files held, and changing dates and positions in both. The files are written in the background.
/// Used on the main thread.
class MetadataWriteBack {
public:
    enum class Autosave { off, on };

    /// All of these must outlive this.
    MetadataWriteBack(MainThread& main, LibraryStore& store, const ExifTool& tool, Defaults& defaults);

    Signal<> changed; // something below has a new value

    /// How many photos hold metadata that is not yet in their files.
    std::int64_t dirtyCount() const { return dirtyCount_; }
    /// Whether a save or a revert is running.
    bool isSaving() const { return saving_; }
    /// The title of a running change of dates or positions, or of its undoing, which leaves off when it is
    /// ended; else empty. What is not saved or reverted yet waits on.
    const std::string& adjusting() const { return adjusting_; }
    /// What is being done, or what came of it.
    const std::string& statusMessage() const { return statusMessage_; }
    /// What went wrong with which photo in the last save or revert.
    const std::vector<FileFailure>& failures() const { return failures_; }
    /// Why the photo's last save or revert failed, until it is saved or reverted; null when it did not.
    const std::string* failureOf(PhotoID photo) const;
    /// Whether it could not write all that it was to, or nothing.
    bool hasFailed() const { return hasFailed_; }
    bool exiftoolMissing() const { return exiftoolMissing_; }
    Autosave autosaveToFiles() const { return autosave_; }
    /// Throws std::system_error when the preference cannot be kept.
    void setAutosaveToFiles(Autosave autosave);

    /// Writes what waits; nothing while a save runs or when nothing waits.
    void saveMetadataToFiles();
    /// Ends a running save or revert, also one whose tool hangs; what is not written yet waits on.
    void stopSaving() { stop_.request_stop(); }
    /// Saves a moment after the last call.
    void scheduleAutosave();
    /// Throws RevertRefused when a revert of these photos would not be begun: to be asked before the user is.
    void requireRevertible(std::span<const PhotoID> photos) const;
    /// Throws RevertRefused.
    void revertMetadataToAsFound(std::span<const PhotoID> photos);
    /// Moves capture dates by some seconds, in the library and in the files, as one step of undo. Undo and
    /// redo write files too, in the background as this does. All three throw RevertRefused while something
    /// runs.
    void shiftDates(std::span<const PhotoID> photos, double seconds);
    /// Gives photos a position, or takes it from them, in the same manner.
    void setPosition(std::span<const PhotoID> photos, const std::optional<Coordinate>& position);

private:
    using Work = std::function<FilesWritten(Catalog&, const std::stop_token&, const FileProgress&)>;

    void libraryChanged(const LibraryChange& change);
    void count();
    using Summary = std::function<std::string(const FilesWritten&)>;
    using Ended = std::function<void(const FilesWritten&)>;
    /// What is done to files and can be taken back.
    struct Adjustment {
        std::string title; // in the Edit menu
        std::string verb;
        Summary summary;
        std::function<FilesWritten(
            UndoWay, Catalog&, const ExifTool&, const std::stop_token&, const FileProgress&)>
            run;
    };
    void adjust(const Adjustment& adjustment);
    void begin(const Adjustment& adjustment, UndoWay way, Ended ended);
    void begin(std::string verb, Summary summary, Work work, Ended ended = {});
    void say(std::string message);
    void finish(const FilesWritten& result, std::string message);

    MainThread& main_;
    LibraryStore& store_;
    const ExifTool& tool_;
    Defaults& defaults_;
    Autosave autosave_;
    std::int64_t dirtyCount_;
    bool saving_ = false;
    std::string adjusting_;
    bool hasFailed_ = false;
    bool exiftoolMissing_ = false;
    std::string statusMessage_;
    std::stop_source stop_; // of what is running
    Ended ended_; // the same
    std::vector<FileFailure> failures_;
    Connection storeChanged_;
    MainThread::Timer autosaveTask_;
    Task task_; // last, so that it ends first
};

/// What the settings say of saving by itself: the switch, what it means as it stands, and a word of comfort.
struct AutosaveTexts {
    std::string_view label, explanation, note;
};
AutosaveTexts autosaveTexts(MetadataWriteBack::Autosave autosave);

} // namespace korvo
