#include "platform/ExifPicture.h"

#include <algorithm>
#include <string_view>

namespace korvo {

namespace {

using namespace std::string_view_literals;

constexpr std::uint8_t app1 = 0xE1, app2 = 0xE2, startOfScan = 0xDA, endOfImage = 0xD9;
constexpr auto exifMark = "Exif\0\0"sv, multiPictureMark = "MPF\0"sv, profileMark = "ICC_PROFILE\0"sv,
               jpegMark = "\xFF\xD8\xFF"sv;

/// The directories of a TIFF structure in either byte order (TIFF 6.0, section 2).
class TiffDirectories {
public:
    static std::optional<TiffDirectories> open(Bytes block)
    {
        if (block.startsWith("II*\0"sv) || block.startsWith("MM\0*"sv))
            return TiffDirectories(block);
        return std::nullopt;
    }

    std::uint64_t first() const { return number(4, 4).value_or(0); }
    std::uint64_t after(std::uint64_t directory) const
    {
        return number(directory + 2 + entrySize * count(directory), 4).value_or(0);
    }

    /// Where the entry of a tag lies in a directory.
    std::optional<std::uint64_t> entry(std::uint64_t directory, std::uint16_t tag) const
    {
        for (std::uint64_t i = 0; directory != 0 && i < count(directory); ++i)
            if (number(directory + 2 + entrySize * i, 2) == tag)
                return directory + 2 + entrySize * i;
        return std::nullopt;
    }

    /// The first number of a tag: of 16 or 32 bits.
    std::optional<std::uint64_t> value(std::uint64_t directory, std::uint16_t tag) const
    {
        constexpr std::uint64_t shortType = 3;
        const auto at = entry(directory, tag);
        if (!at)
            return std::nullopt;
        return number(*at + 8, number(*at + 2, 2) == shortType ? 2 : 4);
    }

    /// The bytes of a tag's values, which lie outside its entry when they are more than four.
    std::optional<Bytes> bytes(std::uint64_t directory, std::uint16_t tag) const
    {
        const auto at = entry(directory, tag);
        const auto length = at ? number(*at + 4, 4) : std::nullopt;
        if (!length)
            return std::nullopt;
        return block_.slice(*length > 4 ? number(*at + 8, 4).value_or(0) : *at + 8, *length);
    }

    std::optional<std::uint64_t> number(std::uint64_t offset, unsigned width) const
    {
        return isBigEndian_ ? block_.bigEndian(offset, width) : block_.littleEndian(offset, width);
    }

private:
    static constexpr std::uint64_t entrySize = 12;

    explicit TiffDirectories(Bytes block) : block_(block), isBigEndian_(block[0] == 'M') { }

    std::uint64_t count(std::uint64_t directory) const { return number(directory, 2).value_or(0); }

    Bytes block_;
    bool isBigEndian_;
};

struct Segment {
    std::uint8_t marker = 0;
    std::uint64_t offset = 0; ///< of the payload
    Bytes payload;
};

/// Calls `visit` with each segment up to the pixels, until it returns false (ITU-T T.81, annex B).
template <typename Visit>
void forEachSegment(Bytes jpeg, Visit visit)
{
    constexpr int mostSteps = 1 << 16; // beyond any file's; made ones would be walked through for minutes
    std::uint64_t at = 2;
    for (int step = 0; step < mostSteps && at + 4 <= jpeg.size() && jpeg[at] == 0xFF; ++step) {
        const auto marker = jpeg[at + 1];
        if (marker == 0xFF) { // filled up
            ++at;
            continue;
        }
        if (marker == 0 || marker == startOfScan || marker == endOfImage)
            return;
        const auto length = jpeg.bigEndian(at + 2, 2).value_or(0);
        const auto payload = jpeg.slice(at + 4, length < 2 ? 0 : length - 2);
        if (!payload || !visit(Segment{marker, at + 4, *payload}))
            return;
        at += 2 + std::max<std::uint64_t>(length, 2);
    }
}

/// Start of frame of a coding that shows pictures: baseline, extended or progressive, Huffman or arithmetic.
bool isFrame(std::uint8_t marker)
{
    return marker == 0xC0 || marker == 0xC1 || marker == 0xC2 || marker == 0xC9 || marker == 0xCA;
}

bool isLargeThumbnail(std::uint64_t attributes)
{
    constexpr std::uint64_t typeMask = 0xFFFFFF, firstClass = 0x010001, lastClass = 0x01000F;
    const auto type = attributes & typeMask;
    return type >= firstClass && type <= lastClass;
}

/// The large thumbnails that the multi-picture index in `payload` names. Their offsets are counted from
/// behind its mark, which lies at `base` in the file.
void takeMultiPictures(Bytes payload, std::uint64_t base, std::vector<EmbeddedJpeg>& previews)
{
    constexpr std::uint16_t entriesTag = 0xB002;
    constexpr std::uint64_t entrySize = 16, mostEntries = 32; // of all indices together
    const auto index = TiffDirectories::open(payload);
    const auto entries = index ? index->bytes(index->first(), entriesTag) : std::nullopt;
    if (!entries)
        return;
    const auto start = static_cast<std::uint64_t>(entries->data() - payload.data());
    for (std::uint64_t i = 0; i < entries->size() / entrySize && previews.size() < mostEntries; ++i) {
        const auto field
            = [&](unsigned offset) { return index->number(start + i * entrySize + offset, 4).value_or(0); };
        if (isLargeThumbnail(field(0)) && field(8) != 0)
            previews.push_back({base + field(8), field(4)});
    }
}

/// A profile's parts, each behind its number and the count of all, joined in their order; empty when one is
/// missing (ICC.1:2022, B.4).
std::vector<std::uint8_t> joined(std::vector<Bytes> parts)
{
    std::ranges::stable_sort(parts, {}, [](Bytes part) { return part[0]; });
    std::vector<std::uint8_t> profile;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (parts[i][0] != i + 1 || parts[i][1] != parts.size())
            return {};
        profile.insert(profile.end(), parts[i].data() + 2, parts[i].data() + parts[i].size());
    }
    return profile;
}

} // namespace

