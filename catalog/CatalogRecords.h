#pragma once

#include "base/Dates.h"
#include "catalog/PhotoItem.h"

#include <cstdint>
#include <optional>
#include <string>

namespace korvo {

/// What the catalog is given to keep.

/// A file to be taken into the library.
struct NewPhoto {
    std::optional<std::int64_t> folderID; // the added folder it lies in
    std::string path; // absolute
    UnixTime addedAt = 0;
    std::optional<UnixTime> fileDate;
    std::optional<std::int64_t> fileSize; // not set when the file could not be read
    PhotoMetadata metadata; // as read from the file
};

/// A row that was asked for, and is there now.
struct AddedRow {
    std::int64_t id;
    bool isNew; // false: it was there already
};

/// What an import, or adding files, brought into the library.
struct AddedRows {
    std::vector<PhotoID> photos;
    std::vector<std::int64_t> folders; // of the sidebar
    std::vector<std::int64_t> projects;

    bool areThere() const { return !photos.empty() || !folders.empty() || !projects.empty(); }
};

/// What the files themselves say about how a photo was taken.
struct CameraData {
    std::string camera;
    std::string lens;
    std::optional<std::int64_t> iso;
    std::optional<double> focalLength;
    std::optional<double> aperture;
    std::optional<double> shutter;
    std::optional<UnixTime> captureDate;
};

/// A photo of another program's library, with all that is known of it.
struct AperturePhoto {
    std::string path; // absolute
    UnixTime addedAt = 0;
    std::optional<UnixTime> fileDate;
    std::optional<std::int64_t> fileSize;
    PhotoMetadata metadata;
    int rating = 0;
    bool flagged = false;
    PhotoLabel label = PhotoLabel::none;
    std::string edits; // as stored
    std::string versionName;
    std::string referencePath; // the other program's own render
    std::optional<std::int64_t> projectID;
    CameraData camera;
    bool isCameraRead = false; // else it is read from the file later
    std::optional<double> latitude;
    std::optional<double> longitude;
};

} // namespace korvo
