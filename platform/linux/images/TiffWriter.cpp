#include "platform/linux/images/PictureWriters.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <tiffio.h>

namespace korvo {

namespace {

/// A file in memory, as libtiff writes it. What is thrown must not pass through the library.
struct MemoryFile {
    std::vector<std::uint8_t> bytes;
    std::size_t position = 0;

    bool grow(std::size_t size) noexcept
    try {
        bytes.resize(std::max(size, bytes.size()));
        return true;
    } catch (const std::exception&) {
        return false;
    }

    static MemoryFile& of(thandle_t handle) { return *static_cast<MemoryFile*>(handle); }

    static tmsize_t read(thandle_t handle, void* buffer, tmsize_t length)
    {
        auto& file = of(handle);
        const auto count = std::min(static_cast<std::size_t>(length), file.bytes.size() - file.position);
        std::memcpy(buffer, file.bytes.data() + file.position, count);
        file.position += count;
        return static_cast<tmsize_t>(count);
    }
    static tmsize_t write(thandle_t handle, void* buffer, tmsize_t length)
    {
        auto& file = of(handle);
        const auto count = static_cast<std::size_t>(length);
        if (!file.grow(file.position + count))
            return -1;
        std::memcpy(file.bytes.data() + file.position, buffer, count);
        file.position += count;
        return length;
    }
    static toff_t seek(thandle_t handle, toff_t offset, int from)
    {
        auto& file = of(handle);
        const std::size_t base = from == SEEK_SET ? 0 : from == SEEK_CUR ? file.position : file.bytes.size();
        const std::size_t position = base + static_cast<std::size_t>(offset);
        if (!file.grow(position))
            return static_cast<toff_t>(-1);
        return file.position = position;
    }
    static toff_t size(thandle_t handle) { return of(handle).bytes.size(); }
    static int close(thandle_t) { return 0; }
};

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};

struct FreeOptions {
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

/// Encodes with libtiff, packed by LZW.
class TiffWriter : public PictureWriter {
public:
    TiffWriter(const PictureShape& shape, const std::filesystem::path& file)
        : file_(file), shape_(shape), row_(static_cast<std::size_t>(shape.width) * channels())
    {
        const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepReason, this);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), passOver, nullptr);
        tiff_.reset(TIFFClientOpenExt(file_.c_str(), "w", &memory_, MemoryFile::read, MemoryFile::write,
            MemoryFile::seek, MemoryFile::close, MemoryFile::size, nullptr, nullptr, options.get()));
        if (!tiff_)
            fail();
        setTags();
    }

    void write(const std::uint8_t* row) override
    {
        withStraightAlpha(row, row_.data(), shape_);
        if (TIFFWriteScanline(tiff_.get(), row_.data(), next_++) != 1)
            fail();
    }

    std::vector<std::uint8_t> finish() override
    {
        if (TIFFFlush(tiff_.get()) != 1)
            fail();
        tiff_.reset();
        return std::move(memory_.bytes);
    }

private:
    /// 1: the library's own handler, which writes on the terminal, is not called.
    static int keepReason(TIFF*, void* self, const char*, const char* format, va_list values)
    {
        std::vsnprintf(static_cast<TiffWriter*>(self)->reason_.data(), reasonLength, format, values);
        return 1;
    }
    static int passOver(TIFF*, void*, const char*, const char*, va_list) { return 1; }

    unsigned channels() const { return shape_.alpha == AlphaPlane::present ? 4 : 3; }

    void setTags()
    {
        const auto set
            = [&](std::uint32_t tag, auto... values) { TIFFSetField(tiff_.get(), tag, values...); };
        set(TIFFTAG_IMAGEWIDTH, shape_.width);
        set(TIFFTAG_IMAGELENGTH, shape_.height);
        set(TIFFTAG_BITSPERSAMPLE, 8);
        set(TIFFTAG_SAMPLESPERPIXEL, channels());
        set(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
        set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        set(TIFFTAG_COMPRESSION, COMPRESSION_LZW);
        set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
        set(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
        set(TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff_.get(), 0));
        set(TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(srgbProfile().size()), srgbProfile().data());
        const std::uint16_t straight = EXTRASAMPLE_UNASSALPHA;
        if (shape_.alpha == AlphaPlane::present)
            set(TIFFTAG_EXTRASAMPLES, 1, &straight);
    }

    [[noreturn]] void fail() const
    {
        throw ImageError(ImageError::Case::write, file_,
            std::string("the picture cannot be encoded as TIFF: ") + reason_.data());
    }

    static constexpr std::size_t reasonLength = 256;

    std::filesystem::path file_;
    PictureShape shape_;
    std::vector<std::uint8_t> row_;
    MemoryFile memory_;
    std::array<char, reasonLength> reason_{};
    std::unique_ptr<TIFF, CloseTiff> tiff_; // before the memory in destruction
    std::uint32_t next_ = 0;
};

} // namespace

std::unique_ptr<PictureWriter> tiffWriter(const PictureShape& shape, const std::filesystem::path& file)
{
    return std::make_unique<TiffWriter>(shape, file);
}

} // namespace korvo
