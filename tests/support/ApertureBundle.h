#pragma once

#include "catalog/sql/Database.h"
#include "tests/support/PlistWriter.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace korvo {

/// One adjustment to be stored: parameters one level down, as Aperture writes them.
struct BundleAdjustment {
    std::string name; ///< "RKExposureOperation"
    std::vector<std::pair<std::string, PlistDraft>> parameters;
    bool isEnabled = true;
    std::optional<std::string> maskUuid;
};

/// A master with its versions, as it is to stand in a bundle.
struct BundlePhoto {
    std::string name = "IMG_0001.JPG";
    std::string folder = "2012/03/04/20120304-101010";
    std::string contents = "x"; ///< of the file; empty: no file is written
    std::optional<std::string> imagePath; ///< instead of the folder and the name: a referenced file
    std::string volume; ///< of a referenced file
    bool isMissing = false;
    double imageDate = 352'000'000;
    int versions = 1;
    // Of each version
    std::string versionName; ///< without one the file's name without its ending
    int rating = 0;
    bool isFlagged = false;
    int label = -1;
    int rotation = 0;
    std::optional<double> latitude;
    std::optional<double> longitude;
    std::string project; ///< uuid
    std::vector<BundleAdjustment> adjustments;
    bool hasPreview = false;
};

struct BundleVersion {
    std::string uuid;
    std::int64_t id = 0;
};

struct BundleMaster {
    std::string uuid;
    std::filesystem::path file;
    std::vector<BundleVersion> versions;
};

/// Makes a bundle of the shape that Aperture 3.6 writes: its tables with their real columns and indexes, a
/// version 0 of each master, its system folders, and archives as it keeps them.
class ApertureBundle {
public:
    explicit ApertureBundle(const std::filesystem::path& folder);

    BundleMaster add(const BundlePhoto& photo);
    /// A folder (type 1) or a project (type 2).
    std::string addFolder(const std::string& name, int type, const std::string& parent = "AllProjectsItem",
        std::string uuid = {});
    std::int64_t addKeyword(const std::string& name, std::optional<std::int64_t> parent = std::nullopt);
    void assignKeyword(std::int64_t version, std::int64_t keyword);
    void addIptc(std::int64_t version, const std::string& key, const std::string& text);
    void addExif(std::int64_t version, const std::string& key, const std::string& text);
    void addExif(std::int64_t version, const std::string& key, double number);
    std::int64_t addAlbum(const std::string& name, int subclass, const std::vector<std::int64_t>& versions,
        const std::string& folder = "TopLevelAlbums", const std::optional<PlistDraft>& query = {});
    void addStack(const std::vector<BundleVersion>& versions, const std::optional<BundleVersion>& pick);

    Database& library() { return library_; }
    const std::filesystem::path& folder() const { return folder_; }
    /// Writes all of it and closes the databases, which then have no companions.
    static void finish(ApertureBundle bundle);

private:
    std::string newUuid();
    std::int64_t stringID(const std::string& text);
    BundleVersion addVersion(
        const BundlePhoto& photo, const std::string& imagePath, const BundleMaster& master, int number);
    void addAdjustment(const BundleAdjustment& adjustment, const std::string& version);

    std::filesystem::path folder_;
    Database library_;
    Database properties_;
    int uuids_ = 0;
};

/// A smart album's query as Aperture stores it: the rules behind the disabled ones that always stand first.
PlistDraft bundleQuery(std::vector<PlistDraft> rules, std::int64_t matchType = 1);
PlistDraft bundleRule(
    const std::string& key, std::int64_t qualifier, PlistDraft value, bool isEnabled = true);

} // namespace korvo
