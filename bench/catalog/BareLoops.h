#pragma once

#include "catalog/Catalog.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace korvo::bench {

// What a program would write that used SQLite directly: the yardsticks.

struct BareRow {
    long long id;
    std::string path, altText, title, caption, keywords, creator, copyright, edits, meme;
    double addedAt, mtime;
    int rating, flagged, dirty, label, gpsRead;
    long long versionOf, stackID, projectID, iso;
    std::string versionName, referencePath, camera, lens, people, place;
    double focalLength, aperture, shutter, captureDate, latitude, longitude;
};

/// Steps the statement and copies the columns that a PhotoItem holds. The statement must select whole rows.
std::vector<BareRow> loadBare(const std::filesystem::path& file, const char* sql, std::size_t expected);

/// Inserts the photos by one prepared statement in one transaction.
void insertBare(const std::filesystem::path& file, const std::vector<NewPhoto>& photos);

/// Rates the photos by one prepared statement in one transaction.
void rateBare(const std::filesystem::path& file, const std::vector<PhotoID>& ids, int rating);

} // namespace korvo::bench
