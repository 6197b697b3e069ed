#include "metadata/BoxFields.h"
#include "metadata/Containers.h"
#include "metadata/HeifItems.h"
#include "metadata/IsoBoxes.h"
#include "metadata/Unpacking.h"

#include <string_view>

namespace korvo {

namespace {

constexpr std::uint64_t versionSize = 4; // version and flags at the beginning of a box

/// Finds in HEIC, HEIF and AVIF files, whose pictures and metadata are items (ISO 23008-12).
class HeifFinder {
public:
    HeifFinder(FileWindow& file, ByteRange area) : file_(file), area_(area) { }

    MetadataBlocks find(ByteRange meta)
    {
        IsoBoxes boxes(file_, meta.from(versionSize));
        while (const auto box = boxes.next())
            take(*box);
        MetadataBlocks blocks;
        if (const auto exif = itemRange(exifItem_))
            blocks.exif = exifIn(*exif);
        blocks.xmp = itemRange(xmpItem_);
        blocks.size = itemSize(file_, properties_, primaryItem_);
        return blocks;
    }

private:
    void take(const IsoBoxes::Box& box)
    {
        if (box.type == "pitm")
            takePrimaryItem(box.content);
        else if (box.type == "iinf")
            takeItems(box.content);
        else if (box.type == "iloc")
            locations_ = box.content;
        else if (box.type == "idat")
            itemData_ = box.content;
        else if (box.type == "iprp")
            properties_ = box.content;
    }

    void takePrimaryItem(ByteRange box)
    {
        BoxFields fields(file_.view(box));
        primaryItem_ = fields.takeVersion() == 0 ? fields.take(2) : fields.take(4);
    }

    void takeItems(ByteRange box)
    {
        const auto version = file_.start(box, 1);
        const std::uint64_t countSize = version && (*version)[0] == 0 ? 2 : 4;
        IsoBoxes items(file_, box.from(versionSize + countSize));
        while (const auto item = items.next())
            if (item->type == "infe")
                takeItem(item->content);
    }

    void takeItem(ByteRange box)
    {
        BoxFields fields(file_.view(box));
        const auto version = fields.takeVersion();
        if (version < 2)
            return;
        const auto id = fields.take(version == 2 ? 2 : 4);
        fields.take(2); // whether it is encrypted
        const auto text = fields.rest().text(); // kind, then name and content type, each up to a NUL
        if (text.starts_with("Exif") && !exifItem_)
            exifItem_ = id;
        else if (text.starts_with("mime") && text.find("application/rdf+xml") != std::string_view::npos
            && !xmpItem_)
            xmpItem_ = id;
    }

    std::optional<ByteRange> itemRange(std::optional<std::uint64_t> item)
    {
        if (!item)
            return std::nullopt;
        const auto extents = itemExtents(file_, locations_, *item, area_, itemData_);
        return extents.empty() ? std::nullopt : file_.joined(extents);
    }

    /// The item begins with the offset, from behind it, of the TIFF structure.
    std::optional<ByteRange> exifIn(ByteRange item)
    {
        constexpr std::uint64_t offsetSize = 4;
        const auto offset = file_.start(item, offsetSize);
        if (!offset)
            return std::nullopt;
        return withoutExifMark(
            file_, item.from(offsetSize).from(offset->bigEndian(0, offsetSize).value_or(0)));
    }

    FileWindow& file_;
    ByteRange area_;
    ByteRange locations_, properties_, itemData_;
    std::uint64_t primaryItem_ = 0;
    std::optional<std::uint64_t> exifItem_, xmpItem_;
};

} // namespace

MetadataBlocks findInHeif(FileWindow& file, ByteRange area)
{
    const auto meta = findBox(file, area, "meta");
    return meta ? HeifFinder(file, area).find(*meta) : MetadataBlocks();
}

} // namespace korvo
