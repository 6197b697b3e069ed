#pragma once

#include "metadata/Coordinate.h"
#include "metadata/FileWork.h"

namespace korvo {

// Corrections in the library and in the files, each as one step of undo. Undo and redo write files too, in
// the background as these do. All throw FilesBusy while a job runs. `work` must outlive the store's undo.

/// Moves capture dates by some seconds.
void shiftDates(FileWork& work, LibraryStore& store, std::span<const PhotoID> photos, double seconds);

/// Gives photos a position, or takes it from them.
void setPosition(FileWork& work, LibraryStore& store, std::span<const PhotoID> photos,
    const std::optional<Coordinate>& position);

} // namespace korvo
