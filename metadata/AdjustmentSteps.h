#pragma once

#include "catalog/store/UndoHistory.h"
#include "metadata/DatesAndPlaces.h"

#include <map>
#include <set>

namespace korvo {

// Adjustments of files that can be taken back and done again. Each run goes on any thread, one at a time, and
// throws as the adjustment does.

/// A shift of capture dates. It moves twice nothing that a failure, a stop or an unreachable file has left
/// where it was.
class DateShift {
public:
    DateShift(std::vector<PhotoID> photos, double seconds) : photos_(std::move(photos)), seconds_(seconds) { }

    FilesWritten run(UndoWay way, Catalog& catalog, const ExifTool& tool, const std::stop_token& stop,
        const FileProgress& progress);

private:
    std::vector<PhotoID> photos_;
    double seconds_;
    std::set<PhotoID> inCatalog_, inFiles_; // what is shifted
};

/// A position given to photos, or taken from them. Taking that back gives each photo the one that it had, and
/// each file that was written what it held then.
class PositionChange {
public:
    PositionChange(std::vector<PhotoID> photos, std::optional<Coordinate> position)
        : photos_(std::move(photos)), position_(position)
    { }

    FilesWritten run(UndoWay way, Catalog& catalog, const ExifTool& tool, const std::stop_token& stop,
        const FileProgress& progress);

private:
    struct Before {
        std::optional<Coordinate> inCatalog, inFile;
        bool wasRead = false;
    };
    FilesWritten give(Catalog& catalog, PhotoID photo, const ExifTool& tool, const std::stop_token& stop);
    FilesWritten putBack(Catalog& catalog, PhotoID photo, const ExifTool& tool, const std::stop_token& stop);

    std::vector<PhotoID> photos_;
    std::optional<Coordinate> position_;
    std::map<PhotoID, Before> before_; // of those that are changed
    std::set<PhotoID> inFiles_; // those of them whose files are
};

} // namespace korvo
