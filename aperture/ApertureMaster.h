#pragma once

#include "aperture/ApertureImportPlan.h"

#include <span>

namespace korvo {

/// All that the bundle says of one master and those of its versions that are photos.
struct ApertureSource {
    const ApertureLibrary::Master* master = nullptr;
    std::vector<const ApertureLibrary::Version*> versions; ///< by their number, at least one
};

/// One master made ready. Without photos its file is missing.
struct PreparedMaster {
    /// The first stands for the master, the others for its versions.
    std::vector<ApertureImportPlan::Photo> photos;
    std::size_t adjusted = 0;
    std::size_t matched = 0;
    ApertureTranslator::Report report;
};

/// The tables that describe versions, by their modelId.
struct ApertureDescriptions {
    std::unordered_map<std::int64_t, ApertureLibrary::Metadata> metadata;
    std::unordered_map<std::int64_t, ApertureLibrary::ExifValues> exif;
};

/// Looks for the files, reads and translates the adjustments. May run for several masters at once.
PreparedMaster importMaster(ApertureLibrary& library, const ApertureSource& source,
    const ApertureDescriptions& descriptions, const MatchRender& match);

} // namespace korvo
