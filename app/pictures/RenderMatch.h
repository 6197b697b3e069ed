#pragma once

#include "aperture/ApertureImporter.h"
#include "platform/ImageReader.h"

#include <filesystem>
#include <optional>
#include <stop_token>

namespace korvo {

/// The tone curve that brings our render of a file with these edits to Aperture's own, `preview`. Nothing
/// when none brings it closer, when one of the files cannot be decoded, and for edits that our render does
/// not draw yet, such as levels: the curve would make up for what is not there.
std::optional<ToneCurves> matchRender(ImageReader& reader, const std::filesystem::path& original,
    const PhotoEdits& edits, const std::filesystem::path& preview, const std::stop_token& stop);

/// The same for an import, of one reader, which must outlive it.
MatchRender matchBy(ImageReader& reader, std::stop_token stop);

} // namespace korvo
