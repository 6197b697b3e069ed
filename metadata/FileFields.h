#pragma once

#include "catalog/Catalog.h"
#include "metadata/exiftool/ExifTool.h"

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

/// The date and size of a file. Throws std::filesystem::filesystem_error.
struct FileState {
    UnixTime date = 0;
    std::int64_t size = 0;

    friend bool operator==(const FileState&, const FileState&) = default;
};
FileState fileState(const std::filesystem::path& file);

/// Whether a file in this state is as the catalog read or wrote it last.
bool isAsKnown(const FileRecord& record, const FileState& state);

/// The call of the tool that changes a file.
using ChangeArguments = std::function<ExifToolArguments(const std::filesystem::path&)>;

/// What is done to a file.
struct FileChange {
    ChangeArguments arguments;
    /// Finds that the tool has not done it by throwing ExifToolError.
    std::function<void(const std::filesystem::path&)> check = [](const std::filesystem::path&) {};
    std::function<void()> written = [] {}; ///< called right behind the write, whatever is found then
};

/// Changes a file, or what a link leads to. What an interrupted call left beside the file is cleared away
/// first if it keeps the tool from working. Throws ExifToolError; the file is then as it was.
void changeFile(const RunExifTool& run, const std::filesystem::path& file, const ChangeArguments& arguments,
    const std::stop_token& stop);

/// What the file is to hold. A field that the user has not changed since the catalog and the file last agreed
/// is the file's, also when the file was changed elsewhere or was read wrongly. Nothing when, in a file that
/// was changed elsewhere, the same field was given another value.
std::optional<PhotoMetadata> mergedWith(
    const PhotoMetadata& inFile, const FileRecord& record, const FileState& state);

} // namespace korvo
