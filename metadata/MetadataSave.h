#pragma once

#include "catalog/Catalog.h"
#include "metadata/ExifTool.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace korvo {

/// Something that went wrong with one photo's file.
struct FileFailure {
    PhotoID id = 0;
    std::string message; // a sentence that names the file
};

/// What became of the files of a save or a revert.
struct FilesWritten {
    std::size_t done = 0;
    std::vector<FileFailure> failures;
    std::vector<PhotoID> touched; // photos whose rows may have changed
    bool stopped = false;
};

/// Called before each file with its number, from 1, and how many there are.
using FileProgress = std::function<void(std::size_t number, std::size_t total)>;

/// Writes the descriptive fields of all photos that wait for it into their files. What a file held when it
/// was found is kept before it is written for the first time; a file of which that cannot be read is not
/// written. Where a file has changed since it was read, or was never read, fields that are empty in the
/// catalog are taken from it first. A photo waits no longer once its file is written: whatever ends this, the
/// next call goes on. The originals inside an Aperture library are passed over. Throws
/// ExifToolError::Case::notFound, with nothing done, and DatabaseError.
FilesWritten saveMetadata(
    Catalog& catalog, const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress);

/// Brings the descriptive fields of photos, in the catalog and in their files, back to what the files held
/// when they were found. A file that was never written holds that still: its fields are read again. The
/// originals inside an Aperture library are passed over. Throws likewise.
FilesWritten revertMetadata(Catalog& catalog, std::span<const PhotoID> photos, const ExifTool& tool,
    const std::stop_token& stop, const FileProgress& progress);

/// The masters of the photos, each once, without those whose files must not be written.
std::vector<PhotoID> writableMasters(Catalog& catalog, std::span<const PhotoID> photos);

} // namespace korvo
