#pragma once

#include "app/ImportPhotos.h"
#include "app/desktop/Desktop.h"

namespace korvo {

/// Who follows an import; told on the main thread.
struct ImportWatcher {
    std::function<void(std::size_t index, const std::string& text)> progress; ///< of which file, from 1
    std::function<void(const Job& job)> ended;
};

/// Imports what was picked of a listing as a job, which needs no window, and makes one step of undo of it.
std::shared_ptr<Job> startImport(
    Desktop& desktop, const ListedSource& from, ImportPlan plan, ImportWatcher watcher);

} // namespace korvo
