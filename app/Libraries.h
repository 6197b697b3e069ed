#pragma once

#include "catalog/Catalog.h"
#include "platform/Defaults.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvo {

/// Whether a folder is a library, as far as can be seen.
bool holdsCatalog(const std::filesystem::path& folder);

/// The library opened last, if its catalog is still there.
std::optional<std::filesystem::path> lastLibrary(const Defaults& defaults);

/// The library opened last, if its catalog cannot be seen: its disk may be away.
std::optional<std::filesystem::path> missingLibrary(const Defaults& defaults);

/// The libraries opened lately, the last one first, without a look whether they are there: that may wait for
/// a disk.
std::vector<std::filesystem::path> rememberedLibraries(const Defaults& defaults);

/// The same, without those whose catalog is gone.
std::vector<std::filesystem::path> recentLibraries(const Defaults& defaults);

/// What to tell whoever wants a library that cannot be seen: that it is so, and what to do.
struct AwayTexts {
    std::string title, details;
};
AwayTexts awayTexts(const std::filesystem::path& library);

/// Where the first library is made.
std::filesystem::path usualLibrary();

/// Opens a library and remembers it as the last one. Throws DatabaseError; a preference that cannot be stored
/// does not keep a library from opening.
std::unique_ptr<Catalog> openLibrary(
    const std::filesystem::path& folder, const Clock& clock, Defaults& defaults);

/// Remembers an open library as the last one; a preference that cannot be stored is passed over.
void rememberLibrary(const Catalog& catalog, Defaults& defaults);

/// Takes away what was made of a library that was not there before, unless it is kept: what a failed creation
/// or import leaves would pass for a library.
class UnfinishedLibrary {
public:
    explicit UnfinishedLibrary(const std::filesystem::path& folder);
    ~UnfinishedLibrary();
    UnfinishedLibrary(const UnfinishedLibrary&) = delete;
    UnfinishedLibrary& operator=(const UnfinishedLibrary&) = delete;

    void keep() { made_.clear(); }

private:
    std::vector<std::filesystem::path> made_; // what was not there
};

} // namespace korvo
