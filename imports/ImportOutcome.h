#pragma once

#include "base/PathFailure.h"
#include "base/Record.h"
#include "imports/ImportPlan.h"
#include "imports/ImportSource.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace korvo {

/// What became of the picked files.
struct ImportResult : AddedRows {
    std::size_t known = 0; // referenced files that the library has already
    std::vector<PathFailure> failures;
    bool cancelled = false;
    std::string broken; // why the run ended before all was tried; else empty
};

/// "2 photos imported, 1 already in the library, 0 failed"
struct ImportCounts {
    std::size_t imported = 0;
    std::size_t duplicates = 0; // that were not picked, or known under their path
    std::size_t failed = 0;
};
KORVO_RECORD(ImportCounts, imported, duplicates, failed)
ImportCounts countsOf(const ImportListing& listing, const ImportResult& result);
std::string countsText(const ImportCounts& counts);

/// What went wrong, a sentence each: with files that could not be listed or imported, and why the run ended
/// early.
std::vector<std::string> failuresOf(const ImportListing& listing, const ImportResult& result);

/// Lets the volume of a source go after an import, unless its photos are still needed, and says what came of
/// it; nothing for a camera.
struct Ejected {
    bool done = false;
    std::string text;
};
std::optional<Ejected> ejectAfter(
    const ImportResult& result, const ImportSource& source, VolumeService& volumes);

} // namespace korvo
