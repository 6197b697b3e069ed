#include "platform/LargePages.h"

#include <memory>
#include <sys/mman.h>

namespace korvo {

void preferLargePages(void* memory, std::size_t bytes) noexcept
{
    constexpr std::size_t pageSize = std::size_t{2} << 20;
    if (memory && std::align(pageSize, pageSize, memory, bytes))
        ::madvise(memory, bytes / pageSize * pageSize, MADV_HUGEPAGE);
}

} // namespace korvo
