#include "platform/linux/images/PictureWriters.h"

#include <webp/encode.h>
#include <webp/mux.h>

namespace korvo {

namespace {

struct Memory {
    Memory() { WebPMemoryWriterInit(&writer); }
    ~Memory() { WebPMemoryWriterClear(&writer); }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
    WebPMemoryWriter writer;
};

struct Picture {
    Picture() { WebPPictureInit(&picture); }
    ~Picture() { WebPPictureFree(&picture); }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    WebPPicture picture;
};

/// Encodes with libwebp, which takes the picture as a whole.
class WebpWriter : public PictureWriter {
public:
    WebpWriter(const PictureShape& shape, int quality, const std::filesystem::path& file)
        : file_(file), shape_(shape), quality_(quality)
    {
        if (shape.width > WEBP_MAX_DIMENSION || shape.height > WEBP_MAX_DIMENSION)
            throw ImageError(ImageError::Case::tooLarge, file_, "a WebP has at most 16,383 pixels a side");
        pixels_.resize(rowBytes() * static_cast<std::size_t>(shape.height));
    }

    void write(const std::uint8_t* row) override
    {
        withStraightAlpha(row, &pixels_[rowBytes() * next_++], shape_);
    }

    std::vector<std::uint8_t> finish() override
    {
        Memory memory;
        Picture it;
        WebPConfig config;
        WebPConfigInit(&config);
        config.quality = static_cast<float>(quality_);
        it.picture.width = shape_.width;
        it.picture.height = shape_.height;
        it.picture.writer = WebPMemoryWrite;
        it.picture.custom_ptr = &memory.writer;
        const bool taken = shape_.alpha == AlphaPlane::present
            ? WebPPictureImportRGBA(&it.picture, pixels_.data(), static_cast<int>(rowBytes()))
            : WebPPictureImportRGB(&it.picture, pixels_.data(), static_cast<int>(rowBytes()));
        pixels_ = {};
        if (!taken || !WebPEncode(&config, &it.picture))
            throw ImageError(ImageError::Case::write, file_,
                "WebP's encoder gave up (error " + std::to_string(it.picture.error_code) + ")");
        return withProfile({memory.writer.mem, memory.writer.size});
    }

private:
    std::size_t rowBytes() const
    {
        return static_cast<std::size_t>(shape_.width) * (shape_.alpha == AlphaPlane::present ? 4 : 3);
    }

    std::vector<std::uint8_t> withProfile(const WebPData& stream) const
    {
        const WebPData profile{srgbProfile().data(), srgbProfile().size()};
        WebPMux* const mux = WebPMuxCreate(&stream, 0);
        WebPData whole{};
        const bool made = mux && WebPMuxSetChunk(mux, "ICCP", &profile, 0) == WEBP_MUX_OK
            && WebPMuxAssemble(mux, &whole) == WEBP_MUX_OK;
        std::vector<std::uint8_t> bytes(whole.bytes, whole.bytes + whole.size);
        WebPDataClear(&whole);
        WebPMuxDelete(mux);
        if (!made)
            throw ImageError(ImageError::Case::memory, file_, "there is not enough memory");
        return bytes;
    }

    std::filesystem::path file_;
    PictureShape shape_;
    int quality_;
    PixelBuffer<std::uint8_t> pixels_;
    std::size_t next_ = 0;
};

} // namespace

std::unique_ptr<PictureWriter> webpWriter(
    const PictureShape& shape, int quality, const std::filesystem::path& file)
{
    return std::make_unique<WebpWriter>(shape, quality, file);
}

} // namespace korvo
