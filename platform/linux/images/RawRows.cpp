#include "platform/ExifPicture.h"
#include "platform/linux/images/RawStream.h"
#include "platform/linux/images/WholeRows.h"

#include <algorithm>
#include <array>

namespace korvo {

namespace {

constexpr auto previewNote = "the camera is not known: the preview that it stored is shown";
constexpr auto colorNote = "the camera is not known: its colours are a guess";
constexpr auto damageNote = "its raw data are damaged: the preview that the camera stored is shown";
constexpr auto kindNote = "its kind of raw data is not known: the preview that the camera stored is shown";

/// LibRaw on a picture's file, with what it keeps to itself.
class Raw : public LibRaw {
public:
    explicit Raw(PictureFile& file) : stream_(file) { }

    /// LibRaw's number for what is wrong with the file.
    int open() { return open_datastream(&stream_); }

    /// Whether it knows what the camera's colours are.
    bool hasMatrix() const { return libraw_internal_data.internal_output_params.raw_color == 0; }

private:
    RawStream stream_;
};

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

    void read(std::uint8_t* row) override
    {
        rows_->read(row);
        if (isWhole_ && !rows_->info().note.empty()) {
            isWhole_ = false;
            info_.note += (info_.note.empty() ? "" : "; ") + rows_->info().note;
        }
    }

private:
    PictureFile jpeg_;
    std::unique_ptr<PictureRows> rows_;
    bool isWhole_ = true;
};

/// Null for one that is damaged: there may be another, and there are the raw data.
std::unique_ptr<PictureRows> storedPreview(
    PictureFile jpeg, const PictureInfo& whole, const OpenOptions& options)
try {
    return std::make_unique<StoredPreview>(std::move(jpeg), whole, options);
} catch (const ImageError&) {
    return nullptr;
}

/// LibRaw's bits: 1 mirrors, 2 turns over, and 4 then changes the axes.
Orientation orientationOfFlip(int flip)
{
    constexpr std::array orientations{1, 2, 4, 3, 5, 8, 6, 7};
    return orientationOf(orientations[static_cast<std::size_t>(flip & 7)]);
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
    const PictureFile& file, LibRaw& raw, PictureInfo info, const OpenOptions& options)
{
    const auto& found = raw.imgdata.thumbnail;
    if (raw.unpack_thumb() != LIBRAW_SUCCESS || !found.thumb)
        return nullptr;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(found.thumb);
    if (found.tformat == LIBRAW_THUMBNAIL_JPEG)
        return storedPreview(
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
std::unique_ptr<PictureRows> anyPreview(
    const PictureFile& file, const PictureInfo& info, const OpenOptions& options)
{
    constexpr std::uint64_t mostSearched = std::uint64_t(1) << 29;
    const auto bytes = file.bytes(0, mostSearched);
    const auto found = largestJpegIn(Bytes(bytes));
    if (!found)
        return nullptr;
    return storedPreview(PictureFile(file.path(), file.bytes(found->offset, found->length)), info, options);
}

void check(const PictureFile& file, int result)
{
    if (result == LIBRAW_UNSUFFICIENT_MEMORY || result == LIBRAW_TOO_BIG)
        file.fail(ImageError::Case::memory, "developing it needs too much memory");
    if (result == LIBRAW_FILE_UNSUPPORTED || result == LIBRAW_NOT_IMPLEMENTED)
        file.fail(ImageError::Case::unsupported,
            "the camera is not known or its kind of raw data, and the file holds no preview that could be "
            "shown");
    if (result != LIBRAW_SUCCESS)
        file.fail(ImageError::Case::damaged, std::string("the file is damaged: ") + libraw_strerror(result));
}

struct FreeDeveloped {
    void operator()(libraw_processed_image_t* image) const { LibRaw::dcraw_clear_mem(image); }
};
using Developed = std::unique_ptr<libraw_processed_image_t, FreeDeveloped>;

/// A developed picture, whose numbers are the camera's colours: turned into linear sRGB row by row, so that
/// neither what is brighter than white nor what lies outside of sRGB is cut off.
class DevelopedRows : public PictureRows {
public:
    DevelopedRows(Developed image, PictureInfo info, const Raw& raw)
        : image_(std::move(image)), colors_(image_->colors)
    {
        info_ = std::move(info);
        const auto& colour = raw.imgdata.color;
        // What LibRaw divided by, so that no channel exceeds its numbers.
        const float headroom = 1 / *std::min_element(colour.pre_mul, colour.pre_mul + colors_);
        for (std::size_t row = 0; row < 3; ++row)
            for (std::size_t column = 0; column < 4; ++column)
                matrix_[row][column] = headroom / 65535
                    * (raw.hasMatrix() && colors_ > 1 ? colour.rgb_cam[row][column] : float(row == column));
    }

    void read(std::uint8_t* row) override
    {
        auto* to = reinterpret_cast<float*>(row);
        const auto width = static_cast<std::size_t>(info_.width);
        const auto* from = reinterpret_cast<const std::uint16_t*>(image_->data) + colors_ * width * next_++;
        const auto count = static_cast<std::size_t>(info_.format.colors());
        for (std::size_t x = 0; x < width; ++x, from += colors_)
            for (std::size_t channel = 0; channel < count; ++channel) {
                float sum = 0;
                for (std::size_t i = 0; i < colors_; ++i)
                    sum += matrix_[channel][i] * static_cast<float>(from[i]);
                *to++ = sum;
            }
    }

private:
    Developed image_;
    std::size_t colors_; ///< of the camera
    std::array<std::array<float, 4>, 3> matrix_{};
    std::size_t next_ = 0;
};

/// Develops with the camera's white balance into linear sRGB. At half the size, which needs no interpolation,
/// when that is enough.
std::unique_ptr<PictureRows> develop(
    PictureFile& file, Raw& raw, PictureInfo info, const OpenOptions& options)
{
    auto& how = raw.imgdata.params;
    how.output_bps = 16;
    how.output_color = 0; // the camera's
    how.highlight = 2; // not cut off; what is white in one channel only is made neutral, and not magenta
    how.gamm[0] = how.gamm[1] = 1;
    how.no_auto_bright = 1;
    how.use_camera_wb = 1;
    how.user_flip = 0; // turned later
    how.half_size = options.size > 0 && std::max(info.fullWidth, info.fullHeight) >= 2 * options.size;
    check(file, raw.unpack());
    check(file, raw.dcraw_process());
    int error = LIBRAW_SUCCESS;
    Developed image(raw.dcraw_make_mem_image(&error));
    check(file, error);
    if (!image || image->bits != 16 || image->colors < 1 || image->colors > 4 || image->colors == 2)
        file.fail(ImageError::Case::unsupported, "this kind of raw file cannot be developed");
    if (image->data_size < std::size_t(2) * image->colors * image->width * image->height)
        file.fail(ImageError::Case::damaged, "the file is damaged: it was developed in part only");
    info.width = image->width;
    info.height = image->height;
    if (!how.half_size) { // turned sensors and oblong pixels are put right
        info.fullWidth = info.width;
        info.fullHeight = info.height;
    }
    if (raw.error_count() > 0 && info.note.empty())
        info.note = "the file is damaged: a part of its raw data cannot be read";
    info.format = {image->colors > 1 ? RowFormat::Model::rgb : RowFormat::Model::grey, RowFormat::Alpha::none,
        RowFormat::Depth::real, true};
    return std::make_unique<DevelopedRows>(std::move(image), std::move(info), raw);
}

/// What a raw file shows that cannot be developed: the preview that it stores, or any, or null.
std::unique_ptr<PictureRows> previewInstead(
    PictureFile& file, PictureInfo info, const OpenOptions& options, const ImageError& error)
{
    info.note = error.which() == ImageError::Case::damaged ? damageNote : kindNote;
    const auto anew = std::make_unique<Raw>(file); // one that has failed keeps nothing
    if (anew->open() == LIBRAW_SUCCESS)
        if (auto rows = preview(file, *anew, info, options))
            return rows;
    return anyPreview(file, info, options);
}

bool isCameraKnown(const LibRaw& raw)
{
    return raw.imgdata.color.cam_xyz[0][0] != 0 || raw.imgdata.idata.dng_version != 0
        || raw.imgdata.idata.colors != 3;
}

} // namespace

std::unique_ptr<PictureRows> openRaw(PictureFile& file, const OpenOptions& options)
{
    const auto raw = std::make_unique<Raw>(file);
    PictureInfo info;
    if (const int opened = raw->open(); opened != LIBRAW_SUCCESS) {
        info.note = previewNote;
        if (auto rows = anyPreview(file, info, options))
            return rows;
        check(file, opened);
    }
    info.fullWidth = raw->imgdata.sizes.width;
    info.fullHeight = raw->imgdata.sizes.height;
    checkSize(file, info.fullWidth, info.fullHeight);
    info.orientation = orientationOfFlip(raw->imgdata.sizes.flip);
    if (!isCameraKnown(*raw))
        info.note = previewNote;
    if (options.isQuick || !isCameraKnown(*raw))
        if (auto rows = preview(file, *raw, info, options))
            return rows;
    info.note = isCameraKnown(*raw) ? "" : colorNote;
    try {
        return develop(file, *raw, info, options);
    } catch (const ImageError& error) {
        if (error.which() == ImageError::Case::damaged || error.which() == ImageError::Case::unsupported)
            if (auto rows = previewInstead(file, info, options, error))
                return rows;
        throw;
    }
}

} // namespace korvo
