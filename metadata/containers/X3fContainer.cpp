#include "metadata/CaptureDate.h"
#include "metadata/containers/Containers.h"

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace korvo {

namespace {

// Sigma's raw files: sections that a directory lists, whose offset stands in the last four bytes of the file.
// Cameras after the SD10 keep their facts in a preview in JPEG, all of them as properties as well.

using namespace std::string_view_literals;

constexpr auto jpegSection = "SECi\0\0\x02\0\x02\0\0\0\x12\0\0\0"sv;
constexpr std::uint64_t imageHeaderSize = 28, propertiesHeaderSize = 24, directoryHeaderSize = 12;
constexpr std::uint64_t sectionEntrySize = 12, propertyEntrySize = 8;
constexpr std::uint64_t mostSections = 100, mostProperties = 1000, longestProperty = 256;

std::optional<double> numberIn(std::string_view text)
{
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

class X3fFinder {
public:
    X3fFinder(FileWindow& file, ByteRange area) : file_(file), area_(area) { }

    MetadataBlocks find()
    {
        takeSections();
        takeSize();
        return blocks_;
    }

private:
    void takeSize()
    {
        const auto header = file_.start(area_, 48);
        if (!header)
            return;
        constexpr std::uint64_t newHeader = 4;
        const std::uint64_t at = header->littleEndian(6, 2).value_or(0) >= newHeader ? 40 : 28;
        blocks_.size = {header->littleEndian(at, 4).value_or(0), header->littleEndian(at + 4, 4).value_or(0)};
    }

    void takeSections()
    {
        constexpr std::uint64_t offsetSize = 4;
        const auto offset
            = area_.length < offsetSize ? std::nullopt : file_.view(area_.from(area_.length - offsetSize));
        const auto directory
            = offset ? area_.from(offset->littleEndian(0, offsetSize).value_or(0)) : ByteRange();
        const auto header = file_.start(directory, directoryHeaderSize);
        const auto count = header && header->startsWith("SECd") ? header->littleEndian(8, 4).value_or(0) : 0;
        auto rest = directory.from(directoryHeaderSize);
        for (std::uint64_t i = 0; i < std::min(count, mostSections); ++i, rest = rest.from(sectionEntrySize))
            if (const auto entry = file_.start(rest, sectionEntrySize))
                takeSection(*entry);
    }

    void takeSection(Bytes entry)
    {
        const auto section
            = area_.from(entry.littleEndian(0, 4).value_or(0)).first(entry.littleEndian(4, 4).value_or(0));
        if (entry.startsWith("PROP", 8))
            takeProperties(section);
        else if (entry.startsWith("IMA", 8))
            takePreview(section);
    }

    void takePreview(ByteRange section)
    {
        const auto header = file_.start(section, imageHeaderSize);
        if (!header || !header->startsWith(jpegSection))
            return;
        const auto preview = findInJpeg(file_, section.from(imageHeaderSize));
        if (!preview.exif)
            return;
        blocks_.furtherExif = preview.exif;
        blocks_.xmp = preview.xmp;
        blocks_.iptc = preview.iptc;
    }

    /// Pairs of a name and a text, each told by its place among the characters, which are UTF-16.
    void takeProperties(ByteRange section)
    {
        const auto header = file_.start(section, propertiesHeaderSize);
        if (!header || !header->startsWith("SECp"))
            return;
        const auto count = std::min(header->littleEndian(8, 4).value_or(0), mostProperties);
        const auto entries = file_.start(section.from(propertiesHeaderSize), count * propertyEntrySize);
        if (!entries)
            return;
        const auto characters = section.from(propertiesHeaderSize + count * propertyEntrySize);
        for (std::uint64_t at = 0; at < entries->size(); at += propertyEntrySize)
            takeProperty(textAt(characters, entries->littleEndian(at, 4).value_or(0)),
                textAt(characters, entries->littleEndian(at + 4, 4).value_or(0)));
    }

    /// Only what ASCII has: names, numbers and the names of cameras.
    std::string textAt(ByteRange characters, std::uint64_t place)
    {
        std::string text;
        auto rest = characters.from(2 * place);
        for (auto pair = file_.start(rest, 2); pair && text.size() < longestProperty;
             pair = file_.start(rest, 2)) {
            const auto character = pair->littleEndian(0, 2).value_or(0);
            if (character == 0)
                break;
            text += character < 0x80 ? static_cast<char>(character) : '?';
            rest = rest.from(2);
        }
        return text;
    }

    void takeProperty(std::string_view name, std::string_view text)
    {
        auto& own = blocks_.own;
        if (name == "CAMMANUF")
            own.make = file_.keep(text);
        else if (name == "CAMMODEL")
            own.model = file_.keep(text);
        else if (name == "SHUTTER")
            own.exposureTime = numberIn(text);
        else if (name == "APERTURE")
            own.fNumber = numberIn(text);
        else if (name == "FLENGTH")
            own.focalLength = numberIn(text);
        else if (name == "ISO")
            takeIso(text);
        else if (name == "TIME")
            takeDate(text);
    }

    void takeIso(std::string_view text)
    {
        constexpr double most = 1e9;
        if (const auto iso = numberIn(text); iso && *iso >= 0 && *iso < most)
            blocks_.own.iso = static_cast<std::uint32_t>(*iso);
    }

    /// Seconds since 1970 by the camera's clock, of whatever zone.
    void takeDate(std::string_view text)
    {
        std::int64_t seconds = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), seconds).ec == std::errc())
            blocks_.own.dateTimeOriginal = file_.keep(exifDate(seconds));
    }

    FileWindow& file_;
    ByteRange area_;
    MetadataBlocks blocks_;
};

} // namespace

MetadataBlocks findInX3f(FileWindow& file, ByteRange area)
{
    return X3fFinder(file, area).find();
}

} // namespace korvo
