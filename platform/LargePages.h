#pragma once

#include <cstddef>

namespace korvo {

/// Asks for large pages in a piece of memory that has not been written yet. The processor remembers where
/// some thousands of pages are: one that goes through hundreds of megabytes of small ones looks each of them
/// up. Only advice, and only for the whole large pages inside the piece; small pieces stay as they are.
void preferLargePages(void* memory, std::size_t bytes) noexcept;

} // namespace korvo
