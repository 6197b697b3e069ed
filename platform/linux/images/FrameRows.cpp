#include "platform/ImageReader.h"
#include "platform/linux/images/PictureStream.h"
#include "platform/linux/images/WholeRows.h"

#include <algorithm>
#include <cmath>
#include <new>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

namespace korvo {

namespace {

struct Free {
    void operator()(AVFormatContext* it) const { avformat_close_input(&it); }
    void operator()(AVIOContext* it) const
    {
        av_freep(static_cast<void*>(&it->buffer));
        avio_context_free(&it);
    }
    void operator()(AVCodecContext* it) const { avcodec_free_context(&it); }
    void operator()(AVFrame* it) const { av_frame_free(&it); }
    void operator()(AVPacket* it) const { av_packet_free(&it); }
    void operator()(SwsContext* it) const { sws_freeContext(it); }
};

/// Only what a library's files are: no play lists, and nothing that opens other files.
constexpr auto containers = "mov,mp4,avi,mpeg,mpegts,mpegvideo,gif,bmp_pipe";

std::string reasonOf(int error)
{
    char text[AV_ERROR_MAX_STRING_SIZE]{};
    return av_make_error_string(text, sizeof text, error);
}

void check(const PictureFile& file, int result, ImageError::Case which, const std::string& what)
{
    if (result < 0)
        file.fail(
            result == AVERROR(ENOMEM) ? ImageError::Case::memory : which, what + ": " + reasonOf(result));
}

/// The sizes that GIF and BMP tell at their beginning, which FFmpeg refuses without saying why.
void checkHeader(const PictureFile& file)
{
    const auto start = file.bytes(0, 26);
    const Bytes bytes(start);
    const auto side = [&](unsigned offset, unsigned width) {
        return std::abs(static_cast<std::int64_t>(
            static_cast<std::int32_t>(bytes.littleEndian(offset, width).value_or(1))));
    };
    if (bytes.startsWith("GIF8"))
        checkSize(file, side(6, 2), side(8, 2));
    else if (bytes.startsWith("BM") && bytes.littleEndian(14, 4).value_or(0) >= 40)
        checkSize(file, side(18, 4), side(22, 4));
}

int readStream(void* from, std::uint8_t* to, int length)
{
    const auto count = PictureStream::of(from).read(to, static_cast<std::size_t>(length));
    return count > 0 ? static_cast<int>(count) : AVERROR_EOF;
}

std::int64_t seekInStream(void* in, std::int64_t offset, int origin)
{
    auto& stream = PictureStream::of(in);
    if ((origin & AVSEEK_SIZE) != 0)
        return static_cast<std::int64_t>(stream.size());
    return stream.seek(offset, origin & ~AVSEEK_FORCE) ? static_cast<std::int64_t>(stream.position())
                                                       : AVERROR(EINVAL);
}

std::unique_ptr<AVIOContext, Free> openInput(PictureStream& stream)
{
    constexpr int size = 32 << 10;
    auto* const buffer = static_cast<unsigned char*>(av_malloc(size));
    auto* const input
        = buffer ? avio_alloc_context(buffer, size, 0, &stream, readStream, nullptr, seekInStream) : nullptr;
    if (!input) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    return std::unique_ptr<AVIOContext, Free>(input);
}

std::unique_ptr<AVFormatContext, Free> openContainer(const PictureFile& file, AVIOContext* input)
{
    AVDictionary* options = nullptr;
    av_dict_set(&options, "format_whitelist", containers, 0);
    av_dict_set(&options, "protocol_whitelist", "none", 0);
    av_dict_set(&options, "enable_drefs", "0", 0); // tracks that lie in other files
    AVFormatContext* context = avformat_alloc_context();
    if (!context)
        throw std::bad_alloc();
    context->pb = input;
    const int result = avformat_open_input(&context, file.path().c_str(), nullptr, &options);
    av_dict_free(&options);
    check(file, result, ImageError::Case::damaged, "the file is damaged");
    std::unique_ptr<AVFormatContext, Free> opened(context);
    check(
        file, avformat_find_stream_info(context, nullptr), ImageError::Case::damaged, "the file is damaged");
    return opened;
}

/// A film often begins in the dark: the picture of a tenth of it says more.
void seek(AVFormatContext* film)
{
    if (film->duration > AV_TIME_BASE)
        av_seek_frame(film, -1,
            (film->start_time == AV_NOPTS_VALUE ? 0 : film->start_time) + film->duration / 10,
            AVSEEK_FLAG_BACKWARD);
}

/// The next frame that can be decoded.
std::unique_ptr<AVFrame, Free> nextFrame(
    const PictureFile& file, AVFormatContext* film, AVCodecContext* decoder, int stream)
{
    const std::unique_ptr<AVPacket, Free> packet(av_packet_alloc());
    std::unique_ptr<AVFrame, Free> frame(av_frame_alloc());
    if (!packet || !frame)
        throw std::bad_alloc();
    bool isAtEnd = false;
    while (true) {
        const int result = avcodec_receive_frame(decoder, frame.get());
        if (result == 0)
            return frame;
        if (isAtEnd || result != AVERROR(EAGAIN))
            file.fail(ImageError::Case::damaged, "the file is damaged: no picture of it can be decoded");
        isAtEnd = av_read_frame(film, packet.get()) < 0;
        if (isAtEnd)
            avcodec_send_packet(decoder, nullptr);
        else if (packet->stream_index == stream)
            avcodec_send_packet(decoder, packet.get()); // one that is damaged is passed over
        av_packet_unref(packet.get());
    }
}

/// How a film is to be turned, from the matrix that phones write.
Orientation orientationOf(const AVStream& stream)
{
    const auto* const matrix = reinterpret_cast<const std::int32_t*>(
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
    const double degrees = matrix ? av_display_rotation_get(matrix) : 0; // to the left
    switch (std::isnan(degrees) ? 0 : static_cast<int>(std::lround(degrees / 90)) & 3) {
    case 1:
        return Orientation::quarterLeft;
    case 2:
        return Orientation::upsideDown;
    case 3:
        return Orientation::quarterRight;
    default:
        return Orientation::upright;
    }
}

/// Whether the format, as FFmpeg names it, has alpha that means something.
bool hasAlpha(AVPixelFormat format)
{
    const auto* const description = av_pix_fmt_desc_get(format);
    return description && (description->flags & (AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_PAL)) != 0;
}

/// A frame's width as it is to be seen: its pixels may be oblong.
int widthSeen(AVFormatContext* film, int stream, AVFrame& frame)
{
    const auto ratio = av_guess_sample_aspect_ratio(film, film->streams[stream], &frame);
    const double width = ratio.num > 0 && ratio.den > 0 ? frame.width * av_q2d(ratio) : frame.width;
    return static_cast<int>(std::lround(std::clamp(width, 1.0, 1e9)));
}

PixelBuffer<std::uint8_t> rgba(const PictureFile& file, const AVFrame& frame, int width)
{
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const std::unique_ptr<SwsContext, Free> scaler(
        sws_getContext(frame.width, frame.height, format, width, frame.height, AV_PIX_FMT_RGBA,
            SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr));
    if (!scaler)
        file.fail(ImageError::Case::unsupported, "the film's colours cannot be decoded");
    const bool isHD = frame.height > 576;
    const int space = frame.colorspace == AVCOL_SPC_UNSPECIFIED ? (isHD ? SWS_CS_ITU709 : SWS_CS_ITU601)
                                                                : static_cast<int>(frame.colorspace);
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(space), frame.color_range == AVCOL_RANGE_JPEG,
        sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);
    PixelBuffer<std::uint8_t> pixels(
        std::size_t(4) * static_cast<std::size_t>(width) * static_cast<std::size_t>(frame.height));
    std::uint8_t* planes[] = {pixels.data(), nullptr, nullptr, nullptr};
    const int strides[] = {4 * width, 0, 0, 0};
    sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, strides);
    return pixels;
}

} // namespace

