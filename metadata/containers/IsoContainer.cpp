#include "metadata/containers/Containers.h"
#include "metadata/containers/IsoBoxes.h"

namespace korvo {

namespace {

/// Whether the items of a file are pictures. Brands don't tell: there are many, and new ones every year.
bool holdsPictures(FileWindow& file, ByteRange area)
{
    constexpr std::uint64_t versionSize = 4, kindAt = 8;
    const auto meta = findBox(file, area, "meta");
    const auto handler = meta ? findBox(file, meta->from(versionSize), "hdlr") : std::nullopt;
    const auto kind = handler ? file.start(handler->from(kindAt), 4) : std::nullopt;
    return kind && kind->text() == "pict";
}

} // namespace

MetadataBlocks findInIsoFile(FileWindow& file, ByteRange area)
{
    return holdsPictures(file, area) ? findInHeif(file, area) : findInMovie(file, area);
}

} // namespace korvo
