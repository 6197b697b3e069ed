#include "metadata/ExifTagReader.h"

#include "metadata/ExifBlock.h"
#include "metadata/Xmp.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace korvo {

namespace {

using Entry = ExifBlock::Entry;

/// What the entries of the directories are put into; each position is put together from one directory.
struct TagReading {
    ExifTags tags;
    std::uint32_t exifDirectory = 0, gpsDirectory = 0;
    std::string_view latitudeReference, longitudeReference;
    std::optional<double> latitude, longitude;
};

struct Rule {
    std::uint16_t tag;
    void (*read)(TagReading&, const ExifBlock&, const Entry&);
};

/// The first entry with a value counts, as damaged files repeat entries.
template <auto Field>
void readText(TagReading& reading, const ExifBlock& block, const Entry& entry)
{
    if (auto& field = reading.tags.*Field; field.empty())
        field = block.text(entry);
}

template <auto Field>
void readNumber(TagReading& reading, const ExifBlock& block, const Entry& entry)
{
    if (auto& field = reading.tags.*Field; !field)
        field = block.number(entry);
}

void readIso(TagReading& reading, const ExifBlock& block, const Entry& entry)
{
    if (!reading.tags.iso)
        reading.tags.iso = block.integer(entry);
}

void readCopyright(TagReading& reading, const ExifBlock& block, const Entry& entry)
{
    if (reading.tags.copyright.empty())
        reading.tags.copyright = block.rawText(entry);
}

template <auto Side>
void readSize(TagReading& reading, const ExifBlock& block, const Entry& entry)
{
    if (auto& side = reading.tags.size.*Side; side == 0)
        side = block.integer(entry).value_or(0);
}

template <auto Field>
void readOffset(TagReading& reading, const ExifBlock& block, const Entry& entry)
{
    reading.*Field = block.integer(entry).value_or(0);
}

template <auto Field>
void readReference(TagReading& reading, const ExifBlock& block, const Entry& entry)
{
    reading.*Field = block.text(entry);
}

/// Degrees, minutes and seconds, of which the last ones may be missing but none undefined.
std::optional<double> degrees(const ExifBlock& block, const Entry& entry)
{
    double sum = 0, unit = 1;
    for (std::uint32_t i = 0; i < std::min(entry.count, 3U); ++i, unit *= 60) {
        const auto part = block.number(entry, i);
        if (!part)
            return std::nullopt;
        sum += std::abs(*part) / unit;
    }
    return sum;
}

template <auto Field>
void readDegrees(TagReading& reading, const ExifBlock& block, const Entry& entry)
{
    reading.*Field = degrees(block, entry);
}

constexpr std::array mainRules{
    Rule{0x010f, readText<&ExifTags::make>},
    Rule{0x0110, readText<&ExifTags::model>},
    Rule{0x013b, readText<&ExifTags::artist>},
    Rule{0x8298, readCopyright},
    Rule{0x8769, readOffset<&TagReading::exifDirectory>},
    Rule{0x8825, readOffset<&TagReading::gpsDirectory>},
};

constexpr std::array exifRules{
    Rule{0x829a, readNumber<&ExifTags::exposureTime>},
    Rule{0x829d, readNumber<&ExifTags::fNumber>},
    Rule{0x8827, readIso},
    Rule{0x9003, readText<&ExifTags::dateTimeOriginal>},
    Rule{0x9011, readText<&ExifTags::offsetTimeOriginal>},
    Rule{0x920a, readNumber<&ExifTags::focalLength>},
    Rule{0xa002, readSize<&PixelSize::width>},
    Rule{0xa003, readSize<&PixelSize::height>},
    Rule{0xa434, readText<&ExifTags::lens>},
};

constexpr std::array gpsRules{
    Rule{1, readReference<&TagReading::latitudeReference>},
    Rule{2, readDegrees<&TagReading::latitude>},
    Rule{3, readReference<&TagReading::longitudeReference>},
    Rule{4, readDegrees<&TagReading::longitude>},
};

void readDirectory(
    TagReading& reading, const ExifBlock& block, std::uint32_t directory, std::span<const Rule> rules)
{
    block.forEachEntry(directory, [&](const Entry& entry) {
        for (const auto& rule : rules)
            if (rule.tag == entry.tag)
                return rule.read(reading, block, entry);
    });
}

double signedDegrees(double degrees, std::string_view reference, char negative)
{
    return reference.starts_with(negative) ? -degrees : degrees;
}

std::optional<Coordinate> coordinate(const TagReading& reading)
{
    if (!reading.latitude || !reading.longitude)
        return std::nullopt;
    if (std::abs(*reading.latitude) > 90 || std::abs(*reading.longitude) > 180)
        return std::nullopt;
    return Coordinate{signedDegrees(*reading.latitude, reading.latitudeReference, 'S'),
        signedDegrees(*reading.longitude, reading.longitudeReference, 'W')};
}

/// The first whole position counts, and its parts all come from one directory.
void readPosition(TagReading& reading, const ExifBlock& block, std::uint32_t directory)
{
    reading.latitude = reading.longitude = std::nullopt;
    reading.latitudeReference = reading.longitudeReference = {};
    readDirectory(reading, block, directory, gpsRules);
    if (!reading.tags.coordinate)
        reading.tags.coordinate = coordinate(reading);
}

std::optional<ExifBlock> openIfThere(FileWindow& file, const std::optional<ByteRange>& range)
{
    return range ? ExifBlock::open(file, *range) : std::nullopt;
}

void readWhole(TagReading& reading, FileWindow& file, ByteRange range)
{
    const auto block = ExifBlock::open(file, range);
    if (!block)
        return;
    reading.exifDirectory = reading.gpsDirectory = 0;
    readDirectory(reading, *block, block->firstDirectory(), mainRules);
    if (reading.exifDirectory != 0)
        readDirectory(reading, *block, reading.exifDirectory, exifRules);
    // Raw files keep some or all of the same tags in their first directory (TIFF/EP, ISO 12234-2).
    readDirectory(reading, *block, block->firstDirectory(), exifRules);
    if (reading.gpsDirectory != 0)
        readPosition(reading, *block, reading.gpsDirectory);
}

} // namespace

ExifTags readExifTags(FileWindow& file, const MetadataBlocks& blocks)
{
    TagReading reading;
    reading.tags = blocks.own;
    if (blocks.exif)
        readWhole(reading, file, *blocks.exif);
    if (const auto block = openIfThere(file, blocks.exifDirectory))
        readDirectory(reading, *block, block->firstDirectory(), exifRules);
    if (const auto block = openIfThere(file, blocks.gpsDirectory))
        readPosition(reading, *block, block->firstDirectory());
    if (blocks.furtherExif)
        readWhole(reading, file, *blocks.furtherExif);
    for (const auto& packet : {blocks.xmp, blocks.extendedXmp})
        if (const auto bytes = packet && !reading.tags.coordinate ? file.view(*packet) : std::nullopt)
            reading.tags.coordinate = readXmpPosition(*bytes);
    return reading.tags;
}

ExifTags readExifTags(FileWindow& file, ByteRange exif)
{
    MetadataBlocks blocks;
    blocks.exif = exif;
    return readExifTags(file, blocks);
}

} // namespace korvo
