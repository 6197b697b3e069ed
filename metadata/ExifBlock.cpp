#include "metadata/ExifBlock.h"

#include <array>
#include <bit>
#include <cmath>

namespace korvo {

namespace {

enum class Kind : std::uint8_t {
    none,
    text,
    unsignedInteger,
    signedInteger,
    unsignedRational,
    signedRational,
    real
};

struct Type {
    Kind kind;
    unsigned size; ///< bytes of one value
};

/// By the type's number in TIFF 6.0, with the directory offset (13) of its supplement.
constexpr std::array<Type, 14> types{{
    {Kind::none, 0},
    {Kind::unsignedInteger, 1},
    {Kind::text, 1},
    {Kind::unsignedInteger, 2},
    {Kind::unsignedInteger, 4},
    {Kind::unsignedRational, 8},
    {Kind::signedInteger, 1},
    {Kind::text, 1}, // undefined bytes
    {Kind::signedInteger, 2},
    {Kind::signedInteger, 4},
    {Kind::signedRational, 8},
    {Kind::real, 4},
    {Kind::real, 8},
    {Kind::unsignedInteger, 4},
}};

constexpr std::uint64_t mostEntries = 1000;
constexpr std::uint64_t longestText = 64 * 1024;
constexpr std::size_t headerSize = 8;

Type typeOf(const ExifBlock::Entry& entry)
{
    return entry.type < types.size() ? types[entry.type] : types[0];
}

double asSigned(std::uint64_t value, unsigned size)
{
    const unsigned unusedBits = 64 - 8 * size;
    return static_cast<double>(static_cast<std::int64_t>(value << unusedBits) >> unusedBits);
}

std::optional<double> quotient(double numerator, double denominator)
{
    return denominator == 0 ? std::nullopt : std::optional(numerator / denominator);
}

std::optional<double> finite(double value)
{
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

} // namespace

ExifBlock::ExifBlock(FileWindow& file, ByteRange block, bool isBigEndian)
    : file_(&file), block_(block), isBigEndian_(isBigEndian)
{ }

std::optional<ExifBlock> ExifBlock::open(FileWindow& file, ByteRange block)
{
    const auto header = block.length < headerSize ? std::nullopt : file.view(block.offset, headerSize);
    if (!header || (!header->startsWith("II") && !header->startsWith("MM")))
        return std::nullopt;
    // The 42 that should follow is not asked for: several makers put a number of their own into raw files.
    ExifBlock exif(file, block, header->startsWith("MM"));
    exif.firstDirectory_ = exif.unsignedAt(*header, 4, 4);
    return exif;
}

Bytes ExifBlock::directoryBytes(std::uint32_t directory) const
{
    const auto count = view(directory, 2);
    if (!count)
        return {};
    const std::uint64_t begin = std::uint64_t(directory) + 2;
    const std::uint64_t entriesInBlock = (block_.length - begin) / entrySize;
    const auto entries = std::min({std::uint64_t(unsignedAt(*count, 0, 2)), mostEntries, entriesInBlock});
    return view(begin, entries * entrySize).value_or(Bytes());
}

std::optional<ByteRange> ExifBlock::range(const Entry& entry) const
{
    constexpr std::uint64_t inlineSize = 4;
    const auto length = std::uint64_t(typeOf(entry).size) * entry.count;
    const auto offset = length > inlineSize ? entry.offset : entry.inlineOffset;
    if (length == 0 || offset > block_.length || length > block_.length - offset)
        return std::nullopt;
    return ByteRange{block_.offset + offset, length};
}

std::optional<double> ExifBlock::number(const Entry& entry, std::uint32_t index) const
{
    const auto type = typeOf(entry);
    const auto bytes = valueAt(entry, index);
    if (!bytes)
        return std::nullopt;
    switch (type.kind) {
    case Kind::unsignedInteger:
        return unsignedAt(*bytes, 0, type.size);
    case Kind::signedInteger:
        return asSigned(unsignedAt(*bytes, 0, type.size), type.size);
    case Kind::unsignedRational:
        return quotient(unsignedAt(*bytes, 0, 4), unsignedAt(*bytes, 4, 4));
    case Kind::signedRational:
        return quotient(asSigned(unsignedAt(*bytes, 0, 4), 4), asSigned(unsignedAt(*bytes, 4, 4), 4));
    case Kind::real:
        return real(*bytes);
    case Kind::none:
    case Kind::text:
        break;
    }
    return std::nullopt;
}

std::optional<std::uint32_t> ExifBlock::integer(const Entry& entry, std::uint32_t index) const
{
    const auto type = typeOf(entry);
    const auto bytes = type.kind == Kind::unsignedInteger ? valueAt(entry, index) : std::nullopt;
    return bytes ? std::optional(unsignedAt(*bytes, 0, type.size)) : std::nullopt;
}

std::string_view ExifBlock::rawText(const Entry& entry) const
{
    const auto values = typeOf(entry).size == 1 ? range(entry) : std::nullopt;
    const auto bytes = values ? file_->view(values->first(longestText)) : std::nullopt;
    return bytes ? bytes->text() : std::string_view();
}

std::string_view ExifBlock::text(const Entry& entry) const
{
    const auto raw = rawText(entry);
    const auto text = raw.substr(0, raw.find('\0'));
    return text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
}

std::optional<Bytes> ExifBlock::valueAt(const Entry& entry, std::uint32_t index) const
{
    const auto values = range(entry);
    const std::uint64_t size = typeOf(entry).size;
    return values ? file_->start(values->from(size * index), size) : std::nullopt;
}

std::optional<double> ExifBlock::real(Bytes bytes) const
{
    const auto high = unsignedAt(bytes, 0, 4);
    if (bytes.size() == 4)
        return finite(std::bit_cast<float>(high));
    const auto low = unsignedAt(bytes, 4, 4);
    return finite(std::bit_cast<double>(
        isBigEndian_ ? std::uint64_t(high) << 32 | low : std::uint64_t(low) << 32 | high));
}

std::optional<Bytes> ExifBlock::view(std::uint64_t offset, std::uint64_t length) const
{
    if (offset > block_.length || length > block_.length - offset)
        return std::nullopt;
    return file_->view(block_.offset + offset, length);
}

} // namespace korvo
