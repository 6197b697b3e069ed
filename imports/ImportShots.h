#pragma once

#include "catalog/Catalog.h"
#include "imports/ImportPlan.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace korvo {

/// The files of one shot, as a raw file with its JPEG and its ".xmp": they have one folder and one base name,
/// and get one new name and one number.
struct Shot {
    struct File {
        SourceFile file;
        std::string suffix; // what follows the base name: ".CR3", ".xmp", ".CR3.xmp"
        bool isSidecar = false;
        std::string key; // of photos: tells them from all others of the import
    };

    std::string name; // the base name
    std::vector<File> files; // photos first; sidecars alone when the library has the photos already
    std::vector<File> known; // photos that the library has already
    std::size_t number = 0; // in the import, from 1
};

/// The shots of a plan in the order of its files, and behind them those of which sidecars alone are left.
std::vector<Shot> shots(const ImportPlan& plan);

/// The same, without the sidecars that stand in the destination beside their photo already: what
/// became of them since is the user's. Throws DatabaseError.
std::vector<Shot> shotsToImport(
    Catalog& catalog, const ImportPlan& plan, const std::filesystem::path& destination);

/// Numbers the shots from 1; those that the import begun last has left, after a kill, a stop or failures, as
/// that one did when both have the same target. Notes what is to be imported, and returns the number of shots
/// that this is a part of. Throws DatabaseError.
std::size_t numberShots(Catalog& catalog, std::vector<Shot>& shots, const std::string& target);

} // namespace korvo
