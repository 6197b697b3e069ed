#pragma once

#include "metadata/containers/FileWindow.h"

namespace korvo {

/// The IPTC data among Photoshop's image resources (Adobe Photoshop File Formats, "8BIM").
std::optional<ByteRange> findIptcInPhotoshop(FileWindow& file, ByteRange resources);

} // namespace korvo
