#pragma once

#include "aperture/ApertureLibrary.h"
#include "aperture/ApertureTranslator.h"
#include "catalog/Catalog.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace korvo {

/// The tone curve that brings our render of a file with these edits to Aperture's own; nothing when none
/// brings it closer.
using MatchRender = std::function<std::optional<ToneCurves>(
    const std::filesystem::path& original, const PhotoEdits& edits, const std::filesystem::path& preview)>;

/// What an import will write, as plain data. Photos are named by their place in `photos`.
struct ApertureImportPlan {
    struct Photo {
        NewPhoto row;
        std::optional<std::size_t> versionOf; ///< its master, which stands before it
        std::optional<std::string> projectUuid;
    };

    struct Album {
        std::string name;
        std::optional<std::string> folderUuid; ///< of a project or a folder
        std::vector<std::size_t> photos;
    };

    struct SmartAlbum {
        std::string name;
        std::string rules; ///< JSON
    };

    struct Stack {
        std::vector<std::size_t> photos;
        std::optional<std::size_t> pick;
    };

    std::string identity; ///< of the bundle
    std::filesystem::path bundle;
    std::vector<Photo> photos;
    std::vector<ApertureLibrary::Project> projects;
    std::map<std::string, std::vector<std::string>> folderPaths; ///< of the folders, by their uuid
    std::vector<ApertureLibrary::KeywordEntry> keywords;
    std::vector<Album> albums;
    std::vector<SmartAlbum> smartAlbums;
    std::vector<Stack> stacks;

    std::size_t missingFiles = 0;
    std::size_t smartAlbumsAsPlain = 0;
    std::size_t adjustedVersions = 0;
    std::size_t matchedToPreview = 0;
    ApertureTranslator::Report report;
};

} // namespace korvo
