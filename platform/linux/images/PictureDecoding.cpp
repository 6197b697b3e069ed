#include "platform/linux/images/PictureDecoding.h"

#include "platform/Shrinking.h"
#include "platform/linux/images/ColorConversion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace korvo {

namespace {

using namespace std::string_view_literals;

/// One picture on its way from rows to an image.
class Decoding {
    static constexpr int rowsBetweenCalls = 64;

public:
    Decoding(PictureFile& file, PictureRows& rows, const ImageRequest& request, const std::stop_token& stop)
        : file_(file), rows_(rows), info_(rows.info()), stop_(stop), rowsReady_(request.rowsReady),
          isLinear_(request.kind == PixelKind::linear
              || (request.kind == PixelKind::asStored && !ColorConversion::fitsBitmap(info_))),
          isCopied_(!isLinear_ && ColorConversion::isBitmap(info_)),
          announcesRows_(rowsReady_ && isCopied_ && info_.orientation == Orientation::upright)
    {
        std::tie(width_, height_) = hasShapeOf(info_.width, info_.height, info_.fullWidth, info_.fullHeight)
            ? shrunkSize(info_.fullWidth, info_.fullHeight, request.size)
            : shrunkSize(info_.width, info_.height, request.size);
        width_ = std::min(width_, info_.width);
        height_ = std::min(height_, info_.height);
    }

    DecodedImage run()
    {
        DecodedImage image;
        if (isLinear_)
            image.pixels = turned(linear(), info_.orientation);
        else
            image.pixels = turned(bitmap(), info_.orientation);
        image.fullWidth = swapsSides(info_.orientation) ? info_.fullHeight : info_.fullWidth;
        image.fullHeight = swapsSides(info_.orientation) ? info_.fullWidth : info_.fullHeight;
        image.note = info_.note;
        return image;
    }

private:
    bool isShrunk() const { return width_ != info_.width || height_ != info_.height; }
    std::size_t stored() const { return 4 * static_cast<std::size_t>(info_.width); }

    void read(std::uint8_t* row)
    {
        if (stop_.stop_requested())
            file_.fail(ImageError::Case::stopped, "was stopped");
        rows_.read(row);
        file_.check();
    }

    /// Reads all rows as RGBA bytes: row y to where `place(y)` says, then calls `done(y)`.
    template <typename Place, typename Done>
    void readBytes(Place place, Done done)
    {
        std::optional<ColorConversion> conversion;
        if (!isCopied_)
            conversion.emplace(info_, ColorConversion::Target::bitmap);
        std::vector<std::uint8_t> row(
            isCopied_ ? 0 : info_.format.pixelBytes() * static_cast<std::size_t>(info_.width));
        for (int y = 0; y < info_.height; ++y) {
            read(isCopied_ ? place(y) : row.data());
            if (conversion)
                conversion->toBitmap(row.data(), place(y), info_.width);
            done(place(y));
        }
    }

    void readBitmap(Bitmap& image)
    try {
        int rows = 0;
        readBytes([&](int y) { return image.row(y); },
            [&](const std::uint8_t*) {
                if (announcesRows_ && (++rows % rowsBetweenCalls == 0 || rows == height_))
                    rowsReady_(image, rows);
            });
    } catch (...) {
        if (announcesRows_)
            rowsReady_(image, 0);
        throw;
    }

    Bitmap bitmap()
    {
        Bitmap image(width_, height_);
        if (!isShrunk()) {
            readBitmap(image);
            return image;
        }
        Shrinking shrinking(info_.width, info_.height, width_, height_);
        std::vector<std::uint8_t> bytes(stored());
        std::vector<float> numbers(stored());
        std::uint8_t* to = image.bytes.data();
        readBytes([&](int) { return bytes.data(); },
            [&](const std::uint8_t* row) {
                std::copy_n(row, stored(), numbers.begin());
                shrinking.take(
                    numbers.data(), [&](const float* shrunk) { to = Shrinking::store(shrunk, width_, to); });
            });
        return image;
    }

