#include "platform/DirectFile.h"

#include <cstdlib>
#include <fcntl.h>
#include <new>

namespace korvo {

void FreeDirectBlock::operator()(std::uint8_t* memory) const
{
    std::free(memory);
}

DirectBlock makeDirectBlock(std::size_t size)
{
    auto* const memory = static_cast<std::uint8_t*>(std::aligned_alloc(directUnit, size));
    if (!memory)
        throw std::bad_alloc();
    return DirectBlock(memory);
}

void goDirect(int descriptor)
{
    const int flags = fcntl(descriptor, F_GETFL);
    if (flags >= 0)
        fcntl(descriptor, F_SETFL, flags | O_DIRECT); // what refuses it is read and written as ever
}

bool leaveDirect(int descriptor)
{
    const int flags = fcntl(descriptor, F_GETFL);
    return flags >= 0 && (flags & O_DIRECT) && fcntl(descriptor, F_SETFL, flags & ~O_DIRECT) == 0;
}

} // namespace korvo
