#include "platform/linux/images/PictureWriters.h"

#include "base/Text.h"
#include "platform/linux/images/IccProfiles.h"
#include "platform/linux/images/PictureDecoding.h"

#include <algorithm>
#include <array>

namespace korvo {

namespace {

struct FormatFacts {
    PictureFormat format;
    bool hasQuality;
    std::array<std::string_view, 2> endings; // the first is the one that we give
};
constexpr std::array formats{FormatFacts{PictureFormat::jpeg, true, {".jpg", ".jpeg"}},
    FormatFacts{PictureFormat::png, false, {".png", ".png"}},
    FormatFacts{PictureFormat::webp, true, {".webp", ".webp"}},
    FormatFacts{PictureFormat::tiff, false, {".tif", ".tiff"}}};

const FormatFacts& factsOf(PictureFormat format)
{
    return *std::ranges::find(formats, format, &FormatFacts::format);
}

} // namespace

std::optional<PictureFormat> pictureFormat(const std::filesystem::path& file)
{
    const auto ending = asciiLower(file.extension().native());
    for (const auto& facts : formats)
        if (std::ranges::count(facts.endings, ending) > 0)
            return facts.format;
    return std::nullopt;
}

std::string_view endingOf(PictureFormat format)
{
    return factsOf(format).endings.front();
}

bool hasQuality(PictureFormat format)
{
    return factsOf(format).hasQuality;
}

std::unique_ptr<PictureWriter> pictureWriter(
    PictureFormat format, const PictureShape& shape, int quality, const std::filesystem::path& file)
{
    switch (format) {
    case PictureFormat::jpeg:
        return jpegWriter(shape, quality, Profile::srgb, file);
    case PictureFormat::png:
        return pngWriter(shape, file);
    case PictureFormat::webp:
        return webpWriter(shape, quality, file);
    case PictureFormat::tiff:
        return tiffWriter(shape, file);
    }
    return nullptr;
}

std::vector<std::uint8_t> encodedPreview(const Bitmap& image, int quality)
{
    const auto alpha = isOpaque(image) ? AlphaPlane::absent : AlphaPlane::present;
    const auto writer = jpegWriter({image.width, image.height, alpha}, quality, Profile::none, "preview");
    for (int y = 0; y < image.height; ++y)
        writer->write(image.row(y));
    return writer->finish();
}

std::optional<Bitmap> decodedPreview(std::vector<std::uint8_t> bytes)
try {
    PictureFile file("preview", std::move(bytes));
    auto image = decodePicture(file, openJpeg, {}, {});
    return image.note.empty() ? std::optional(std::get<Bitmap>(std::move(image.pixels))) : std::nullopt;
} catch (const ImageError&) { // which is the answer
    return std::nullopt;
}

std::span<const std::uint8_t> srgbProfile()
{
    static const auto profile = iccBytes(IccProfile(cmsCreate_sRGBProfile()));
    return profile;
}

void withStraightAlpha(const std::uint8_t* row, std::uint8_t* to, const PictureShape& shape)
{
    for (int x = 0; x < shape.width; ++x, row += 4) {
        const unsigned alpha = row[3];
        for (int channel = 0; channel < 3; ++channel)
            *to++ = alpha == 0 || alpha == 255
                ? row[channel]
                : static_cast<std::uint8_t>(std::min((row[channel] * 255U + alpha / 2) / alpha, 255U));
        if (shape.alpha == AlphaPlane::present)
            *to++ = row[3];
    }
}

} // namespace korvo