std::unique_ptr<PictureRows> openFrame(PictureFile& file, const OpenOptions&)
{
    av_log_set_level(AV_LOG_QUIET);
    checkHeader(file);
    PictureStream contents(file);
    const auto input = openInput(contents);
    const auto film = openContainer(file, input.get());
    const AVCodec* codec = nullptr;
    const int stream = av_find_best_stream(film.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    check(file, stream, ImageError::Case::unsupported, "it holds no picture that can be decoded");
    const auto* const parameters = film->streams[stream]->codecpar;
    checkSize(file, parameters->width, parameters->height);
    const std::unique_ptr<AVCodecContext, Free> decoder(avcodec_alloc_context3(codec));
    if (!decoder)
        throw std::bad_alloc();
    decoder->max_pixels = mostPixels;
    decoder->thread_count = 1;
    check(file, avcodec_parameters_to_context(decoder.get(), parameters), ImageError::Case::damaged,
        "the file is damaged");
    check(file, avcodec_open2(decoder.get(), codec, nullptr), ImageError::Case::unsupported,
        "cannot be decoded");
    seek(film.get());
    const auto frame = nextFrame(file, film.get(), decoder.get(), stream);
    PictureInfo info;
    info.fullWidth = info.width = widthSeen(film.get(), stream, *frame);
    info.fullHeight = info.height = frame->height;
    checkSize(file, info.width, info.height);
    if (frame->color_trc == AVCOL_TRC_SMPTE2084 || frame->color_trc == AVCOL_TRC_ARIB_STD_B67)
        info.note = unknownCurveNote;
    info.orientation = orientationOf(*film->streams[stream]);
    if (hasAlpha(static_cast<AVPixelFormat>(frame->format)))
        info.format.alpha = RowFormat::Alpha::straight;
    auto pixels = rgba(file, *frame, info.width);
    return std::make_unique<WholeRows>(std::move(info), std::move(pixels));
}

} // namespace korvo
