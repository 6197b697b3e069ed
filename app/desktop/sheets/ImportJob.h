#pragma once

#include "app/desktop/Desktop.h"
#include "imports/ImportSource.h"
#include "imports/ImportWindow.h"

namespace korvo {

/// Who follows an import; told on the main thread.
struct ImportWatcher {
    std::function<void(std::size_t index, const std::string& text)> progress; ///< of which file, from 1
    std::function<void(const Job& job)> ended;
};

/// Imports what was picked of a listing as a job, which needs no window, ejects the source if the plan says
/// so, and makes one step of undo of it. `files` are the source's.
std::shared_ptr<Job> startImport(Desktop& desktop, std::shared_ptr<FileSource> files, const Source& source,
    ImportListing listing, ImportPlan plan, ImportWatcher watcher);

} // namespace korvo
