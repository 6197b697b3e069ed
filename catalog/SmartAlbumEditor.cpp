#include "catalog/SmartAlbumEditor.h"

#include "base/Text.h"

namespace korvo {

std::string matchCountText(std::size_t count)
{
    return counted(count, "photo") + " match";
}

} // namespace korvo
