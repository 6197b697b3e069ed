#pragma once

#include "metadata/MetadataBlocks.h"

namespace korvo {

/// Finds the metadata of a file, whose container is told by its content, not by its name. Nothing for a
/// container that is not known.
std::optional<MetadataBlocks> findMetadata(FileWindow& file);

// The finders of the containers, each for the part of the file that holds one. What is damaged is passed
// over.

MetadataBlocks findInJpeg(FileWindow& file, ByteRange area);

} // namespace korvo
