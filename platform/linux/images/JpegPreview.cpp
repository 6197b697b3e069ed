#include "platform/ExifPicture.h"
#include "platform/linux/images/PictureRows.h"

#include <algorithm>

namespace korvo {

namespace {

constexpr std::uint64_t headLength = 128 << 10; // an EXIF block has at most 64 KiB

/// The rows of a preview, with what the whole picture says of itself. A damaged preview is none.
class PreviewRows : public PictureRows {
public:
    PreviewRows(
        PictureFile& file, std::unique_ptr<PictureRows> rows, const JpegHead& head, const JpegSize& whole)
        : file_(file), rows_(std::move(rows))
    {
        info_ = rows_->info();
        info_.fullWidth = whole.width;
        info_.fullHeight = whole.height;
        info_.orientation = head.exif.orientation;
        info_.isAdobeRGB = head.exif.isAdobeRGB;
        if (info_.profile.empty())
            info_.profile = head.profile;
    }

    void read(std::uint8_t* row) override
    {
        rows_->read(row);
        if (!rows_->info().note.empty())
            file_.fail(ImageError::Case::damaged, rows_->info().note);
    }

private:
    PictureFile& file_;
    std::unique_ptr<PictureRows> rows_;
};

} // namespace

std::unique_ptr<PictureRows> openJpegPreview(PictureFile& file, const OpenOptions& options)
{
    const auto bytes = file.bytes(0, headLength);
    const auto whole = jpegSize(Bytes(bytes));
    if (!whole || options.size <= 0)
        return nullptr;
    const auto head = readJpegHead(Bytes(bytes));
    const EmbeddedJpeg* best = nullptr;
    int bestSide = std::max(whole->width, whole->height);
    for (const auto& preview : head.previews) {
        const auto start = file.bytes(preview.offset, std::min(preview.length, headLength));
        const auto size = jpegSize(Bytes(start));
        const int side = size ? std::max(size->width, size->height) : 0;
        if (side >= options.size && side < bestSide
            && hasShapeOf(size->width, size->height, whole->width, whole->height)) {
            best = &preview;
            bestSide = side;
        }
    }
    if (!best)
        return nullptr;
    return std::make_unique<PreviewRows>(
        file, openJpegAt(file, best->offset, best->length, options), head, *whole);
}

} // namespace korvo
