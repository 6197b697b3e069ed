#pragma once

#include "base/Record.h"
#include "catalog/PhotoItem.h"

#include <vector>

namespace korvo {

/// Several masters gathered under one of them.
struct Stack {
    std::int64_t id = 0;
    PhotoID pick = 0;
    bool collapsed = true; // shown as its pick alone
    std::vector<PhotoID> members; // as shown: the pick, then by position, then by file name
};
KORVO_RECORD(Stack, id, pick, collapsed, members)

enum class StackState { collapsed, expanded };

} // namespace korvo
