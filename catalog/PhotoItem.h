#pragma once

#include "base/CompactOptional.h"
#include "base/Dates.h"
#include "base/SharedText.h"
#include "catalog/PhotoLabel.h"
#include "catalog/PhotoMetadata.h"
#include "edits/PhotoEdits.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace korvo {

using PhotoID = std::int64_t;

/// One photo, master or version, as its row in the catalog holds it. Libraries hold a million of these: texts
/// take a pointer each and share their characters where they repeat, and the edit record stays the text that
/// it is stored as until it is asked for.
struct PhotoItem {
    /// What is being done with the photo just now; shown in the views, never stored.
    struct Status {
        enum class Kind : std::uint8_t { idle, queued, generating, saving, done, error };
        Kind kind = Kind::idle;
        std::string message; // of an error

        friend bool operator==(const Status&, const Status&) = default;
    };

    PhotoID id = 0;
    SharedText folder; // the part of the file's path before its last separator
    SharedText filename;
    PhotoMetadata metadata;
    SharedText editsJSON; // empty: no edits
    std::int32_t rating = 0; // 1 to 5 stars, 0 unrated, negative rejected
    PhotoLabel label = PhotoLabel::none;
    bool flagged = false;
    bool gpsRead = false;
    bool dirty = false; // metadata not yet written into the file
    CompactOptional<std::int64_t> versionOf; // the master's id; not set for a master
    SharedText versionName;
    CompactOptional<std::int64_t> stackID;
    SharedText referencePath;
    CompactOptional<std::int64_t> projectID;
    SharedText camera;
    SharedText lens;
    CompactOptional<std::int64_t> iso;
    CompactOptional<double> focalLength; // millimetres
    CompactOptional<double> aperture; // f-number
    CompactOptional<double> shutter; // seconds
    SharedText people;
    CompactOptional<double> latitude; // degrees
    CompactOptional<double> longitude;
    SharedText place;
    SharedText memeJSON;
    UnixTime addedAt = 0;
    CompactOptional<double> fileDate; // Unix time
    CompactOptional<double> captureDate; // Unix time

    bool isMaster() const { return !versionOf; }
    bool hasEdits() const { return !editsJSON.empty(); }
    bool isRejected() const { return rating < 0; }
    /// When it was taken, or else the file's date, which is the best guess.
    CompactOptional<double> takenAt() const { return captureDate ? captureDate : fileDate; }

    /// The absolute path of the file.
    std::filesystem::path path() const;

    /// The photo's edits; the identity where there are none. Throws JsonError when the stored text is no edit
    /// record.
    PhotoEdits edits() const;
    /// The same; nothing where there are none or the text is no edit record, which only its owner may
    /// replace.
    std::optional<PhotoEdits> readableEdits() const;

    friend bool operator==(const PhotoItem&, const PhotoItem&) = default;
};

/// The rating of a rejected photo without stars.
inline constexpr int rejectedRating = -1;
inline constexpr int highestRating = 5;

/// "rejected", "unrated", "1 star", "3 stars".
std::string ratingText(int rating);

/// The edit record as it is stored: empty for the identity.
std::string storedEdits(const PhotoEdits& edits);

} // namespace korvo
