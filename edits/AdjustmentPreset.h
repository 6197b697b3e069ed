#pragma once

#include "edits/PhotoEdits.h"

namespace korvo {

/// A saved set of adjustments. A new one has an id of its own.
struct AdjustmentPreset {
    Uuid id = Uuid::random();
    std::string name;
    PhotoEdits edits;
    std::optional<bool> builtIn; ///< set on those the program brings itself
};
KORVO_RECORD(AdjustmentPreset, id, name, edits, builtIn)

} // namespace korvo
