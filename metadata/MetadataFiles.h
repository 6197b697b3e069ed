#pragma once

#include "catalog/Catalog.h"
#include "metadata/ExifTool.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korvo {

/// The descriptive fields of one file as exiftool reads them, or why it could not.
struct FieldsInFile {
    std::optional<PhotoMetadata> fields;
    std::string failure;
};

/// Reads files in one call of the tool; when that fails, each by itself.
std::vector<FieldsInFile> readFields(
    const RunExifTool& run, std::span<const std::filesystem::path> files, const std::stop_token& stop);

/// Whether a file may be changed at all: the originals inside an Aperture library never are.
bool mayBeWritten(const std::filesystem::path& file);

/// The date and size of a file. Throws std::filesystem::filesystem_error.
struct FileState {
    UnixTime date = 0;
    std::int64_t size = 0;
};
FileState fileState(const std::filesystem::path& file);

/// Whether the file is as the catalog read or wrote it last. Throws likewise.
bool isAsKnown(const FileRecord& record);

/// The call of the tool that changes a file.
using ChangeArguments = std::function<ExifToolArguments(const std::filesystem::path&)>;

/// Changes a file, or what a link leads to. What an interrupted call left beside the file is cleared away
/// first if it keeps the tool from working. Throws ExifToolError; the file is then as it was.
void changeFile(const RunExifTool& run, const std::filesystem::path& file, const ChangeArguments& arguments,
    const std::stop_token& stop);

/// The fields of `record` with those that are empty taken from the file.
PhotoMetadata completedFrom(const PhotoMetadata& record, const PhotoMetadata& inFile);

} // namespace korvo
