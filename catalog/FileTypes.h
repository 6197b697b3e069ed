#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace korvo {

enum class FileKind { image, raw, video, audio };

inline constexpr std::array<std::string_view, 6> videoExtensions
    = {"mov", "mp4", "m4v", "avi", "mpg", "mpeg"};

/// The kind of a file by its name's extension in any case; nothing for all other files.
std::optional<FileKind> fileKind(std::string_view filename);

/// The same as fileKind() == FileKind::video, without making a text.
bool isVideo(std::string_view filename);

/// Whether a library takes the file in: images, raw files and videos.
bool isLibraryFile(std::string_view filename);

/// The extension as it is written, without its dot; empty when there is none. A leading dot starts none.
std::string_view extensionOf(std::string_view filename);

/// The extension in lower case, without its dot; empty when there is none. A leading dot starts no extension.
std::string lowerExtension(std::string_view filename);

} // namespace korvo
