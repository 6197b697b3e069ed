#include "platform/PixelMemory.h"

#include "platform/LargePages.h"

#include <cstdlib>
#include <new>

namespace korvo {

namespace {

constexpr std::size_t largePage = std::size_t{2} << 20;
constexpr std::size_t cacheLine = 64;

} // namespace

void* allocatePixels(std::size_t bytes)
{
    const std::size_t alignment = bytes >= 4 * largePage ? largePage : cacheLine;
    void* memory = nullptr;
    if (::posix_memalign(&memory, alignment, bytes) != 0)
        throw std::bad_alloc();
    if (alignment == largePage)
        preferLargePages(memory, bytes);
    return memory;
}

void releasePixels(void* memory) noexcept
{
    std::free(memory);
}

} // namespace korvo
