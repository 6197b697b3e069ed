#pragma once

#include "aperture/ApertureAdjustment.h"
#include "aperture/ApertureVolumes.h"
#include "aperture/BundleDatabase.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korvo {

/// An Aperture library bundle, read in place. Nothing in it is ever changed: the databases are opened as
/// immutable files, so that not even SQLite's companions come into being beside them. Each table is read in
/// one pass. What a database says wrongly (NULL, a missing row) becomes a default; calls throw DatabaseError
/// when it cannot be read. They may come from several threads.
class ApertureLibrary {
public:
    /// "The folder is no Aperture library."
    class OpenError : public std::runtime_error {
    public:
        enum class Case { notAnApertureLibrary };

        OpenError()
            : std::runtime_error("That isn't an Aperture library (no Library.apdb inside the bundle).")
        { }
        Case which() const { return Case::notAnApertureLibrary; }
    };

    /// The file of an original.
    struct Master {
        std::string uuid;
        std::int64_t modelId = 0;
        std::string imagePath; ///< in "Masters", of the volume, or absolute
        std::string fileName;
        bool isReferenced = false;
        bool isMissing = false;
        std::optional<double> imageDate; ///< seconds since 2001-01-01 00:00:00 UTC
        std::string volume; ///< the name of the volume of a referenced file, if known
    };

    /// What Aperture shows as a photo.
    struct Version {
        std::string uuid;
        std::int64_t modelId = 0;
        std::string masterUuid;
        std::int64_t versionNumber = 0;
        std::optional<std::string> name;
        std::int64_t rating = 0; ///< -1 rejected, to 5
        bool isFlagged = false;
        std::optional<std::int64_t> colorLabelIndex; ///< -1 none, 0 to 6 red to gray
        std::int64_t rotation = 0; ///< degrees, clockwise
        std::optional<std::string> stackUuid;
        std::optional<std::string> projectUuid;
        std::int64_t masterWidth = 0; ///< pixels
        std::int64_t masterHeight = 0;
        bool hasEnabledAdjustments = false;
        std::optional<double> latitude; ///< degrees
        std::optional<double> longitude;
    };

    struct Metadata {
        std::optional<std::string> title;
        std::optional<std::string> caption;
        std::optional<std::string> creator;
        std::optional<std::string> copyright;
        std::vector<std::string> keywords;
    };

    /// Camera facts under Aperture's keys ("Make", "ISOSpeedRating").
    struct ExifValues {
        std::map<std::string, std::string, std::less<>> texts;
        std::map<std::string, double, std::less<>> numbers;
    };

    struct KeywordEntry {
        std::int64_t modelId = 0;
        std::string name;
        std::optional<std::int64_t> parentId;
    };

    using Adjustment = ApertureAdjustment;

    struct Project {
        std::string uuid;
        std::string name;
        std::vector<std::string> folderPath; ///< the names of the folders it lies in, from the top down
    };

    struct Album {
        std::int64_t modelId = 0;
        std::string name;
        std::int64_t subclass = 0; ///< 1 implicit, 2 smart, 3 the user's
        std::vector<std::int64_t> versionIds; ///< in the album's order
        std::optional<BinaryPlist> smartQuery;
        std::optional<std::string> folderUuid;
    };

    struct Stack {
        std::string uuid;
        std::vector<std::string> versionUuids; ///< in the stack's order
        std::optional<std::string> pickVersionUuid;
    };

    struct MasterFile {
        std::filesystem::path file;
        bool isPresent = false;
    };

    /// Throws OpenError, and DatabaseError for a Library.apdb that cannot be opened. Without a readable
    /// Properties.apdb there are no descriptions and camera facts. A request to stop ends what is being read
    /// with a DatabaseError.
    static ApertureLibrary open(
        const std::filesystem::path& bundle, ApertureVolumes volumes = {}, const std::stop_token& stop = {});

    /// The bundle's folder: absolute, with links resolved.
    const std::filesystem::path& bundleURL() const { return bundle_; }

    /// What tells this library from any other, wherever it lies and however it is called.
    std::string identity();
    /// The version of Aperture that wrote it last, as its Info.plist says.
    std::optional<std::string> versionString() const;

    std::unordered_map<std::string, Master> masters();
    /// By master, then version number.
    std::vector<Version> versions();
    /// By the version's modelId, as in the next.
    std::unordered_map<std::int64_t, Metadata> metadata();
    std::unordered_map<std::int64_t, ExifValues> exifValues();
    std::vector<KeywordEntry> keywordEntries();
    std::vector<Project> projects();
    /// Of each folder that is no project: the names from the top down, its own the last.
    std::map<std::string, std::vector<std::string>> folderPaths();
    std::vector<Album> albums();
    std::vector<Stack> stacks();
    /// Of one version, in Aperture's order.
    std::vector<Adjustment> adjustments(const std::string& versionUuid);

    MasterFile masterFile(const Master& master) const;
    std::optional<std::filesystem::path> maskFile(const std::string& maskUuid) const;
    /// Aperture's own render of a version.
    std::optional<std::filesystem::path> previewFile(const Version& version, const Master& master) const;

private:
    ApertureLibrary(std::filesystem::path bundle, BundleDatabase library,
        std::optional<BundleDatabase> properties, ApertureVolumes volumes);

    std::filesystem::path bundle_;
    BundleDatabase library_;
    std::optional<BundleDatabase> properties_;
    ApertureVolumes volumes_;
};

} // namespace korvo
