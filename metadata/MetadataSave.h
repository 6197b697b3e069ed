#pragma once

#include "catalog/Catalog.h"
#include "metadata/exiftool/ExifTool.h"

#include <functional>
#include <span>
#include <stdexcept>
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
    std::string fault; // of the catalog, or that the tool is gone, which ended it early; empty otherwise
};

/// Called before each file with its number, from 1, and how many there are.
using FileProgress = std::function<void(std::size_t number, std::size_t total)>;

/// Writes the descriptive fields of all photos that wait for it into their files. What a file held when it
/// was found is kept before it is written for the first time; a file of which that cannot be read is not
/// written. Of a file that is written for the first time or was changed elsewhere, the fields that the user
/// has not touched are taken into the catalog first; where both sides changed the same field, the photo fails
/// once, and the next save writes it. A photo waits until its file is written: whatever ends this, the next
/// call goes on, and writes once more what a crash kept from being noted. The originals inside an Aperture
/// library are passed over and wait no longer. Throws ExifToolError::Case::notFound, with nothing done, and
/// DatabaseError when nothing could be begun.
FilesWritten saveMetadata(
    Catalog& catalog, const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress);

/// Brings the descriptive fields of photos, in the catalog and in their files, back to what the files held
/// when they were found. A file that holds that still is not written, and of one that never was the fields
/// are read again. The originals inside an Aperture library are passed over. Throws likewise.
FilesWritten revertMetadata(Catalog& catalog, std::span<const PhotoID> photos, const ExifTool& tool,
    const std::stop_token& stop, const FileProgress& progress);

/// Why a revert is not begun: all that is to be reverted lies in Aperture libraries; what() is for the user.
class RevertRefused : public std::runtime_error {
public:
    RevertRefused();
};

/// Throws RevertRefused; to be asked before the user is. May take long of many photos.
void requireRevertible(Catalog& catalog, std::span<const PhotoID> photos);

} // namespace korvo
