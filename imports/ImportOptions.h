#pragma once

#include "base/Enum.h"
#include "imports/ImportPlan.h"
#include "imports/ImportSource.h"
#include "imports/ImportWindow.h"

#include <filesystem>
#include <optional>
#include <string>

namespace korvo {

/// What the user chooses for an import beside the photos.
struct ImportOptions {
    enum class Files { copy, reference };
    enum class Project { none, made, byDay, chosen };

    Files files = Files::copy; // what must be copied is copied all the same
    std::optional<std::filesystem::path> destination; // none: "Korvo Imports" among the user's pictures
    std::string pattern = std::string(importWindow::defaultPattern);
    Project project = Project::none;
    std::string newProject; // of a project that is made
    std::int64_t chosenProject = 0;
    std::string creator, copyright, keywords;
    bool eject = false;
};
KORVO_ENUM(ImportOptions::Project, none, made, byDay, chosen)

/// The default destination. Throws std::runtime_error without a home folder.
std::filesystem::path defaultDestination();

/// What the import of the picked candidates does. Throws as defaultDestination().
ImportPlan planOf(const ImportListing& listing, const ImportSource& source, const ImportOptions& options);

} // namespace korvo
