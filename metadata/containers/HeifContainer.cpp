#include "metadata/containers/BoxFields.h"
#include "metadata/containers/Containers.h"
#include "metadata/containers/HeifItems.h"
#include "metadata/containers/IsoBoxes.h"
#include "metadata/containers/Unpacking.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace korvo {

namespace {

constexpr std::uint64_t versionSize = 4; // version and flags at the beginning of a box
constexpr std::size_t mostItems = 16; // of metadata that are looked at

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
        if (const auto exif = itemRange(itemAboutPhoto(exifItems_)))
            blocks.exif = exifIn(*exif);
        blocks.xmp = itemRange(itemAboutPhoto(xmpItems_));
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
        else if (box.type == "iref")
            references_ = box.content;
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
        const bool isExif = text.starts_with("Exif");
        const bool isXmp
            = text.starts_with("mime") && text.find("application/rdf+xml") != std::string_view::npos;
        if (auto& items = isExif ? exifItems_ : xmpItems_; (isExif || isXmp) && items.size() < mostItems)
            items.push_back(id);
    }

    /// The first that describes the photo or nothing; others tell of its gain map and the like.
    std::optional<std::uint64_t> itemAboutPhoto(const std::vector<std::uint64_t>& items)
    {
        for (const auto item : items)
            if (const auto described = describedItems(file_, references_, item);
                described.empty() || std::ranges::find(described, primaryItem_) != described.end())
                return item;
        return items.empty() ? std::nullopt : std::optional(items.front());
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
    ByteRange locations_, properties_, itemData_, references_;
    std::uint64_t primaryItem_ = 0;
    std::vector<std::uint64_t> exifItems_, xmpItems_;
};

} // namespace

MetadataBlocks findInHeif(FileWindow& file, ByteRange area)
{
    const auto meta = findBox(file, area, "meta");
    return meta ? HeifFinder(file, area).find(*meta) : MetadataBlocks();
}

} // namespace korvo
