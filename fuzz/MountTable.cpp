// Any bytes as the kernel's table of mounts: names of mounts and devices in it are chosen by users.
#include "platform/linux/MountTable.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    for (const auto& mount : korvo::parseMountTable({reinterpret_cast<const char*>(data), size}))
        if (mount.point.size() > size)
            std::abort();
    return 0;
}
