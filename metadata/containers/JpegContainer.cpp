#include "metadata/containers/Containers.h"
#include "metadata/containers/Photoshop.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace korvo {

namespace {

using namespace std::string_view_literals;

constexpr std::uint8_t app1 = 0xE1, app13 = 0xED, startOfScan = 0xDA, endOfImage = 0xD9;
constexpr auto exifMark = "Exif\0\0"sv;
constexpr auto xmpMark = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr auto extendedXmpMark = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr auto photoshopMark = "Photoshop 3.0\0"sv;

struct Segment {
    std::uint8_t marker = 0;
    ByteRange payload;
};

/// Walks the segments up to the picture's data (ITU-T T.81, annex B), over any rubbish between them.
class Segments {
public:
    Segments(FileWindow& file, ByteRange area) : file_(file), rest_(area) { }

    std::optional<Segment> next()
    {
        auto marker = nextMarker();
        while (marker && standsAlone(*marker))
            marker = nextMarker();
        if (!marker || *marker == startOfScan || *marker == endOfImage)
            return std::nullopt;
        const auto length = file_.start(rest_, 2);
        if (!length)
            return std::nullopt;
        return Segment{*marker, takePayload(length->bigEndian(0, 2).value_or(0))};
    }

private:
    static bool standsAlone(std::uint8_t marker)
    {
        return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
    }

    std::optional<std::uint8_t> nextMarker()
    {
        while (const auto bytes = file_.start(rest_, 2)) {
            const auto marker = (*bytes)[1];
            const bool found = (*bytes)[0] == 0xFF && marker != 0xFF && marker != 0;
            rest_ = rest_.from(found ? 2 : 1);
            if (found)
                return marker;
        }
        return std::nullopt;
    }

    /// `length` counts its own two bytes. What the end of the file cuts off is taken as far as it goes.
    ByteRange takePayload(std::uint64_t length)
    {
        const auto segment = rest_.first(std::max<std::uint64_t>(length, 2));
        rest_ = rest_.from(segment.length);
        return segment.from(2);
    }

    FileWindow& file_;
    ByteRange rest_;
};

/// One part of an XMP packet that is too long for a segment (Adobe, XMP: Storage in Files, 1.1.3.1).
struct ExtendedXmpPart {
    static constexpr std::uint64_t guidSize = 32, headerSize = guidSize + 4 + 4;

    std::string_view guid;
    std::uint64_t position = 0; ///< of the part in the whole
    ByteRange data;
};

class JpegFinder {
public:
    explicit JpegFinder(FileWindow& file) : file_(file) { }

    MetadataBlocks find(ByteRange area)
    {
        Segments segments(file_, area);
        while (const auto segment = segments.next())
            take(*segment);
        if (!photoshop_.empty())
            if (const auto resources = file_.joined(photoshop_))
                blocks_.iptc = findIptcInPhotoshop(file_, *resources);
        if (!extendedXmp_.empty())
            blocks_.extendedXmp = joinedExtendedXmp();
        return blocks_;
    }

private:
    void take(const Segment& segment)
    {
        if (segment.marker == app1)
            takeApp1(segment.payload);
        else if (segment.marker == app13 && startsWith(segment.payload, photoshopMark))
            photoshop_.push_back(segment.payload.from(photoshopMark.size()));
        else if (isFrame(segment.marker) && blocks_.size.empty())
            takeFrame(segment.payload);
    }

    void takeApp1(ByteRange payload)
    {
        if (!blocks_.exif && startsWith(payload, exifMark))
            blocks_.exif = payload.from(exifMark.size());
        else if (!blocks_.xmp && startsWith(payload, xmpMark))
            blocks_.xmp = payload.from(xmpMark.size());
        else if (startsWith(payload, extendedXmpMark))
            takeExtendedXmp(payload.from(extendedXmpMark.size()));
    }

    void takeExtendedXmp(ByteRange payload)
    {
        using Part = ExtendedXmpPart;
        if (const auto header = file_.start(payload, Part::headerSize))
            extendedXmp_.push_back({header->text().substr(0, Part::guidSize),
                header->bigEndian(Part::guidSize + 4, 4).value_or(0), payload.from(Part::headerSize)});
    }

    /// Start of frame, of any coding; C4, C8 and CC of the same row mean other things.
    static bool isFrame(std::uint8_t marker)
    {
        return (marker & 0xF0) == 0xC0 && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    }

    void takeFrame(ByteRange payload)
    {
        if (const auto frame = file_.start(payload, 5))
            blocks_.size = {frame->bigEndian(3, 2).value_or(0), frame->bigEndian(1, 2).value_or(0)};
    }

    /// The parts that the main packet asks for, in their order.
    std::optional<ByteRange> joinedExtendedXmp()
    {
        const auto packet = blocks_.xmp ? file_.view(*blocks_.xmp) : std::nullopt;
        if (!packet)
            return std::nullopt;
        const auto guid = extendedXmp_.front().guid;
        std::erase_if(extendedXmp_, [&](const auto& part) { return part.guid != guid; });
        std::ranges::stable_sort(extendedXmp_, {}, &ExtendedXmpPart::position);
        std::vector<ByteRange> parts;
        for (const auto& part : extendedXmp_)
            parts.push_back(part.data);
        return packet->text().find(guid) == std::string_view::npos ? std::nullopt : file_.joined(parts);
    }

    bool startsWith(ByteRange payload, std::string_view mark)
    {
        const auto bytes = file_.start(payload, mark.size());
        return bytes && bytes->text() == mark;
    }

    FileWindow& file_;
    MetadataBlocks blocks_;
    std::vector<ByteRange> photoshop_;
    std::vector<ExtendedXmpPart> extendedXmp_;
};

} // namespace

MetadataBlocks findInJpeg(FileWindow& file, ByteRange area)
{
    return JpegFinder(file).find(area);
}

} // namespace korvo
