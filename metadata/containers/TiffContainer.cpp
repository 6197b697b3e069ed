#include "metadata/ExifBlock.h"
#include "metadata/ExifTagReader.h"
#include "metadata/containers/Containers.h"
#include "metadata/containers/Photoshop.h"

#include <algorithm>
#include <vector>

namespace korvo {

namespace {

using Entry = ExifBlock::Entry;

constexpr std::uint32_t mostPictures = 16;
constexpr std::uint32_t fullPicture = 0; // against 1 for a reduced one

/// One of the pictures of a TIFF or raw file: the photo, its thumbnail, a preview.
struct Picture {
    PixelSize size;
    std::optional<std::uint32_t> kind;
};

/// Finds in TIFF files and in the raw files that are built like them.
class TiffFinder {
public:
    TiffFinder(FileWindow& file, ByteRange area, ExifBlock block)
        : file_(file), area_(area), block_(block) { }

    MetadataBlocks find()
    {
        blocks_.exif = area_;
        takeFirstDirectory();
        if (!blocks_.iptc && photoshop_)
            blocks_.iptc = findIptcInPhotoshop(file_, *photoshop_);
        for (const auto directory : subdirectories_)
            takePicture(directory);
        blocks_.size = pictureSize();
        return blocks_;
    }

private:
    void takeFirstDirectory()
    {
        takePicture(block_.firstDirectory());
        block_.forEachEntry(block_.firstDirectory(), [&](const Entry& entry) {
            switch (entry.tag) {
            case 0x014a:
                return takeSubdirectories(entry);
            case 0x02bc:
                blocks_.xmp = block_.range(entry);
                break;
            case 0x83bb:
                blocks_.iptc = block_.range(entry);
                break;
            case 0x8649:
                photoshop_ = block_.range(entry);
                break;
            default:
                break;
            }
        });
    }

    void takeSubdirectories(const Entry& entry)
    {
        for (std::uint32_t i = 0;
             i < entry.count && i < mostPictures && subdirectories_.size() < mostPictures; ++i)
            if (const auto directory = block_.integer(entry, i))
                subdirectories_.push_back(*directory);
    }

    void takePicture(std::uint32_t directory)
    {
        Picture picture;
        block_.forEachEntry(directory, [&](const Entry& entry) {
            if (entry.tag == 0x00fe)
                picture.kind = block_.integer(entry);
            else if (entry.tag == 0x0100)
                picture.size.width = block_.integer(entry).value_or(0);
            else if (entry.tag == 0x0101)
                picture.size.height = block_.integer(entry).value_or(0);
        });
        if (!picture.size.empty())
            pictures_.push_back(picture);
    }

    /// The size of the photo: of the first picture that is said to be the full one, else of the first that is
    /// not said to be less. Some raw files have only previews here and tell the size among the camera's
    /// facts.
    PixelSize pictureSize() const
    {
        const auto told = tellsSizeInExif() ? readExifTags(file_, area_).size : PixelSize();
        if (!told.empty())
            return told;
        for (const auto kind : {std::optional(fullPicture), std::optional<std::uint32_t>()})
            if (const auto found = std::ranges::find(pictures_, kind, &Picture::kind);
                found != pictures_.end())
                return found->size;
        return readExifTags(file_, area_).size;
    }

    /// Canon's CR2 and Phase One's IIQ.
    bool tellsSizeInExif() const
    {
        const auto mark = file_.view(area_.offset + 8, 4);
        return mark && (mark->startsWith("CR") || mark->startsWith("IIII") || mark->startsWith("MMMM"));
    }

    FileWindow& file_;
    ByteRange area_;
    ExifBlock block_;
    MetadataBlocks blocks_;
    std::optional<ByteRange> photoshop_;
    std::vector<std::uint32_t> subdirectories_;
    std::vector<Picture> pictures_;
};

} // namespace

MetadataBlocks findInTiff(FileWindow& file, ByteRange area)
{
    const auto block = ExifBlock::open(file, area);
    return block ? TiffFinder(file, area, *block).find() : MetadataBlocks();
}

} // namespace korvo
