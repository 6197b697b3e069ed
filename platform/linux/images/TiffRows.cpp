#include "platform/linux/images/PictureRows.h"
#include "platform/linux/images/PictureStream.h"
#include "platform/linux/images/WholeRows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <tiffio.h>
#include <tuple>

namespace korvo {

namespace {

struct CloseTiff {
    std::unique_ptr<PictureStream> stream; ///< what it reads from
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, CloseTiff>;

/// Null for what is no TIFF.
Tiff openStream(PictureFile& file)
{
    auto stream = std::make_unique<PictureStream>(file);
    TIFF* const tiff = TIFFClientOpen(
        file.path().c_str(), "rm", stream.get(), // read, not mapped
        [](thandle_t from, void* to, tmsize_t length) {
            return static_cast<tmsize_t>(PictureStream::of(from).read(to, static_cast<std::size_t>(length)));
        },
        [](thandle_t, void*, tmsize_t) -> tmsize_t { return -1; },
        [](thandle_t in, toff_t offset, int origin) -> toff_t {
            return PictureStream::of(in).seek(static_cast<std::int64_t>(offset), origin)
                ? PictureStream::of(in).position()
                : toff_t(-1);
        },
        [](thandle_t) { return 0; }, [](thandle_t in) -> toff_t { return PictureStream::of(in).size(); },
        nullptr, nullptr);
    return Tiff(tiff, {std::move(stream)});
}

template <typename Value>
Value tagOf(TIFF* tiff, std::uint32_t tag)
{
    Value value{};
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

RowFormat::Alpha alphaOf(TIFF* tiff)
{
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds);
    if (count == 0 || !kinds)
        return RowFormat::Alpha::none;
    return kinds[0] == EXTRASAMPLE_ASSOCALPHA ? RowFormat::Alpha::premultiplied
        : kinds[0] == EXTRASAMPLE_UNASSALPHA  ? RowFormat::Alpha::straight
                                              : RowFormat::Alpha::none;
}

/// How the rows can be taken as they are stored: nothing for palettes, few bits and other rarities, which
/// libtiff turns into RGBA itself.
std::optional<RowFormat> plainFormat(TIFF* tiff)
{
    RowFormat format;
    const auto bits = tagOf<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE);
    const bool isReal = tagOf<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT) == SAMPLEFORMAT_IEEEFP;
    if (tagOf<std::uint16_t>(tiff, TIFFTAG_COMPRESSION) == COMPRESSION_JPEG)
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    switch (tagOf<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC)) {
    case PHOTOMETRIC_MINISBLACK:
        format.model = RowFormat::Model::grey;
        break;
    case PHOTOMETRIC_RGB:
        break;
    case PHOTOMETRIC_YCBCR:
        if (tagOf<std::uint16_t>(tiff, TIFFTAG_COMPRESSION) != COMPRESSION_JPEG)
            return std::nullopt;
        break;
    case PHOTOMETRIC_SEPARATED:
        format.model = RowFormat::Model::cmyk;
        break;
    default:
        return std::nullopt;
    }
    if (!((bits == 8 || bits == 16) && !isReal) && !(bits == 32 && isReal))
        return std::nullopt;
    format.depth = isReal ? RowFormat::Depth::real
        : bits == 16      ? RowFormat::Depth::bits16
                          : RowFormat::Depth::bits8;
    format.isLinear = isReal;
    format.alpha = alphaOf(tiff);
    if (tagOf<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL) < format.channels())
        return std::nullopt;
    return format;
}

