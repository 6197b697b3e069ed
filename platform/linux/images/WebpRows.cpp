#include "platform/ExifPicture.h"
#include "platform/Shrinking.h"
#include "platform/linux/images/WholeRows.h"

#include <webp/decode.h>
#include <webp/demux.h>

namespace korvo {

namespace {

constexpr std::uint64_t largestFile = std::uint64_t(1) << 29;
/// What libwebp holds of a lossless picture, and we of any.
constexpr std::int64_t bytesAPixel = 8;

struct DeleteDemuxer {
    void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};

/// The contents of a chunk of the container, such as "ICCP".
std::vector<std::uint8_t> chunk(const WebPDemuxer* demuxer, const char* name)
{
    WebPChunkIterator found;
    std::vector<std::uint8_t> bytes;
    if (WebPDemuxGetChunk(demuxer, name, 1, &found))
        bytes.assign(found.chunk.bytes, found.chunk.bytes + found.chunk.size);
    WebPDemuxReleaseChunkIterator(&found);
    return bytes;
}

/// The first picture's stream: of an animation its first frame, which then covers the whole canvas or stands
/// for it.
WebPData firstFrame(const PictureFile& file, const WebPDemuxer* demuxer)
{
    WebPIterator frame;
    if (!WebPDemuxGetFrame(demuxer, 1, &frame))
        file.fail(ImageError::Case::damaged, "the file is damaged: it holds no whole picture");
    const auto stream = frame.fragment; // lies in the file's bytes
    WebPDemuxReleaseIterator(&frame);
    return stream;
}

/// Decodes as far as the stream goes: `suspended` when it goes not to its end.
VP8StatusCode decodeWhatThereIs(const WebPData& stream, WebPDecoderConfig& config)
{
    const std::unique_ptr<WebPIDecoder, decltype(&WebPIDelete)> decoder(
        WebPIDecode(nullptr, 0, &config), WebPIDelete);
    return decoder ? WebPIUpdate(decoder.get(), stream.bytes, stream.size) : VP8_STATUS_OUT_OF_MEMORY;
}

/// Decodes, and shrinks on the way when no more than `size` pixels a side are wanted.
PixelBuffer<std::uint8_t> decode(
    const PictureFile& file, const WebPData& stream, const OpenOptions& options, PictureInfo& info)
{
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config)
        || WebPGetFeatures(stream.bytes, stream.size, &config.input) != VP8_STATUS_OK)
        file.fail(ImageError::Case::damaged, "the file is damaged: its picture has no readable header");
    checkSize(file, config.input.width, config.input.height);
    info.fullWidth = config.input.width;
    info.fullHeight = config.input.height;
    if (bytesAPixel * info.fullWidth * info.fullHeight > options.mostMemory)
        file.fail(ImageError::Case::memory, notEnoughMemory);
    std::tie(info.width, info.height) = shrunkSize(info.fullWidth, info.fullHeight, options.size);
    info.format.alpha = config.input.has_alpha ? RowFormat::Alpha::straight : RowFormat::Alpha::unused;
    config.options.use_scaling = info.width != info.fullWidth || info.height != info.fullHeight;
    if (config.options.use_scaling && config.input.has_alpha) // so that what is not seen does not bleed
        info.format.alpha = RowFormat::Alpha::premultiplied;
    config.options.scaled_width = info.width;
    config.options.scaled_height = info.height;
    const auto opacity = config.input.has_alpha ? 0 : 0xFF;
    PixelBuffer<std::uint8_t> pixels(
        std::size_t(4) * static_cast<std::size_t>(info.width) * static_cast<std::size_t>(info.height),
        static_cast<std::uint8_t>(opacity));
    config.output.colorspace = info.format.alpha == RowFormat::Alpha::premultiplied ? MODE_rgbA : MODE_RGBA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {pixels.data(), 4 * info.width, pixels.size()};
    const auto result = decodeWhatThereIs(stream, config);
    if (result == VP8_STATUS_SUSPENDED)
        info.note = "the file is damaged: it ends too early";
    else if (result != VP8_STATUS_OK)
        file.fail(result == VP8_STATUS_OUT_OF_MEMORY ? ImageError::Case::memory : ImageError::Case::damaged,
            "the file is damaged: its picture cannot be decoded");
    return pixels;
}

} // namespace

std::unique_ptr<PictureRows> openWebp(PictureFile& file, const OpenOptions& options)
{
    if (file.size() > largestFile)
        file.fail(ImageError::Case::tooLarge, "a WebP of more than 512 MB is not read");
    const auto bytes = file.bytes(0, file.size());
    const WebPData data{bytes.data(), bytes.size()};
    WebPDemuxState state{};
    const std::unique_ptr<WebPDemuxer, DeleteDemuxer> demuxer(WebPDemuxPartial(&data, &state));
    if (!demuxer)
        file.fail(ImageError::Case::damaged, "the file is damaged: it is no whole WebP");
    PictureInfo info;
    info.profile = chunk(demuxer.get(), "ICCP");
    const auto exif = chunk(demuxer.get(), "EXIF");
    const Bytes block(exif);
    info.orientation = exifPicture(block.startsWith("Exif") ? block.from(6) : block).orientation;
    auto pixels = decode(file, firstFrame(file, demuxer.get()), options, info);
    return std::make_unique<WholeRows>(std::move(info), std::move(pixels));
}

} // namespace korvo
