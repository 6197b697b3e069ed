#pragma once

#include "edits/PhotoEdits.h"

namespace korvo {

/// The edits as they are rendered: the fields of each switched-off brick are neutral, here and in the local
/// layers, and none is left as switched off. Names that are no brick are passed over.
PhotoEdits withoutDisabledBricks(PhotoEdits edits);

} // namespace korvo
