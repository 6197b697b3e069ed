#include "platform/linux/images/PictureWriters.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio> // jpeglib.h takes FILE for granted
#include <jpeglib.h>
#include <new>

namespace korvo {

namespace {

constexpr int firstFullColorQuality = 90;

/// Encodes with libjpeg-turbo, whose errors are jumps.
class JpegWriter : public PictureWriter {
public:
    JpegWriter(const PictureShape& shape, int quality, Profile profile, const std::filesystem::path& file)
        : file_(file), shape_(shape)
    {
        if (shape.width > JPEG_MAX_DIMENSION || shape.height > JPEG_MAX_DIMENSION)
            throw ImageError(ImageError::Case::tooLarge, file_, "a JPEG has at most 65,500 pixels a side");
        begin(quality, profile);
    }

    void write(const std::uint8_t* row) override
    {
        if (shape_.alpha == AlphaPlane::present)
            row = overWhite(row);
        writeRow(row);
    }

    std::vector<std::uint8_t> finish() override
    {
        end();
        return std::move(bytes_);
    }

private:
    void begin(int quality, Profile profile)
    {
        auto& jpeg = handle_.jpeg;
        jpeg.err = jpeg_std_error(&errors_);
        errors_.error_exit = [](j_common_ptr any) {
            auto& self = of(any);
            self.errors_.format_message(any, self.message_.data());
            std::longjmp(self.jump_, 1);
        };
        target_.init_destination = [](j_compress_ptr any) { of(j_common_ptr(any)).beginPiece(); };
        target_.empty_output_buffer = [](j_compress_ptr any) -> boolean {
            auto& self = of(j_common_ptr(any));
            self.keepPiece(self.piece_.size());
            return TRUE;
        };
        target_.term_destination = [](j_compress_ptr any) {
            auto& self = of(j_common_ptr(any));
            self.keepPiece(self.piece_.size() - self.target_.free_in_buffer);
        };
        jpeg.client_data = this;
        if (setjmp(jump_))
            fail();
        jpeg_create_compress(&jpeg);
        jpeg.client_data = this;
        jpeg.dest = &target_;
        jpeg.image_width = static_cast<JDIMENSION>(shape_.width);
        jpeg.image_height = static_cast<JDIMENSION>(shape_.height);
        jpeg.input_components = 4;
        jpeg.in_color_space = JCS_EXT_RGBX;
        jpeg_set_defaults(&jpeg);
        jpeg_set_quality(&jpeg, quality, TRUE);
        jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor
            = quality >= firstFullColorQuality ? 1 : 2;
        jpeg_start_compress(&jpeg, TRUE);
        if (profile == Profile::srgb)
            jpeg_write_icc_profile(&jpeg, srgbProfile().data(), static_cast<unsigned>(srgbProfile().size()));
    }

    void writeRow(const std::uint8_t* row)
    {
        if (setjmp(jump_))
            fail();
        JSAMPROW rows[] = {const_cast<JSAMPROW>(row)};
        jpeg_write_scanlines(&handle_.jpeg, rows, 1);
    }

    void end()
    {
        if (setjmp(jump_))
            fail();
        jpeg_finish_compress(&handle_.jpeg);
    }

    static JpegWriter& of(j_common_ptr jpeg) { return *static_cast<JpegWriter*>(jpeg->client_data); }

    void beginPiece()
    {
        target_.next_output_byte = piece_.data();
        target_.free_in_buffer = piece_.size();
    }

    /// What is thrown must not pass through the library.
    bool append(std::size_t length) noexcept
    try {
        bytes_.insert(bytes_.end(), piece_.begin(), piece_.begin() + static_cast<std::ptrdiff_t>(length));
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }

    void keepPiece(std::size_t length)
    {
        if (!append(length)) {
            std::ranges::copy("there is not enough memory", message_.begin());
            std::longjmp(jump_, 1);
        }
        beginPiece();
    }

    [[noreturn]] void fail() const { throw ImageError(ImageError::Case::write, file_, message_.data()); }

    const std::uint8_t* overWhite(const std::uint8_t* row)
    {
        row_.assign(row, row + 4 * static_cast<std::size_t>(shape_.width));
        for (std::size_t i = 0; i < row_.size(); i += 4)
            for (std::size_t channel = 0; channel < 3; ++channel)
                row_[i + channel] = static_cast<std::uint8_t>(row_[i + channel] + 255 - row_[i + 3]);
        return row_.data();
    }

    struct Handle {
        Handle() = default;
        ~Handle() { jpeg_destroy_compress(&jpeg); }
        Handle(const Handle&) = delete;
        Handle& operator=(const Handle&) = delete;
        jpeg_compress_struct jpeg{};
    };

    std::filesystem::path file_;
    PictureShape shape_;
    Handle handle_;
    jpeg_error_mgr errors_{};
    jpeg_destination_mgr target_{};
    std::array<JOCTET, 64 << 10> piece_;
    std::vector<std::uint8_t> bytes_;
    std::jmp_buf jump_{};
    std::array<char, JMSG_LENGTH_MAX> message_{};
    std::vector<std::uint8_t> row_;
};

} // namespace

std::unique_ptr<PictureWriter> jpegWriter(
    const PictureShape& shape, int quality, Profile profile, const std::filesystem::path& file)
{
    return std::make_unique<JpegWriter>(shape, quality, profile, file);
}

} // namespace korvo
