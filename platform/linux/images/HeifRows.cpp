#include "platform/linux/images/IccProfiles.h"
#include "platform/linux/images/PictureStream.h"
#include "platform/linux/images/WholeRows.h"

#include <algorithm>
#include <libheif/heif.h>

namespace korvo {

namespace {

struct Free {
    void operator()(heif_context* it) const { heif_context_free(it); }
    void operator()(const heif_image_handle* it) const { heif_image_handle_release(it); }
    void operator()(const heif_image* it) const { heif_image_release(it); }
    void operator()(heif_color_profile_nclx* it) const { heif_nclx_color_profile_free(it); }
    void operator()(heif_decoding_options* it) const { heif_decoding_options_free(it); }
};
using Handle = std::unique_ptr<heif_image_handle, Free>;

void check(const PictureFile& file, const heif_error& error)
{
    if (error.code == heif_error_Ok)
        return;
    const bool isUnknown
        = error.code == heif_error_Unsupported_feature || error.code == heif_error_Unsupported_filetype;
    file.fail(error.code == heif_error_Memory_allocation_error ? ImageError::Case::memory
            : isUnknown                                        ? ImageError::Case::unsupported
                                                               : ImageError::Case::damaged,
        (isUnknown ? "cannot be decoded: " : "the file is damaged: ") + std::string(error.message));
}

/// Never a failure, for which libheif ends the process: zeros, and the file remembers.
int readStream(void* to, std::size_t length, void* from)
{
    const auto count = PictureStream::of(from).read(to, length);
    std::memset(static_cast<std::uint8_t*>(to) + count, 0, length - count);
    return 0;
}

constexpr heif_reader reader{1,
    [](void* from) { return static_cast<std::int64_t>(PictureStream::of(from).position()); }, readStream,
    [](std::int64_t position, void* in) { return PictureStream::of(in).seek(position, SEEK_SET) ? 0 : 1; },
    [](std::int64_t wanted, void* of) {
        return wanted <= static_cast<std::int64_t>(PictureStream::of(of).size())
            ? heif_reader_grow_status_size_reached
            : heif_reader_grow_status_size_beyond_eof;
    }};

/// The smallest of the stored thumbnails that has `size` pixels a side and the picture's shape, or null.
Handle thumbnail(const heif_image_handle* image, int size)
{
    std::vector<heif_item_id> ids(
        static_cast<std::size_t>(heif_image_handle_get_number_of_thumbnails(image)));
    heif_image_handle_get_list_of_thumbnail_IDs(image, ids.data(), static_cast<int>(ids.size()));
    const int wholeWidth = heif_image_handle_get_width(image),
              wholeHeight = heif_image_handle_get_height(image);
    Handle best;
    int bestSide = 0;
    for (const auto id : ids) {
        heif_image_handle* it = nullptr;
        if (heif_image_handle_get_thumbnail(image, id, &it).code != heif_error_Ok)
            continue;
        Handle handle(it);
        const int width = heif_image_handle_get_width(it), height = heif_image_handle_get_height(it);
        const int side = std::max(width, height);
        if (side >= size && hasShapeOf(width, height, wholeWidth, wholeHeight)
            && (!best || side < bestSide)) {
            best = std::move(handle);
            bestSide = side;
        }
    }
    return best;
}

/// An ICC profile for the primaries that a file names by number (ITU-T H.273), with sRGB's curve; empty for
/// sRGB's own and those that are not known.
std::vector<std::uint8_t> profileOfPrimaries(int primaries)
{
    switch (primaries) {
    case heif_color_primaries_SMPTE_EG_432_1:
        return iccBytes(srgbCurveProfile(displayP3Primaries));
    case heif_color_primaries_ITU_R_BT_2020_2_and_2100_0:
        return iccBytes(srgbCurveProfile(bt2020Primaries));
    default:
        return {};
    }
}

void takeProfile(const heif_image_handle* image, PictureInfo& info)
{
    info.profile.resize(heif_image_handle_get_raw_color_profile_size(image));
    if (!info.profile.empty()
        && heif_image_handle_get_raw_color_profile(image, info.profile.data()).code == heif_error_Ok)
        return;
    info.profile.clear();
    heif_color_profile_nclx* found = nullptr;
    if (heif_image_handle_get_nclx_color_profile(image, &found).code != heif_error_Ok)
        return;
    const std::unique_ptr<heif_color_profile_nclx, Free> nclx(found);
    info.profile = profileOfPrimaries(nclx->color_primaries);
    if (nclx->transfer_characteristics == heif_transfer_characteristic_ITU_R_BT_2100_0_PQ
        || nclx->transfer_characteristics == heif_transfer_characteristic_ITU_R_BT_2100_0_HLG)
        info.note = unknownCurveNote;
}

/// The decoded pixels as rows: 8 bits as they are, more as 16.
PixelBuffer<std::uint8_t> pixelsOf(
    const PictureFile& file, const heif_image* image, PictureInfo& info, int bits)
{
    int stride = 0;
    const auto* const plane = heif_image_get_plane_readonly(image, heif_channel_interleaved, &stride);
    info.width = heif_image_get_width(image, heif_channel_interleaved);
    info.height = heif_image_get_height(image, heif_channel_interleaved);
    if (!plane || info.width <= 0 || info.height <= 0)
        file.fail(ImageError::Case::damaged, "the file is damaged: it holds no pixels");
    const auto rowBytes = info.format.pixelBytes() * static_cast<std::size_t>(info.width);
    PixelBuffer<std::uint8_t> pixels(rowBytes * static_cast<std::size_t>(info.height));
    for (std::size_t y = 0; y < static_cast<std::size_t>(info.height); ++y)
        std::memcpy(&pixels[rowBytes * y], plane + static_cast<std::size_t>(stride) * y, rowBytes);
    if (bits > 8) {
        const std::uint32_t most = (1U << bits) - 1;
        auto* const numbers = reinterpret_cast<std::uint16_t*>(pixels.data());
        std::transform(numbers, numbers + pixels.size() / 2, numbers, [&](std::uint32_t number) {
            return static_cast<std::uint16_t>((std::min(number, most) * 65535U + most / 2) / most);
        });
    }
    return pixels;
}

} // namespace

std::unique_ptr<PictureRows> openHeif(PictureFile& file, const OpenOptions& options)
{
    PictureStream stream(file);
    const std::unique_ptr<heif_context, Free> context(heif_context_alloc());
    check(file, heif_context_read_from_reader(context.get(), &reader, &stream, nullptr));
    heif_image_handle* found = nullptr;
    check(file, heif_context_get_primary_image_handle(context.get(), &found));
    Handle whole(found);
    PictureInfo info;
    info.fullWidth = heif_image_handle_get_width(whole.get());
    info.fullHeight = heif_image_handle_get_height(whole.get());
    checkSize(file, info.fullWidth, info.fullHeight);
    takeProfile(whole.get(), info);
    Handle small = options.isQuick && options.size > 0 ? thumbnail(whole.get(), options.size) : Handle();
    const auto& chosen = small ? small : whole;
    const int bits = heif_image_handle_get_luma_bits_per_pixel(chosen.get());
    const bool isDeep = bits > 8 && bits <= 16;
    using Format = RowFormat;
    info.format.depth = isDeep ? Format::Depth::bits16 : Format::Depth::bits8;
    if (heif_image_handle_has_alpha_channel(chosen.get()))
        info.format.alpha = heif_image_handle_is_premultiplied_alpha(chosen.get())
            ? Format::Alpha::premultiplied
            : Format::Alpha::straight;
    heif_image* decoded = nullptr;
    check(file,
        heif_decode_image(chosen.get(), &decoded, heif_colorspace_RGB,
            isDeep ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RGBA, nullptr));
    const std::unique_ptr<heif_image, Free> image(decoded);
    auto pixels = pixelsOf(file, decoded, info, isDeep ? bits : 8);
    return std::make_unique<WholeRows>(std::move(info), std::move(pixels));
}

} // namespace korvo
