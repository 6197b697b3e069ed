#include "platform/linux/images/PictureRows.h"

#include "platform/ExifPicture.h"

#include <bit>
#include <csetjmp>
#include <cstring>
#include <png.h>

namespace korvo {

namespace {

/// Deflate's best, 1032 to 1, on pixels of one bit.
constexpr std::uint64_t pngPixelsInByte = 8 * 1032;

/// A PNG, decoded by libpng. As with JPEG, the library's errors are jumps.
class PngRows : public PictureRows {
public:
    PngRows(PictureFile& file, const OpenOptions& options) : file_(file)
    {
        open();
        info_.width = info_.fullWidth;
        info_.height = info_.fullHeight;
        takeMarkers();
        if (isInterlaced_)
            readWhole(options);
    }

    void read(std::uint8_t* row) override
    {
        if (isInterlaced_)
            std::memcpy(row, &whole_[rowBytes() * static_cast<std::size_t>(next_++)], rowBytes());
        else if (isBroken_ || !readRow(row))
            fill(row);
        if (isBroken_ && info_.note.empty())
            info_.note = "the file is damaged: " + message_;
    }

private:
    void open()
    {
        if (setjmp(jump_))
            file_.fail(ImageError::Case::damaged, "the file is damaged: " + message_);
        handle_.png = png_create_read_struct(
            PNG_LIBPNG_VER_STRING, this, onError, [](png_structp, png_const_charp) {});
        handle_.info = handle_.png ? png_create_info_struct(handle_.png) : nullptr;
        if (!handle_.info)
            file_.fail(ImageError::Case::memory, notEnoughMemory);
        png_set_read_fn(handle_.png, this, onRead);
        png_set_user_limits(handle_.png, 0x7fffffff, 0x7fffffff); // ours is one of pixels
        png_read_info(handle_.png, handle_.info);
        info_.fullWidth = static_cast<int>(png_get_image_width(handle_.png, handle_.info));
        info_.fullHeight = static_cast<int>(png_get_image_height(handle_.png, handle_.info));
        checkSize(file_, info_.fullWidth, info_.fullHeight);
        checkContents(file_, info_.fullWidth, info_.fullHeight, pngPixelsInByte);
        chooseFormat();
        isInterlaced_ = png_set_interlace_handling(handle_.png) > 1;
        png_read_update_info(handle_.png, handle_.info);
    }

    /// Palettes become colours, fewer than 8 bits 8, transparent colours alpha, and opaque RGB gets a fourth
    /// byte.
    void chooseFormat()
    {
        const auto type = png_get_color_type(handle_.png, handle_.info);
        const bool hasAlpha = (type & PNG_COLOR_MASK_ALPHA) != 0
            || png_get_valid(handle_.png, handle_.info, PNG_INFO_tRNS) != 0;
        const bool isDeep = png_get_bit_depth(handle_.png, handle_.info) == 16;
        const bool isGrey = (type & PNG_COLOR_MASK_COLOR) == 0;
        png_set_expand(handle_.png);
        if (isDeep && std::endian::native == std::endian::little)
            png_set_swap(handle_.png);
        if (!isGrey && !hasAlpha)
            png_set_filler(handle_.png, 0xFFFF, PNG_FILLER_AFTER);
        using Format = RowFormat;
        info_.format = {isGrey ? Format::Model::grey : Format::Model::rgb,
            hasAlpha     ? Format::Alpha::straight
                : isGrey ? Format::Alpha::none
                         : Format::Alpha::unused,
            isDeep ? Format::Depth::bits16 : Format::Depth::bits8};
    }

    void takeMarkers()
    {
        png_charp name = nullptr;
        int compression = 0;
        png_bytep data = nullptr;
        png_uint_32 length = 0;
        if (png_get_iCCP(handle_.png, handle_.info, &name, &compression, &data, &length) != 0)
            info_.profile.assign(data, data + length);
        if (png_get_eXIf_1(handle_.png, handle_.info, &length, &data) != 0)
            info_.orientation = exifPicture(Bytes(data, length)).orientation;
    }

    /// The rows of an interlaced picture are whole only after its last pass.
    void readWhole(const OpenOptions& options)
    {
        const auto row = [&](int y) { return whole_.data() + rowBytes() * static_cast<std::size_t>(y); };
        const auto size = rowBytes() * static_cast<std::size_t>(info_.height);
        if (size > static_cast<std::uint64_t>(options.mostMemory))
            file_.fail(ImageError::Case::memory, notEnoughMemory);
        whole_.resize(size);
        for (int y = 0; y < info_.height; ++y)
            fill(row(y));
        const int passes = png_set_interlace_handling(handle_.png);
        for (int pass = 0; pass < passes; ++pass)
            for (int y = 0; y < info_.height; ++y) {
                if (options.stop.stop_requested())
                    file_.fail(ImageError::Case::stopped, "was stopped");
                if (!readRow(row(y)))
                    return;
            }
    }

    bool readRow(std::uint8_t* row)
    {
        if (setjmp(jump_)) {
            isBroken_ = true;
            return false;
        }
        png_read_row(handle_.png, row, nullptr);
        return true;
    }

    [[noreturn]] static void onError(png_structp png, png_const_charp message)
    {
        auto& self = *static_cast<PngRows*>(png_get_error_ptr(png));
        self.message_ = message;
        std::longjmp(self.jump_, 1);
    }

    static void onRead(png_structp png, png_bytep bytes, std::size_t length)
    {
        auto& self = *static_cast<PngRows*>(png_get_io_ptr(png));
        const auto count = self.file_.readSafely(self.offset_, bytes, length);
        self.offset_ += count;
        if (count < length)
            png_error(png, "it ends too early");
    }

    struct Handle {
        Handle() = default;
        ~Handle() { png_destroy_read_struct(&png, &info, nullptr); }
        Handle(const Handle&) = delete;
        Handle& operator=(const Handle&) = delete;
        png_structp png = nullptr;
        png_infop info = nullptr;
    };

    PictureFile& file_;
    std::uint64_t offset_ = 0;
    Handle handle_;
    std::jmp_buf jump_{};
    std::string message_;
    bool isInterlaced_ = false;
    bool isBroken_ = false;
    int next_ = 0;
    PixelBuffer<std::uint8_t> whole_;
};

} // namespace

std::unique_ptr<PictureRows> openPng(PictureFile& file, const OpenOptions& options)
{
    return std::make_unique<PngRows>(file, options);
}

} // namespace korvo