ExifPicture exifPicture(Bytes tiff)
{
    constexpr std::uint16_t orientation = 0x0112, jpegOffset = 0x0201, jpegLength = 0x0202,
                            exifDirectory = 0x8769, interoperability = 0xA005, interoperabilityIndex = 1;
    ExifPicture picture;
    const auto block = TiffDirectories::open(tiff);
    if (!block)
        return picture;
    const auto first = block->first();
    picture.orientation = orientationOf(static_cast<int>(block->value(first, orientation).value_or(1)));
    const auto second = block->after(first);
    const auto offset = block->value(second, jpegOffset), length = block->value(second, jpegLength);
    if (offset && length && tiff.slice(*offset, *length))
        picture.thumbnail = {*offset, *length};
    const auto exif = block->value(first, exifDirectory).value_or(0);
    const auto rules = block->bytes(block->value(exif, interoperability).value_or(0), interoperabilityIndex);
    picture.isAdobeRGB = rules && rules->startsWith("R03");
    return picture;
}

std::optional<JpegSize> jpegSize(Bytes bytes)
{
    std::optional<JpegSize> size;
    if (!bytes.startsWith(jpegMark))
        return size;
    forEachSegment(bytes, [&](const Segment& segment) {
        if (isFrame(segment.marker) && segment.payload.size() >= 5)
            size = JpegSize{static_cast<int>(segment.payload.bigEndian(3, 2).value_or(0)),
                static_cast<int>(segment.payload.bigEndian(1, 2).value_or(0))};
        const bool isOtherFrame = (segment.marker & 0xF0) == 0xC0 && segment.marker != 0xC4
            && segment.marker != 0xC8 && segment.marker != 0xCC;
        return !size && !isOtherFrame;
    });
    return size && size->width > 0 && size->height > 0 ? size : std::nullopt;
}

JpegHead readJpegHead(Bytes head)
{
    JpegHead result;
    std::vector<Bytes> profile;
    bool hasExif = false;
    forEachSegment(head, [&](const Segment& segment) {
        if (segment.marker == app1 && segment.payload.startsWith(exifMark) && !hasExif) {
            hasExif = true;
            result.exif = exifPicture(segment.payload.from(exifMark.size()));
            if (const auto& thumbnail = result.exif.thumbnail)
                result.previews.push_back(
                    {segment.offset + exifMark.size() + thumbnail->offset, thumbnail->length});
        } else if (segment.marker == app2 && segment.payload.startsWith(multiPictureMark)) {
            takeMultiPictures(segment.payload.from(multiPictureMark.size()),
                segment.offset + multiPictureMark.size(), result.previews);
        } else if (segment.marker == app2 && segment.payload.startsWith(profileMark)) {
            if (const auto part = segment.payload.from(profileMark.size()); part.size() > 2)
                profile.push_back(part);
        }
        return !isFrame(segment.marker);
    });
    result.profile = joined(std::move(profile));
    return result;
}

std::optional<EmbeddedJpeg> largestJpegIn(Bytes file)
{
    constexpr int mostMarks = 4096; // random bytes have a few; only made files have more
    std::optional<EmbeddedJpeg> largest;
    std::int64_t most = 0;
    const auto text = file.text();
    auto at = text.find(jpegMark);
    for (int i = 0; i < mostMarks && at != text.npos; ++i, at = text.find(jpegMark, at + jpegMark.size())) {
        const auto size = jpegSize(file.from(at));
        const auto pixels = size ? std::int64_t(size->width) * size->height : 0;
        if (pixels > most) {
            most = pixels;
            largest = {at, file.size() - at};
        }
    }
    return largest;
}

} // namespace korvo
