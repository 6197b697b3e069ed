#pragma once

#include "base/Enum.h"
#include "imports/ImportRun.h"
#include "imports/ImportWindow.h"
#include "platform/CameraService.h"
#include "platform/VolumeService.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace korvo {

/// The volumes that are offered; none when the system does not tell, since a path can be imported all the
/// same.
std::vector<Volume> knownVolumes(VolumeService& service);

/// What files and folders are as a source: the volume they lie on when it is a card, or when they are one
/// path on a volume that is offered; else themselves.
Source sourceOf(const std::vector<std::filesystem::path>& paths, const std::vector<Volume>& offered);

/// Opens a source; of a camera without a port the first that is there. Throws SourceError, and
/// std::runtime_error for a camera that is not there.
std::unique_ptr<FileSource> openSource(const Source& source, CameraService& cameras);

/// Everything else that the user chooses for an import.
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
ImportPlan planOf(const ImportListing& listing, const Source& source, const ImportOptions& options);

/// "2 photos imported, 1 already in the library, 0 failed"
struct ImportCounts {
    std::size_t imported = 0;
    std::size_t duplicates = 0; // that were not picked, or known under their path
    std::size_t failed = 0;
};
KORVO_RECORD(ImportCounts, imported, duplicates, failed)
ImportCounts countsOf(const ImportListing& listing, const ImportResult& result);
std::string countsText(const ImportCounts& counts);

/// What went wrong, a sentence each: with files that could not be listed or imported, and why the run ended
/// early.
std::vector<std::string> failuresOf(const ImportListing& listing, const ImportResult& result);

/// Lets the volume of a source go after an import, unless its photos are still needed, and says what came of
/// it; nothing for a camera.
struct Ejected {
    bool done = false;
    std::string text;
};
std::optional<Ejected> ejectAfter(const ImportResult& result, const Source& source, VolumeService& volumes);

} // namespace korvo
