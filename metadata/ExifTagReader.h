#pragma once

#include "metadata/containers/MetadataBlocks.h"

namespace korvo {

/// The camera facts of a file: what its container says itself, completed from its EXIF blocks. Damaged blocks
/// give what can be read of them.
ExifTags readExifTags(FileWindow& file, const MetadataBlocks& blocks);

/// The same of one TIFF structure.
ExifTags readExifTags(FileWindow& file, ByteRange exif);

} // namespace korvo
