#pragma once

#include "imports/ImportOutcome.h"
#include "imports/ImportRun.h"

namespace korvo {

/// A source that was opened, and what it holds.
struct ListedSource {
    ImportSource source;
    std::shared_ptr<FileSource> files;
    ImportListing listing;
};

/// Opens a source and lists it; what is picked is for the caller to say. A camera is opened when nobody uses
/// the source that was listed before any more: it may be the same one, which only one can have. Throws as
/// openSource() and listImportable().
ListedSource listSource(const ImportSource& source, Catalog& catalog, const std::stop_token& stop,
    std::shared_ptr<FileSource> before = {});

/// What came of an import, as the window and the command line tell it.
struct PhotosImported {
    AddedRows added; ///< for LibraryStore::adopt
    ImportCounts counts;
    std::vector<std::string> failures; ///< sentences, those of the listing first
    std::optional<Ejected> ejected; ///< only when the plan says so
    bool cancelled = false;
};

/// Carries out what was picked, as runImport does and throws, and lets the source go if the plan says so:
/// what is not written yet may keep the system at that for minutes, and when a stop comes meanwhile, the
/// system goes on by itself.
PhotosImported importPhotos(Catalog& catalog, const ListedSource& from, const ImportPlan& plan,
    const Clock& clock, const std::stop_token& stop, const ImportProgress& progress);

} // namespace korvo
