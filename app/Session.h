#pragma once

#include "metadata/Backfill.h"
#include "metadata/MetadataWriteBack.h"

namespace korvo {

/// An open library with what goes on in it by itself: files that were not read yet are read in the background
/// from the start on, and descriptive metadata is kept in step with the files. Destroying it closes the
/// library, which ends all of that promptly; what is not done by then is taken up when it is opened again.
/// Used on the main thread.
class Session {
public:
    /// All but the catalog must outlive this. `patience` is the store's.
    Session(MainThread& main, std::unique_ptr<Catalog> catalog, const ExifTool& tool, Defaults& defaults,
        std::chrono::milliseconds patience = LibraryStore::untilItIsRead);

    LibraryStore& store() { return store_; }
    MetadataWriteBack& writeBack() { return writeBack_; }
    const Backfills& backfills() const { return backfills_; }

    /// Shows photos that were added to the catalog, and reads those of them that were not read yet.
    void photosAdded();
    /// The same when a job has added all that it does: it can be undone, as "Import 24 Photos" by its verb.
    /// `since` is the store's newestStep() when the job began.
    void photosAdded(std::string_view verb, AddedRows added, std::uint64_t since);

private:
    void readWhatIsNew();

    LibraryStore store_;
    MetadataWriteBack writeBack_;
    Backfills backfills_;
};

} // namespace korvo
