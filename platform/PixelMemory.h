#pragma once

#include <cstddef>

namespace korvo {

/// Memory for pixels, not zeroed. Large pieces come in large pages where the system has them: a fresh image
/// costs the system one step for each page, which by small ones takes as long as rendering it. Throws
/// std::bad_alloc.
void* allocatePixels(std::size_t bytes);
void releasePixels(void* memory) noexcept;

} // namespace korvo
