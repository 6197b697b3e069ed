#pragma once

#include "metadata/ExifTags.h"
#include "metadata/containers/FileWindow.h"

#include <vector>

namespace korvo {

// Tables about the items of HEIF files (ISO 14496-12, 8.11, and ISO 23008-12, 6.5). Each is looked up for one
// item.

/// Where the item's bytes lie, by the "iloc" box: in the file or in its "idat" box. Empty when that is not
/// told.
std::vector<ByteRange> itemExtents(
    FileWindow& file, ByteRange locations, std::uint64_t item, ByteRange wholeFile, ByteRange itemData);

/// The items that the item describes, by the "iref" box.
std::vector<std::uint64_t> describedItems(FileWindow& file, ByteRange references, std::uint64_t item);

/// The size of the item's picture, by the "iprp" box.
PixelSize itemSize(FileWindow& file, ByteRange properties, std::uint64_t item);

} // namespace korvo
