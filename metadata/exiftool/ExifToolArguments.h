#pragma once

#include "catalog/PhotoMetadata.h"
#include "metadata/Coordinate.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korvo {

/// What exiftool is called with, without the program itself.
using ExifToolArguments = std::vector<std::string>;

/// Asks for the descriptive fields of files, as JSON.
ExifToolArguments readArguments(std::span<const std::filesystem::path> files);
/// Makes a file hold exactly these fields; an empty one deletes its tags.
ExifToolArguments writeArguments(const PhotoMetadata& metadata, const std::filesystem::path& file);
/// Moves a file's dates by `seconds`, rounded to whole ones.
ExifToolArguments shiftDatesArguments(double seconds, const std::filesystem::path& file, FileParts parts);
/// Gives a file a position, or takes it away, in those of its parts that hold one, or are to.
ExifToolArguments writeGPSArguments(
    const Coordinate& position, const std::filesystem::path& file, FileParts parts);
ExifToolArguments stripGPSArguments(const std::filesystem::path& file, FileParts parts);
/// Whether where a photo was taken goes along.
enum class Position { keep, strip };
/// Which position a picture that was made of a photo holds: the file's, and instead of that another one.
struct ExportedPosition {
    Position ofFile = Position::keep;
    std::optional<Coordinate> own;
};

/// Copies a photo's EXIF into a picture that was made of it, but for what no longer holds: the turn, the
/// size, the colours and the thumbnail.
ExifToolArguments exportedExifArguments(const std::filesystem::path& source,
    const std::filesystem::path& picture, int width, int height, const ExportedPosition& position);

/// The arguments as lines for the tool's option -@. Nothing when a file's name cannot be given that way.
std::optional<std::string> argumentLines(const ExifToolArguments& arguments);

} // namespace korvo
