#pragma once

#include "metadata/containers/MetadataBlocks.h"

namespace korvo {

/// Finds the metadata of a file, whose container is told by its content, not by its name. Nothing for a
/// container that is not known.
std::optional<MetadataBlocks> findMetadata(FileWindow& file);

// The finders of the containers, each for the part of the file that holds one. What is damaged is passed
// over.

MetadataBlocks findInAvi(FileWindow& file, ByteRange area);
MetadataBlocks findInBmp(FileWindow& file, ByteRange area);
MetadataBlocks findInCrw(FileWindow& file, ByteRange area);
MetadataBlocks findInGif(FileWindow& file, ByteRange area);
MetadataBlocks findInHeif(FileWindow& file, ByteRange area);
MetadataBlocks findInIsoFile(FileWindow& file, ByteRange area);
MetadataBlocks findInJpeg(FileWindow& file, ByteRange area);
MetadataBlocks findInMovie(FileWindow& file, ByteRange area);
MetadataBlocks findInMrw(FileWindow& file, ByteRange area);
MetadataBlocks findInPng(FileWindow& file, ByteRange area);
MetadataBlocks findInRaf(FileWindow& file, ByteRange area);
MetadataBlocks findInRw2(FileWindow& file, ByteRange area);
MetadataBlocks findInTiff(FileWindow& file, ByteRange area);
MetadataBlocks findInWebp(FileWindow& file, ByteRange area);
MetadataBlocks findInX3f(FileWindow& file, ByteRange area);

} // namespace korvo
