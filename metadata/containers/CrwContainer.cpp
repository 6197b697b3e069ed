#include "metadata/CaptureDate.h"
#include "metadata/containers/Containers.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace korvo {

namespace {

// Canon's CIFF format: a heap of records with a directory at its end, whose offset stands in its last four
// bytes. Everything is little-endian here.

enum Record : std::uint16_t {
    makeAndModel = 0x080a,
    focalLength = 0x1029,
    shotInformation = 0x102a,
    cameraSettings = 0x102d,
    imageInformation = 0x1810,
    timeStamp = 0x180e,
};

constexpr std::uint16_t isHeap = 0x2800, isOtherHeap = 0x3000, kindMask = 0x3800;
constexpr std::uint16_t isInDirectory = 0x4000, recordMask = 0x3fff;
constexpr std::uint64_t entrySize = 10;
constexpr int deepest = 4;
constexpr std::uint64_t mostDirectories = 64;

/// Steps of a stop in Canon's 32nds, of which 12 and 20 stand for a third and two thirds.
double stops(std::int16_t value)
{
    const int whole = std::abs(value) / 32, rest = std::abs(value) % 32;
    const double fraction = rest == 12 ? 1.0 / 3 : rest == 20 ? 2.0 / 3 : rest / 32.0;
    return std::copysign(whole + fraction, value);
}

class CrwFinder {
public:
    explicit CrwFinder(FileWindow& file) : file_(file) { }

    MetadataBlocks find(ByteRange area)
    {
        if (const auto headerSize = file_.start(area.from(2), 4))
            takeHeap(area.from(headerSize->littleEndian(0, 4).value_or(0)), 0);
        takeTrailer(area);
        if (focalUnits_ > 0 && blocks_.own.focalLength)
            blocks_.own.focalLength = *blocks_.own.focalLength / focalUnits_;
        return blocks_;
    }

private:
    /// Behind the heap there may be blocks of a kind, a length and data between a header and a footer, all of
    /// it big-endian. The end of the footer is the heap's directory's offset. One of the blocks is an XMP
    /// packet.
    void takeTrailer(ByteRange area)
    {
        constexpr std::string_view mark("CANON OPTIONAL DATA\0", 20);
        constexpr std::uint64_t footerSize = 64, blockHeaderSize = 8, xmpBlock = 0xffff00f6;
        const auto end = area.length - std::min(footerSize, area.length);
        const auto footer = file_.start(area.from(end), footerSize);
        if (!footer || !footer->startsWith(mark))
            return;
        const auto length = std::min(footer->bigEndian(mark.size(), 4).value_or(0), end);
        auto rest = area.from(end - length).first(length);
        while (const auto header = file_.start(rest, blockHeaderSize)) {
            const auto data = rest.from(blockHeaderSize).first(header->bigEndian(4, 4).value_or(0));
            if (header->bigEndian(0, 4) == xmpBlock)
                blocks_.xmp = data;
            rest = rest.from(blockHeaderSize + data.length);
        }
    }

    void takeHeap(ByteRange heap, int depth)
    {
        constexpr std::uint64_t offsetSize = 4;
        const auto offset
            = heap.length < offsetSize ? std::nullopt : file_.view(heap.from(heap.length - offsetSize));
        if (!offset || depth > deepest || ++directories_ > mostDirectories)
            return;
        const auto directory = heap.from(offset->littleEndian(0, offsetSize).value_or(0));
        const auto count = file_.start(directory, 2);
        const auto entries = count
            ? file_.start(directory.from(2), count->littleEndian(0, 2).value_or(0) * entrySize)
            : std::nullopt;
        for (std::uint64_t at = 0; entries && at < entries->size(); at += entrySize)
            takeEntry(heap, *entries, at, directory.from(2 + at), depth);
    }

    void takeEntry(ByteRange heap, Bytes entries, std::uint64_t at, ByteRange entry, int depth)
    {
        const auto tag = static_cast<std::uint16_t>(entries.littleEndian(at, 2).value_or(0));
        const auto length = entries.littleEndian(at + 2, 4).value_or(0);
        const auto data = heap.from(entries.littleEndian(at + 6, 4).value_or(0)).first(length);
        const auto kind = tag & kindMask;
        if (tag & isInDirectory)
            takeRecord(tag & recordMask, entry.from(2).first(8));
        else if (kind == isHeap || kind == isOtherHeap)
            takeHeap(data, depth + 1);
        else
            takeRecord(tag & recordMask, data);
    }

    void takeRecord(int record, ByteRange data)
    {
        constexpr std::uint64_t longestLookedAt = 1024;
        switch (record) {
        case makeAndModel:
            return takeMakeAndModel(data.first(longestLookedAt));
        case imageInformation:
            return takeSize(data);
        case timeStamp:
            return takeDate(data);
        case shotInformation:
            return takeShot(data);
        case focalLength:
            blocks_.own.focalLength = shortAt(data, 1);
            break;
        case cameraSettings:
            focalUnits_ = shortAt(data, 25).value_or(0);
            break;
        default:
            break;
        }
    }

    void takeMakeAndModel(ByteRange data)
    {
        const auto bytes = file_.view(data);
        const auto text = bytes ? bytes->text() : std::string_view();
        const auto makeEnd = text.find('\0');
        if (makeEnd == std::string_view::npos)
            return;
        const auto model = text.substr(makeEnd + 1);
        blocks_.own.make = text.substr(0, makeEnd);
        blocks_.own.model = model.substr(0, model.find('\0'));
    }

    void takeSize(ByteRange data)
    {
        if (const auto bytes = file_.start(data, 8))
            blocks_.size = {bytes->littleEndian(0, 4).value_or(0), bytes->littleEndian(4, 4).value_or(0)};
    }

    /// Seconds since 1970 by the camera's clock, of whatever zone.
    void takeDate(ByteRange data)
    {
        if (const auto bytes = file_.start(data, 4))
            blocks_.own.dateTimeOriginal
                = file_.keep(exifDate(static_cast<std::int64_t>(bytes->littleEndian(0, 4).value_or(0))));
    }

    void takeShot(ByteRange data)
    {
        const auto automaticIso = shortAt(data, 1), baseIso = shortAt(data, 2);
        const auto aperture = shortAt(data, 21), exposure = shortAt(data, 22);
        if (baseIso && *baseIso != 0)
            blocks_.own.iso = static_cast<std::uint32_t>(
                std::lround(100 * std::exp2((*baseIso + automaticIso.value_or(0)) / 32.0 - 5)));
        if (aperture && *aperture != 0)
            blocks_.own.fNumber = std::exp2(stops(*aperture) / 2);
        if (exposure && *exposure != 0)
            blocks_.own.exposureTime = std::exp2(-stops(*exposure));
    }

    std::optional<std::int16_t> shortAt(ByteRange data, std::uint64_t index)
    {
        const auto bytes = file_.start(data.from(2 * index), 2);
        return bytes ? std::optional(static_cast<std::int16_t>(bytes->littleEndian(0, 2).value_or(0)))
                     : std::nullopt;
    }

    FileWindow& file_;
    MetadataBlocks blocks_{.parts = {.exif = false, .xmp = true}};
    std::uint64_t directories_ = 0;
    double focalUnits_ = 0;
};

} // namespace

MetadataBlocks findInCrw(FileWindow& file, ByteRange area)
{
    return CrwFinder(file).find(area);
}

} // namespace korvo
