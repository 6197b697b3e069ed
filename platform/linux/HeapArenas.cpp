#include "platform/HeapArenas.h"

#include <malloc.h>

namespace korvo {

void keepFewHeapArenas() noexcept
{
#ifdef M_ARENA_MAX
    // The heap of each further thread cost the window up to 350 MB at 1,000,000 photos, and saved it no time.
    ::mallopt(M_ARENA_MAX, 4);
#endif
}

} // namespace korvo
