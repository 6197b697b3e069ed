#pragma once

#include "metadata/FileWork.h"
#include "platform/Defaults.h"

namespace korvo {

/// Keeps files in step with the metadata of the open library: saving on command or by itself, and going back
/// to what the files held.
class MetadataWriteBack : public FileWork {
public:
    enum class Autosave { off, on };

    /// All of these must outlive this.
    MetadataWriteBack(MainThread& main, LibraryStore& store, const ExifTool& tool, Defaults& defaults);

    /// How many photos hold metadata that is not yet in their files.
    std::int64_t dirtyCount() const { return dirtyCount_; }
    Autosave autosaveToFiles() const { return autosave_; }
    /// Throws std::system_error when the preference cannot be kept.
    void setAutosaveToFiles(Autosave autosave);

    /// Writes what waits; nothing while a job runs or when nothing waits.
    void saveMetadataToFiles();
    /// Saves a moment after the last call.
    void scheduleAutosave();
    /// Throws FilesBusy.
    void revertMetadataToAsFound(std::vector<PhotoID> photos);

private:
    void libraryChanged(const LibraryChange& change);
    void count();

    MainThread& main_;
    LibraryStore& store_;
    Defaults& defaults_;
    Autosave autosave_;
    std::int64_t dirtyCount_;
    Connection storeChanged_;
    MainThread::Timer autosaveTask_;
};

/// What the settings say of saving by itself: the switch, what it means as it stands, and a word of comfort.
struct AutosaveTexts {
    std::string_view label, explanation, note;
};
AutosaveTexts autosaveTexts(MetadataWriteBack::Autosave autosave);

} // namespace korvo
