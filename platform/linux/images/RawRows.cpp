#include "platform/ExifPicture.h"
#include "platform/linux/images/WholeRows.h"

#include <algorithm>
#include <libraw/libraw.h>

namespace korvo {

namespace {

constexpr auto previewNote = "the camera is not known: the preview that it stored is shown";
constexpr auto colourNote = "the camera is not known: its colours are a guess";

/// A preview that lies in a raw file, with what the raw file says of the picture.
class StoredPreview : public PictureRows {
public:
    StoredPreview(PictureFile jpeg, const PictureInfo& whole, const OpenOptions& options)
        : jpeg_(std::move(jpeg)), rows_(openJpeg(jpeg_, options))
    {
        info_ = rows_->info();
        info_.note = whole.note;
        if (whole.fullWidth > 0) {
            info_.fullWidth = whole.fullWidth;
            info_.fullHeight = whole.fullHeight;
            info_.orientation = whole.orientation;
        }
    }

    void read(std::uint8_t* row) override { rows_->read(row); }

private:
    PictureFile jpeg_;
    std::unique_ptr<PictureRows> rows_;
};

/// LibRaw names a turn by the number of the EXIF orientation, but 5 for a quarter to the left.
Orientation orientationOfFlip(int flip)
{
    return flip == 5 ? Orientation::quarterLeft : orientationOf(flip == 0 ? 1 : flip);
}

PixelBuffer<std::uint8_t> withFourthByte(const std::uint8_t* rgb, std::size_t count)
{
    PixelBuffer<std::uint8_t> pixels(4 * count);
    for (std::size_t i = 0; i < count; ++i) {
        std::copy_n(rgb + 3 * i, 3, &pixels[4 * i]);
        pixels[4 * i + 3] = 255;
    }
    return pixels;
}

/// The preview that LibRaw finds, or null.
std::unique_ptr<PictureRows> preview(
    PictureFile& file, LibRaw& raw, PictureInfo info, const OpenOptions& options)
{
    const auto& found = raw.imgdata.thumbnail;
    if (raw.unpack_thumb() != LIBRAW_SUCCESS || !found.thumb)
        return nullptr;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(found.thumb);
    if (found.tformat == LIBRAW_THUMBNAIL_JPEG)
        return std::make_unique<StoredPreview>(
            PictureFile(file.path(), std::vector<std::uint8_t>(bytes, bytes + found.tlength)), info, options);
    const auto count = std::size_t(found.twidth) * found.theight;
    if (found.tformat != LIBRAW_THUMBNAIL_BITMAP || found.tcolors != 3 || count == 0
        || found.tlength < 3 * count)
        return nullptr;
    info.width = found.twidth;
    info.height = found.theight;
    info.format = {};
    return std::make_unique<WholeRows>(std::move(info), withFourthByte(bytes, count));
}

/// The largest JPEG picture anywhere in the file, or null.
std::unique_ptr<PictureRows> anyPreview(PictureFile& file, const OpenOptions& options)
{
    constexpr std::uint64_t mostSearched = std::uint64_t(1) << 29;
    const auto bytes = file.bytes(0, mostSearched);
    const auto found = largestJpegIn(Bytes(bytes));
    if (!found)
        return nullptr;
    PictureInfo info;
    info.note = previewNote;
    return std::make_unique<StoredPreview>(
        PictureFile(file.path(), file.bytes(found->offset, found->length)), info, options);
}

void check(const PictureFile& file, int result)
{
    if (result == LIBRAW_UNSUFFICIENT_MEMORY || result == LIBRAW_TOO_BIG)
        file.fail(ImageError::Case::memory, "developing it needs too much memory");
    if (result == LIBRAW_FILE_UNSUPPORTED || result == LIBRAW_NOT_IMPLEMENTED)
        file.fail(ImageError::Case::unsupported,
            "the camera is not known, and the file holds no preview that could be shown");
    if (result != LIBRAW_SUCCESS)
        file.fail(ImageError::Case::damaged, std::string("the file is damaged: ") + libraw_strerror(result));
}

struct FreeDeveloped {
    void operator()(libraw_processed_image_t* image) const { LibRaw::dcraw_clear_mem(image); }
};

/// Develops with the camera's white balance into linear sRGB. At half the size, which needs no interpolation,
/// when that is enough.
std::unique_ptr<PictureRows> develop(
    PictureFile& file, LibRaw& raw, PictureInfo info, const OpenOptions& options)
{
    auto& how = raw.imgdata.params;
    how.output_bps = 16;
    how.output_color = 1; // sRGB
    how.gamm[0] = how.gamm[1] = 1;
    how.no_auto_bright = 1;
    how.use_camera_wb = 1;
    how.user_flip = 0; // turned later
    how.half_size = options.size > 0 && std::max(info.fullWidth, info.fullHeight) >= 2 * options.size;
    check(file, raw.unpack());
    check(file, raw.dcraw_process());
    int error = LIBRAW_SUCCESS;
    const std::unique_ptr<libraw_processed_image_t, FreeDeveloped> image(raw.dcraw_make_mem_image(&error));
    check(file, error);
    if (!image || image->bits != 16 || (image->colors != 3 && image->colors != 1))
        file.fail(ImageError::Case::unsupported, "this kind of raw file cannot be developed");
    info.width = image->width;
    info.height = image->height;
    info.format = {image->colors == 3 ? RowFormat::Model::rgb : RowFormat::Model::grey,
        RowFormat::Alpha::none, RowFormat::Depth::bits16, true};
    PixelBuffer<std::uint8_t> pixels(image->data, image->data + image->data_size);
    if (pixels.size() < info.format.pixelBytes() * image->width * image->height)
        file.fail(ImageError::Case::damaged, "the file is damaged: it was developed in part only");
    return std::make_unique<WholeRows>(std::move(info), std::move(pixels));
}

bool isCameraKnown(const LibRaw& raw)
{
    return raw.imgdata.color.cam_xyz[0][0] != 0 || raw.imgdata.idata.dng_version != 0
        || raw.imgdata.idata.colors != 3;
}

} // namespace

std::unique_ptr<PictureRows> openRaw(PictureFile& file, const OpenOptions& options)
{
    const auto raw = std::make_unique<LibRaw>();
    if (const int opened = raw->open_file(file.path().c_str()); opened != LIBRAW_SUCCESS) {
        if (auto rows = anyPreview(file, options))
            return rows;
        check(file, opened);
    }
    PictureInfo info;
    info.fullWidth = raw->imgdata.sizes.width;
    info.fullHeight = raw->imgdata.sizes.height;
    checkSize(file, info.fullWidth, info.fullHeight);
    info.orientation = orientationOfFlip(raw->imgdata.sizes.flip);
    if (!isCameraKnown(*raw))
        info.note = previewNote;
    if (options.isQuick || !isCameraKnown(*raw))
        if (auto rows = preview(file, *raw, info, options))
            return rows;
    info.note = isCameraKnown(*raw) ? "" : colourNote;
    return develop(file, *raw, std::move(info), options);
}

} // namespace korvo
