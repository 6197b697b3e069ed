#include "platform/LargePages.h"

#include <memory>
#include <sys/mman.h>

namespace korvo {

void preferLargePages(void* memory, std::size_t bytes) noexcept
{
    constexpr std::size_t largePage = std::size_t{2} << 20;
    if (memory && std::align(largePage, largePage, memory, bytes))
        ::madvise(memory, bytes / largePage * largePage, MADV_HUGEPAGE);
}

} // namespace korvo
