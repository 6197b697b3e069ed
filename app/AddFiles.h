#pragma once

#include "base/PathFailure.h"
#include "catalog/Catalog.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace korvo {

/// What became of the files. A file that is added but cannot be read counts as added and is listed as a
/// failure.
struct AddResult : AddedRows {
    std::size_t added = 0;
    std::size_t known = 0; // had a master already
    std::size_t ignored = 0; // of a kind that a library does not hold
    std::vector<PhotoID> met; // added or known, in the order of the scan
    std::vector<PathFailure> failures;
    bool cancelled = false;
    std::string broken; // why it ended before all was tried; else empty
};

enum class ReadCameraData { now, later };

/// Called with the number of files dealt with so far; on any thread, one call at a time.
using AddProgress = std::function<void(std::size_t done)>;

/// Takes folders, with all that lies in them, and files into the library, with the metadata the files hold.
/// Works in batches, each of which is kept whole: after a stop, a crash or an error everything batched so far
/// stands, and is in the result.
AddResult addFiles(Catalog& catalog, std::span<const std::filesystem::path> paths, const Clock& clock,
    ReadCameraData cameraData, const std::stop_token& stop, const AddProgress& progress);

} // namespace korvo
