#pragma once

#include "base/Dates.h"
#include "catalog/PhotoItem.h"

#include <optional>
#include <string>

namespace korvo {

/// What the catalog knows of a master's file and of the metadata that belongs in it.
struct FileRecord {
    PhotoID id = 0;
    std::filesystem::path path;
    std::optional<UnixTime> fileDate; // as it was when the file was read or written last
    std::optional<std::int64_t> fileSize; // likewise; not set for a file that was never read
    bool dirty = false;
    std::string backup; // the fields as the file held them when it was found; empty: not yet known
    PhotoMetadata metadata;
    std::optional<PhotoMetadata> base; // of one that is dirty: what the file held when both last agreed
};

} // namespace korvo
