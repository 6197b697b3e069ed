#pragma once

#include "aperture/BinaryPlist.h"

#include <optional>
#include <string>

namespace korvo {

/// One adjustment of a version as Aperture stored it.
struct ApertureAdjustment {
    std::string name; ///< Aperture's name of the operation: "RKExposureOperation"
    bool isEnabled = false;
    std::optional<std::string> maskUuid;
    /// Its archive; the root is null when there is none. The values by their keys ("inputEV") stand in the
    /// root's dictionary "inputKeys", or in the root itself.
    BinaryPlist parameters;
};

} // namespace korvo