/// The rows of a TIFF, read a band of strips or tiles at a time.
class TiffRows : public PictureRows {
public:
    TiffRows(PictureFile& file, Tiff tiff, PictureInfo info) : file_(file), tiff_(std::move(tiff))
    {
        info_ = std::move(info);
        isTiled_ = TIFFIsTiled(tiff_.get()) != 0;
        isSeparate_ = tagOf<std::uint16_t>(tiff_.get(), TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
        samples_ = isSeparate_ ? 1 : tagOf<std::uint16_t>(tiff_.get(), TIFFTAG_SAMPLESPERPIXEL);
        pieceWidth_ = isTiled_ ? tagOf<std::uint32_t>(tiff_.get(), TIFFTAG_TILEWIDTH)
                               : static_cast<std::uint32_t>(info_.width);
        pieceHeight_ = isTiled_ ? tagOf<std::uint32_t>(tiff_.get(), TIFFTAG_TILELENGTH)
                                : tagOf<std::uint32_t>(tiff_.get(), TIFFTAG_ROWSPERSTRIP);
        pieceHeight_
            = isTiled_ ? pieceHeight_ : std::min(pieceHeight_, static_cast<std::uint32_t>(info_.height));
        const auto size = isTiled_ ? TIFFTileSize(tiff_.get()) : TIFFStripSize(tiff_.get());
        if (pieceWidth_ == 0 || pieceHeight_ == 0 || size <= 0
            || std::uint64_t(size) / pieceHeight_ > 1u << 30)
            file_.fail(ImageError::Case::damaged, "the file is damaged: its strips have no size");
        checkSize(file_, pieceWidth_, pieceHeight_);
        if (std::uint64_t(size) < std::uint64_t(pieceWidth_) * pieceHeight_ * samples_ * sampleBytes())
            file_.fail(ImageError::Case::unsupported, "this kind of TIFF cannot be decoded");
        piece_.resize(static_cast<std::size_t>(size));
        band_.resize(rowBytes() * pieceHeight_);
    }

    void read(std::uint8_t* row) override
    {
        const auto inBand = next_ % pieceHeight_;
        if (inBand == 0)
            readBand(next_);
        std::memcpy(row, &band_[rowBytes() * inBand], rowBytes());
        ++next_;
    }

private:
    std::size_t sampleBytes() const
    {
        return info_.format.pixelBytes() / static_cast<std::size_t>(info_.format.channels());
    }

    void readBand(std::uint32_t top)
    {
        const int planes = isSeparate_ ? info_.format.channels() : 1;
        for (int plane = 0; plane < planes; ++plane)
            for (std::uint32_t left = 0; left < static_cast<std::uint32_t>(info_.width);
                 left += pieceWidth_) {
                readPiece(left, top, static_cast<std::uint16_t>(plane));
                copyPiece(left, top, plane);
            }
    }

    void readPiece(std::uint32_t left, std::uint32_t top, std::uint16_t plane)
    {
        const auto count = isTiled_
            ? TIFFReadEncodedTile(
                tiff_.get(), TIFFComputeTile(tiff_.get(), left, top, 0, plane), piece_.data(), -1)
            : TIFFReadEncodedStrip(tiff_.get(), TIFFComputeStrip(tiff_.get(), top, plane), piece_.data(), -1);
        const auto got = static_cast<std::size_t>(std::max<tmsize_t>(count, 0));
        std::fill(piece_.begin() + static_cast<std::ptrdiff_t>(got), piece_.end(), std::uint8_t(0));
        if (count < 0)
            info_.note = "the file is damaged: a part of its picture cannot be read";
    }

    /// Into the band, of each pixel only the numbers that are wanted.
    void copyPiece(std::uint32_t left, std::uint32_t top, int plane)
    {
        const auto bytes = sampleBytes();
        const auto pixel = info_.format.pixelBytes();
        const auto taken = isSeparate_ ? bytes : pixel, stored = bytes * samples_;
        const auto width = std::min(pieceWidth_, static_cast<std::uint32_t>(info_.width) - left);
        const auto height = std::min(pieceHeight_, static_cast<std::uint32_t>(info_.height) - top);
        for (std::uint32_t y = 0; y < height; ++y) {
            const std::uint8_t* from = &piece_[stored * pieceWidth_ * y];
            std::uint8_t* to
                = &band_[rowBytes() * y + pixel * left + bytes * static_cast<std::size_t>(plane)];
            for (std::uint32_t x = 0; x < width; ++x, from += stored, to += pixel)
                std::memcpy(to, from, taken);
        }
    }

    PictureFile& file_;
    Tiff tiff_;
    bool isTiled_ = false, isSeparate_ = false;
    std::size_t samples_ = 0; ///< of a pixel in a piece
    std::uint32_t pieceWidth_ = 0, pieceHeight_ = 0; ///< of a strip or tile
    std::uint32_t next_ = 0;
    PixelBuffer<std::uint8_t> piece_, band_;
};

/// Whether the first picture is but a small version of another one, as in raw files that are built like
/// TIFFs.
bool isThumbnail(TIFF* tiff)
{
    std::uint16_t count = 0;
    const std::uint64_t* others = nullptr;
    return (tagOf<std::uint32_t>(tiff, TIFFTAG_SUBFILETYPE) & FILETYPE_REDUCEDIMAGE) != 0
        && TIFFGetField(tiff, TIFFTAG_SUBIFD, &count, &others) && count > 0;
}

std::unique_ptr<PictureRows> convertedRows(PictureFile& file, TIFF* tiff, PictureInfo info)
{
    std::array<char, 1024> reason{};
    if (!TIFFRGBAImageOK(tiff, reason.data()))
        file.fail(ImageError::Case::unsupported,
            std::string("this kind of TIFF cannot be decoded: ") + reason.data());
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT); // turned later
    info.format.alpha = RowFormat::Alpha::premultiplied;
    const auto width = static_cast<std::uint32_t>(info.width),
               height = static_cast<std::uint32_t>(info.height);
    PixelBuffer<std::uint8_t> pixels(std::size_t(4) * width * height, 0xFF);
    if (!TIFFReadRGBAImageOriented(
            tiff, width, height, reinterpret_cast<std::uint32_t*>(pixels.data()), ORIENTATION_TOPLEFT, 0))
        info.note = "the file is damaged: a part of its picture cannot be read";
    return std::make_unique<WholeRows>(std::move(info), std::move(pixels));
}

} // namespace

std::unique_ptr<PictureRows> openTiff(PictureFile& file, const OpenOptions&)
{
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    Tiff tiff = openStream(file);
    if (!tiff)
        file.fail(ImageError::Case::damaged, "the file is damaged: it is no whole TIFF");
    if (isThumbnail(tiff.get()))
        file.fail(ImageError::Case::unsupported, "it holds but a small version of a picture of another kind");
    PictureInfo info;
    info.fullWidth = info.width = static_cast<int>(tagOf<std::uint32_t>(tiff.get(), TIFFTAG_IMAGEWIDTH));
    info.fullHeight = info.height = static_cast<int>(tagOf<std::uint32_t>(tiff.get(), TIFFTAG_IMAGELENGTH));
    checkSize(file, info.width, info.height);
    info.orientation = orientationOf(tagOf<std::uint16_t>(tiff.get(), TIFFTAG_ORIENTATION));
    std::uint32_t length = 0;
    const std::uint8_t* profile = nullptr;
    if (TIFFGetField(tiff.get(), TIFFTAG_ICCPROFILE, &length, &profile) && profile)
        info.profile.assign(profile, profile + length);
    const auto format = plainFormat(tiff.get());
    if (!format)
        return convertedRows(file, tiff.get(), std::move(info));
    info.format = *format;
    return std::make_unique<TiffRows>(file, std::move(tiff), std::move(info));
}

} // namespace korvo
