#pragma once

#include "aperture/ApertureAdjustment.h"
#include "edits/PhotoEdits.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace korvo {

/// Turns the adjustments that Aperture stored for a version into our own edit record. Nothing in a
/// translation fails: what could not be translated, or only with a guess, is counted. Translations of several
/// versions may run at once, each with a report of its own.
struct ApertureTranslator {
    /// How many adjustments of each operation did not come over as they were, by Aperture's names.
    struct Report {
        std::map<std::string, std::int64_t> unsupported; ///< dropped
        std::map<std::string, std::int64_t> approximated; ///< translated with a guess

        void add(const Report& other);
    };

    /// The white balance that the camera chose.
    struct WhiteBalance {
        std::optional<double> temperature; ///< kelvin
        std::optional<double> tint;
    };

    /// What a translation needs to know of the photo.
    struct Photo {
        WhiteBalance asShot;
        /// The master's size in pixels before it is turned; not above 0 when it is unknown.
        std::int64_t masterWidth = 0;
        std::int64_t masterHeight = 0;
        /// Degrees by which the version is turned clockwise: the crop, which Aperture makes before it turns,
        /// becomes one of the turned image. The turn itself is no adjustment and not part of the edits.
        std::int64_t rotation = 0;
    };

    /// The TIFF file of a mask by its uuid, if it exists.
    using MaskFile = std::function<std::optional<std::filesystem::path>(const std::string& uuid)>;

    /// The edits that stand for the adjustments, given in Aperture's order. Those that are not enabled are
    /// passed over. Every number in the result is finite.
    static PhotoEdits translate(std::span<const ApertureAdjustment> adjustments, const Photo& photo,
        const MaskFile& maskFile, Report& report);

    /// What the white balance adjustments, enabled or not, tell of the camera's choice: Aperture keeps it in
    /// those that still have their default values. Worth asking for each version of a master.
    static WhiteBalance asShot(std::span<const ApertureAdjustment> adjustments);
};

KORVO_RECORD(ApertureTranslator::Report, unsupported, approximated)

} // namespace korvo
