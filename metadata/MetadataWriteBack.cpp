#include "metadata/MetadataWriteBack.h"

#include "catalog/sql/DatabaseError.h"
#include "metadata/FileWorkTexts.h"

namespace korvo {

namespace {

using namespace std::chrono_literals;

constexpr auto autosaveKey = "korvo_autosave_to_files";
constexpr auto autosaveDelay = 2500ms;

} // namespace

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

MetadataWriteBack::MetadataWriteBack(
    MainThread& main, LibraryStore& store, const ExifTool& tool, Defaults& defaults)
    : FileWork(main, store, tool), main_(main), store_(store), defaults_(defaults),
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

void MetadataWriteBack::scheduleAutosave()
{
    main_.assertCurrent();
    autosaveTask_ = main_.postAfter(autosaveDelay, [this] {
        if (isSaving()) // what changed during a save waits for its turn
            scheduleAutosave();
        else
            saveMetadataToFiles();
    });
}

void MetadataWriteBack::saveMetadataToFiles()
{
    main_.assertCurrent();
    if (!isSaving() && store_.catalog().dirtyCount() > 0)
        begin({"Saving", saveSummary, saveMetadata});
}

void MetadataWriteBack::revertMetadataToAsFound(std::vector<PhotoID> photos)
{
    if (photos.empty())
        return;
    begin({"Reverting", revertSummary,
        [ids = std::move(photos)](Catalog& catalog, const ExifTool& tool, const std::stop_token& stop,
            const FileProgress& progress) { return revertMetadata(catalog, ids, tool, stop, progress); }});
}

} // namespace korvo
