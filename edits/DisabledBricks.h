#pragma once

#include "edits/AdjustmentBrick.h"
#include "edits/PhotoEdits.h"

namespace korvo {

/// The edits as they are rendered: the fields of each switched-off brick are neutral, here and in the local
/// layers, and none is left as switched off. Names that are no brick are passed over.
PhotoEdits withoutDisabledBricks(PhotoEdits edits);

bool isOn(AdjustmentBrick brick, const PhotoEdits& edits);
/// Both keep the brick's values, and the other names in `disabledBricks`.
void switchOn(AdjustmentBrick brick, PhotoEdits& edits);
void switchOff(AdjustmentBrick brick, PhotoEdits& edits);

/// Whether the brick's fields are as in no edit.
bool isNeutral(AdjustmentBrick brick, const PhotoEdits& edits);
/// Makes the brick's fields neutral, and switches it on.
void reset(AdjustmentBrick brick, PhotoEdits& edits);

} // namespace korvo
