#include "platform/linux/images/PictureWriters.h"

#include <array>
#include <csetjmp>
#include <cstdio> // jpeglib.h takes FILE for granted
#include <cstdlib>
#include <jpeglib.h>

namespace korvo {

namespace {

constexpr int firstFullColourQuality = 90;

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
        return {handle_.bytes, handle_.bytes + handle_.length};
    }

private:
    void begin(int quality, Profile profile)
    {
        auto& jpeg = handle_.jpeg;
        jpeg.err = jpeg_std_error(&errors_);
        errors_.error_exit = [](j_common_ptr any) {
            auto& self = *static_cast<JpegWriter*>(any->client_data);
            self.errors_.format_message(any, self.message_.data());
            std::longjmp(self.jump_, 1);
        };
        jpeg.client_data = this;
        if (setjmp(jump_))
            fail();
        jpeg_create_compress(&jpeg);
        jpeg.client_data = this;
        jpeg_mem_dest(&jpeg, &handle_.bytes, &handle_.length);
        jpeg.image_width = static_cast<JDIMENSION>(shape_.width);
        jpeg.image_height = static_cast<JDIMENSION>(shape_.height);
        jpeg.input_components = 4;
        jpeg.in_color_space = JCS_EXT_RGBX;
        jpeg_set_defaults(&jpeg);
        jpeg_set_quality(&jpeg, quality, TRUE);
        jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor
            = quality >= firstFullColourQuality ? 1 : 2;
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
        ~Handle()
        {
            jpeg_destroy_compress(&jpeg);
            std::free(bytes);
        }
        Handle(const Handle&) = delete;
        Handle& operator=(const Handle&) = delete;
        jpeg_compress_struct jpeg{};
        unsigned char* bytes = nullptr;
        unsigned long length = 0;
    };

    std::filesystem::path file_;
    PictureShape shape_;
    Handle handle_;
    jpeg_error_mgr errors_{};
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