    LinearImage linear()
    {
        const bool hasAlpha = info_.format.alpha == RowFormat::Alpha::straight
            || info_.format.alpha == RowFormat::Alpha::premultiplied;
        LinearImage image(width_, height_, hasAlpha ? AlphaPlane::present : AlphaPlane::absent);
        ColorConversion conversion(info_, ColorConversion::Target::linear);
        std::optional<Shrinking> shrinking;
        if (isShrunk())
            shrinking.emplace(info_.width, info_.height, width_, height_);
        std::vector<std::uint8_t> row(info_.format.pixelBytes() * static_cast<std::size_t>(info_.width));
        std::vector<float> numbers(stored());
        std::size_t at = 0;
        for (int y = 0; y < info_.height; ++y) {
            read(row.data());
            conversion.toLinear(row.data(), numbers.data(), info_.width);
            if (!shrinking) {
                at = storePlanes(numbers.data(), image, at);
                continue;
            }
            if (hasAlpha)
                multiplyByAlpha(numbers);
            shrinking->take(
                numbers.data(), [&](const float* shrunk) { at = storePlanes(shrunk, image, at); });
        }
        if (shrinking && hasAlpha)
            divideByAlpha(image);
        return image;
    }

    static void multiplyByAlpha(std::vector<float>& row)
    {
        for (std::size_t i = 0; i < row.size(); i += 4)
            for (std::size_t channel = 0; channel < 3; ++channel)
                row[i + channel] *= row[i + 3];
    }

    static void divideByAlpha(LinearImage& image)
    {
        for (std::size_t i = 0; i < image.pixels(); ++i)
            for (auto* const plane : {&image.red, &image.green, &image.blue})
                (*plane)[i] = image.alpha[i] > 0 ? (*plane)[i] / image.alpha[i] : 0;
    }

    std::size_t storePlanes(const float* row, LinearImage& image, std::size_t at) const
    {
        for (int x = 0; x < width_; ++x, row += 4, ++at) {
            image.red[at] = row[0];
            image.green[at] = row[1];
            image.blue[at] = row[2];
            if (!image.isOpaque())
                image.alpha[at] = row[3] > 0 ? std::min(row[3], 1.0F) : 0; // NaN is 0 too
        }
        return at;
    }

    PictureFile& file_;
    PictureRows& rows_;
    const PictureInfo& info_;
    const std::stop_token& stop_;
    const RowsReady& rowsReady_;
    bool isLinear_;
    bool isCopied_; ///< the rows are a bitmap's as they come
    bool announcesRows_;
    int width_ = 0, height_ = 0;
};

} // namespace

OpenRows safeDecoder(const PictureFile& file)
{
    std::array<std::uint8_t, 12> start{};
    const Bytes bytes(start.data(), file.readAt(0, start.data(), start.size()));
    if (bytes.startsWith("\xFF\xD8\xFF"sv))
        return openJpeg;
    if (bytes.startsWith("\x89PNG\r\n\x1A\n"sv))
        return openPng;
    return bytes.startsWith("RIFF"sv) && bytes.startsWith("WEBP"sv, 8) ? openWebp : nullptr;
}

DecodedImage decodePicture(PictureFile& file, OpenRows open, const ImageRequest& request,
    const std::stop_token& stop, std::int64_t mostMemory)
try {
    const OpenOptions options{request.size, request.source == PictureSource::quick, mostMemory, stop};
    if (options.isQuick && open == openJpeg)
        try {
            if (const auto preview = openJpegPreview(file, options))
                return Decoding(file, *preview, request, stop).run();
        } catch (const ImageError& error) {
            if (error.which() != ImageError::Case::damaged) // the picture itself may be whole
                throw;
        }
    const auto rows = open(file, options);
    return Decoding(file, *rows, request, stop).run();
} catch (const ImageError&) {
    file.check(); // what could not be read says more than what a library made of it
    throw;
} catch (const std::bad_alloc&) {
    file.fail(ImageError::Case::memory, notEnoughMemory);
}

void checkSize(const PictureFile& file, std::int64_t width, std::int64_t height)
{
    if (width <= 0 || height <= 0)
        file.fail(ImageError::Case::damaged, "the file is damaged: its picture has no size");
    if (width > mostPixels / height)
        file.fail(ImageError::Case::tooLarge,
            "its " + std::to_string(width) + " × " + std::to_string(height)
                + " pixels are more than Korvo opens (" + std::to_string(mostPixels / 1'000'000)
                + " megapixels)");
}

bool hasShapeOf(int width, int height, int wholeWidth, int wholeHeight)
{
    const double wanted = double(width) * wholeHeight / wholeWidth;
    return std::abs(height - wanted) <= std::max(1.0, 0.01 * wanted);
}

void checkContents(
    const PictureFile& file, std::int64_t width, std::int64_t height, std::uint64_t pixelsInByte)
{
    if (static_cast<std::uint64_t>(width * height) / pixelsInByte > file.size())
        file.fail(ImageError::Case::damaged,
            "the file is damaged: it is too short for its " + std::to_string(width) + " × "
                + std::to_string(height) + " pixels");
}

} // namespace korvo
