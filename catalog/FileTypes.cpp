#include "catalog/FileTypes.h"

#include "base/Text.h"

#include <algorithm>
#include <unordered_map>

namespace korvo {

namespace {

constexpr std::array<std::string_view, 10> imageExtensions
    = {"jpg", "jpeg", "png", "webp", "tif", "tiff", "heic", "heif", "gif", "bmp"};
constexpr std::array<std::string_view, 23> rawExtensions
    = {"cr2", "cr3", "crw", "nef", "nrw", "arw", "srf", "sr2", "raf", "orf", "rw2", "pef", "srw", "erf",
        "dng", "3fr", "fff", "iiq", "mos", "mrw", "dcr", "kdc", "x3f"};
constexpr std::array<std::string_view, 7> audioExtensions
    = {"mp3", "wav", "m4a", "aac", "aiff", "aif", "caf"};

std::unordered_map<std::string_view, FileKind> kindsByExtension()
{
    std::unordered_map<std::string_view, FileKind> kinds;
    const auto add = [&](std::span<const std::string_view> extensions, FileKind kind) {
        for (const auto extension : extensions)
            kinds.emplace(extension, kind);
    };
    add(imageExtensions, FileKind::image);
    add(rawExtensions, FileKind::raw);
    add(videoExtensions, FileKind::video);
    add(audioExtensions, FileKind::audio);
    return kinds;
}

} // namespace

std::string_view extensionOf(std::string_view filename)
{
    const auto dot = filename.rfind('.');
    if (dot == filename.npos || dot == 0)
        return {};
    return filename.substr(dot + 1);
}

std::string lowerExtension(std::string_view filename)
{
    return asciiLower(extensionOf(filename));
}

std::optional<FileKind> fileKind(std::string_view filename)
{
    static const auto kinds = kindsByExtension();
    const auto found = kinds.find(lowerExtension(filename));
    return found == kinds.end() ? std::nullopt : std::optional(found->second);
}

bool isVideo(std::string_view filename)
{
    const auto extension = extensionOf(filename);
    return std::ranges::any_of(
        videoExtensions, [&](std::string_view video) { return compareNoCase(extension, video) == 0; });
}

bool isLibraryFile(std::string_view filename)
{
    const auto kind = fileKind(filename);
    return kind && *kind != FileKind::audio;
}

} // namespace korvo
