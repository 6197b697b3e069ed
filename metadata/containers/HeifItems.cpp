#include "metadata/containers/HeifItems.h"

#include "metadata/containers/BoxFields.h"
#include "metadata/containers/IsoBoxes.h"

namespace korvo {

namespace {

/// How many bytes some fields of an "iloc" box have.
struct Widths {
    unsigned offset, length, base, index;

    static bool isValid(unsigned width) { return width == 0 || width == 4 || width == 8; }

    bool areValid() const
    {
        return isValid(offset) && isValid(length) && length > 0 && isValid(base) && isValid(index);
    }
};

Widths takeWidths(BoxFields& fields)
{
    const auto all = static_cast<unsigned>(fields.take(2));
    return {all >> 12 & 0xF, all >> 8 & 0xF, all >> 4 & 0xF, all & 0xF};
}

std::vector<ByteRange> takeExtents(BoxFields& fields, const Widths& widths, ByteRange area)
{
    std::vector<ByteRange> extents;
    const auto count = fields.take(2);
    for (std::uint64_t i = 0; i < count && !fields.isPastEnd(); ++i) {
        fields.take(widths.index);
        const auto offset = fields.take(widths.offset);
        extents.push_back(area.from(offset).first(fields.take(widths.length)));
    }
    return extents;
}

/// The properties that an "ipma" box gives an item, by their number.
std::vector<std::uint64_t> propertiesOf(std::optional<Bytes> associations, std::uint64_t wanted)
{
    constexpr std::uint64_t longNumbers = 1;
    BoxFields fields(associations);
    const auto versionAndFlags = fields.take(4);
    const unsigned idWidth = versionAndFlags >> 24 == 0 ? 2 : 4;
    const unsigned numberWidth = versionAndFlags & longNumbers ? 2 : 1;
    const std::uint64_t numberMask = numberWidth == 2 ? 0x7FFF : 0x7F; // the highest bit: essential or not
    const auto items = fields.take(4);
    for (std::uint64_t i = 0; i < items && !fields.isPastEnd(); ++i) {
        const auto item = fields.take(idWidth), count = fields.take(1);
        std::vector<std::uint64_t> numbers;
        for (std::uint64_t n = 0; n < count; ++n)
            numbers.push_back(fields.take(numberWidth) & numberMask);
        if (item == wanted)
            return numbers;
    }
    return {};
}

} // namespace

std::vector<ByteRange> itemExtents(
    FileWindow& file, ByteRange locations, std::uint64_t item, ByteRange wholeFile, ByteRange itemData)
{
    constexpr std::uint64_t inItemData = 1;
    BoxFields fields(file.view(locations));
    const auto version = fields.takeVersion();
    const auto widths = takeWidths(fields);
    const unsigned idWidth = version < 2 ? 2 : 4;
    const auto count = widths.areValid() ? fields.take(idWidth) : 0;
    for (std::uint64_t i = 0; i < count && !fields.isPastEnd(); ++i) {
        const auto id = fields.take(idWidth);
        const auto method = version > 0 ? fields.take(2) & 0xF : 0;
        fields.take(2); // where other files are meant; here it is always this one
        const auto base = fields.take(widths.base);
        const auto area = method == inItemData ? itemData : wholeFile;
        auto extents = takeExtents(
            fields, version > 0 ? widths : Widths{widths.offset, widths.length, 0, 0}, area.from(base));
        if (id == item)
            return fields.isPastEnd() ? std::vector<ByteRange>() : std::move(extents);
    }
    return {};
}

std::vector<std::uint64_t> describedItems(FileWindow& file, ByteRange references, std::uint64_t item)
{
    constexpr std::uint64_t versionSize = 4;
    const auto version = file.start(references, 1);
    const unsigned idWidth = version && (*version)[0] == 0 ? 2 : 4;
    std::vector<std::uint64_t> described;
    IsoBoxes boxes(file, references.from(versionSize));
    while (const auto box = boxes.next()) {
        BoxFields fields(box->type == "cdsc" ? file.view(box->content) : std::nullopt);
        if (fields.take(idWidth) != item)
            continue;
        const auto count = fields.take(2);
        for (std::uint64_t i = 0; i < count && !fields.isPastEnd(); ++i)
            described.push_back(fields.take(idWidth));
    }
    return described;
}

PixelSize itemSize(FileWindow& file, ByteRange properties, std::uint64_t item)
{
    const auto associations = findBox(file, properties, "ipma"),
               container = findBox(file, properties, "ipco");
    if (!associations || !container)
        return {};
    const auto numbers = propertiesOf(file.view(*associations), item);
    IsoBoxes boxes(file, *container);
    for (std::uint64_t number = 1; const auto box = boxes.next(); ++number) {
        if (box->type != "ispe" || std::ranges::find(numbers, number) == numbers.end())
            continue;
        BoxFields fields(file.view(box->content));
        fields.takeVersion();
        const auto width = fields.take(4);
        return {width, fields.take(4)};
    }
    return {};
}

} // namespace korvo
