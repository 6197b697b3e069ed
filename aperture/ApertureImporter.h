#pragma once

#include "aperture/ApertureImportPlan.h"
#include "aperture/ApertureLibrary.h"
#include "aperture/ApertureTranslator.h"
#include "catalog/Catalog.h"

#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <vector>

namespace korvo {

/// Turns an Aperture library into rows of a catalog, in two steps: `plan` reads and translates all of it,
/// `write` writes it in one transaction. The bundle is not changed.
class ApertureImporter {
public:
    struct Progress {
        std::string phase; ///< text for the user
        std::size_t done = 0;
        std::size_t total = 0;
    };
    /// On any thread, one call at a time.
    using ShowProgress = std::function<void(const Progress&)>;

    struct Summary {
        bool catalogExists = false; ///< a catalog was found where this one was to be made
        bool alreadyImported = false;
        std::size_t masters = 0; ///< photos created
        std::size_t versions = 0; ///< extra versions created
        std::size_t missingFiles = 0; ///< masters whose file is missing
        std::size_t albums = 0;
        std::size_t projects = 0;
        std::size_t smartAlbums = 0;
        std::size_t smartAlbumsAsPlain = 0; ///< smart albums that became plain albums
        std::size_t stacks = 0;
        std::size_t adjustedVersions = 0; ///< versions given a translated edit
        std::size_t matchedToPreview = 0; ///< versions matched to Aperture's own render
        ApertureTranslator::Report report;
    };

    /// `library` and the functions must outlive the importer.
    ApertureImporter(ApertureLibrary& library, ShowProgress progress, std::stop_token stop)
        : library_(library), progress_(std::move(progress)), stop_(std::move(stop))
    { }

    /// Everything that will be written. `match` finds the tone curve that brings our render of a version to
    /// Aperture's; without one nothing is matched. Nothing when it was stopped. Throws DatabaseError.
    std::optional<ApertureImportPlan> plan(const MatchRender& match);

    /// Writes a plan, as a whole or not at all: not when it was stopped, and not when anything throws. Throws
    /// DatabaseError, and ImportError::alreadyImported.
    std::optional<Summary> write(const ApertureImportPlan& plan, Catalog& catalog, const Clock& clock);

private:
    friend class AperturePlanner;
    friend class ApertureWriter;
    struct ImportStopped { };
    void show(const char* phase, std::size_t done = 0, std::size_t total = 0);
    void throwIfStopped() const;

    ApertureLibrary& library_;
    ShowProgress progress_;
    std::stop_token stop_;
    std::mutex progressMutex_;
};

KORVO_RECORD(ApertureImporter::Summary, catalogExists, alreadyImported, masters, versions, missingFiles,
    albums, projects, smartAlbums, smartAlbumsAsPlain, stacks, adjustedVersions, matchedToPreview, report)

/// An import that is refused. what() is the text for the user.
class ImportError : public std::runtime_error {
public:
    enum class Case { catalogExists, alreadyImported };

    static ImportError catalogExists(const std::filesystem::path& library)
    {
        return {
            Case::catalogExists, "There's already an Korvo library at " + library.filename().string() + "."};
    }
    static ImportError alreadyImported(const std::string& bundleName)
    {
        return {Case::alreadyImported, bundleName + " is already in this library."};
    }

    Case which() const { return which_; }

private:
    ImportError(Case which, const std::string& description) : std::runtime_error(description), which_(which)
    { }

    Case which_;
};

/// "12 photos, 3 extra versions, 1 stack": what came in.
std::string summaryLine(const ApertureImporter::Summary& summary);

enum class Matching { off, on };

/// The whole text for the user.
std::string summaryText(const ApertureImporter::Summary& summary, Matching matching);

/// What of the adjustments did not come over as it was: "not translated: RKHighlights × 3",
/// "translated roughly: RKRetouch × 1".
std::vector<std::string> translationNotes(const ApertureTranslator::Report& report);

} // namespace korvo
