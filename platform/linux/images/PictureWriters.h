#pragma once

#include "platform/PictureWriter.h"

#include <span>

namespace korvo {

enum class Profile { none, srgb };

std::unique_ptr<PictureWriter> jpegWriter(
    const PictureShape& shape, int quality, Profile profile, const std::filesystem::path& file);
std::unique_ptr<PictureWriter> pngWriter(const PictureShape& shape, const std::filesystem::path& file);
std::unique_ptr<PictureWriter> webpWriter(
    const PictureShape& shape, int quality, const std::filesystem::path& file);
std::unique_ptr<PictureWriter> tiffWriter(const PictureShape& shape, const std::filesystem::path& file);

/// The ICC profile of sRGB.
std::span<const std::uint8_t> srgbProfile();

/// Copies a bitmap's row to RGB bytes, or RGBA with straight alpha.
void withStraightAlpha(const std::uint8_t* row, std::uint8_t* to, const PictureShape& shape);

} // namespace korvo
