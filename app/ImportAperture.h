#pragma once

#include "aperture/ApertureImporter.h"
#include "platform/Defaults.h"

#include <filesystem>
#include <map>
#include <optional>
#include <stop_token>
#include <string>

namespace korvo {

/// An Aperture library to be imported, and where to.
struct ApertureImport {
    std::filesystem::path bundle;
    /// The library folder; one that holds a catalog already takes the import in. Without one a new library is
    /// made beside the bundle.
    std::optional<std::filesystem::path> into;
    std::map<std::string, std::filesystem::path> volumes; ///< by their names, where referenced files lie
    MatchRender match; ///< see ApertureImporter::plan
};

struct ApertureImported {
    ApertureImporter::Summary summary;
    std::filesystem::path library;
};

/// Where the library beside a bundle is made: "Photos Korvo" beside "Photos.aplibrary".
std::filesystem::path libraryBeside(const std::filesystem::path& bundle);

/// The volumes on which referenced originals of a bundle lie that are found nowhere, and how many each holds:
/// those that the user may know a place for. Looks for each file. Throws as importAperture.
std::map<std::string, std::size_t> unreachableVolumes(const std::filesystem::path& bundle,
    const std::map<std::string, std::filesystem::path>& given, const std::stop_token& stop);

/// Imports a bundle and remembers the library as the last one opened. Nothing when it was stopped. Throws
/// ApertureLibrary::OpenError, ImportError and DatabaseError; whatever ends it, nothing of the import stays,
/// nor of a library that was made for it.
std::optional<ApertureImported> importAperture(const ApertureImport& request, const Clock& clock,
    Defaults& defaults, const ApertureImporter::ShowProgress& progress, const std::stop_token& stop);

} // namespace korvo
