#pragma once

#include "base/Dates.h"
#include "catalog/PhotoItem.h"

#include <cstdint>
#include <optional>
#include <string>

namespace korvo {

// What the catalog is given to keep.

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

/// What is known of a photo's file, and not to be read from it later.
struct FactsRead {
    bool camera = false;
    bool captureDate = false;
    bool position = false;
};

/// A photo to be taken into the library, with what is known of it.
struct NewPhoto {
    std::optional<std::int64_t> folderID; // the added folder it lies in
    std::string path; // absolute
    UnixTime addedAt = 0;
    std::optional<UnixTime> fileDate;
    std::optional<std::int64_t> fileSize; // not set when the file could not be read
    PhotoMetadata metadata; // as read from the file
    CameraData camera;
    std::optional<double> latitude; // and longitude, or neither
    std::optional<double> longitude;
    FactsRead read;
    std::optional<std::int64_t> projectID;
    std::optional<PhotoID> versionOf; // a version of this master, with the same path
    std::string versionName;
    int rating = 0;
    bool flagged = false;
    PhotoLabel label = PhotoLabel::none;
    std::string edits; // as stored
    std::string referencePath; // another program's own render
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

    void add(const AddedRows& more)
    {
        photos.insert(photos.end(), more.photos.begin(), more.photos.end());
        folders.insert(folders.end(), more.folders.begin(), more.folders.end());
        projects.insert(projects.end(), more.projects.begin(), more.projects.end());
    }
    bool areThere() const { return !photos.empty() || !folders.empty() || !projects.empty(); }
};

} // namespace korvo
