#include "edits/PhotoEdits.h"

namespace korvo {

bool isIdentity(const PhotoEdits& edits)
{
    static const PhotoEdits identity;
    return edits == identity;
}

} // namespace korvo
