#pragma once

#include "imports/ImportCopy.h"
#include "imports/ImportShots.h"

namespace korvo {

/// One file on its way.
struct ImportedFile {
    const Shot::File* file = nullptr;
    std::optional<FileCopy> copy; // of files that are copied
    NewPhoto photo; // unless it is a sidecar
    std::string failure; // why; empty when nothing went wrong
    std::filesystem::path path; // where it stands in the end; empty when it does not
};

/// The files of one shot.
struct ImportedShot {
    const Shot* shot = nullptr;
    std::vector<ImportedFile> files;
};

} // namespace korvo
