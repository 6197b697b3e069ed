#include "app/ImportAperture.h"

#include "app/Libraries.h"
#include "metadata/ApertureFolders.h"

#include <stdexcept>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// Also of a folder that a link leads into a bundle.
void refuseInsideABundle(const fs::path& folder)
{
    if (ApertureFolders().hold(fs::weakly_canonical(fs::absolute(folder)) / "catalog.sqlite"))
        throw std::runtime_error(
            folder.string() + ": lies in an Aperture library, which is never changed; choose another folder");
}

/// Refuses what can be told to be refused before the bundle is read.
void refuseSecondImport(
    const ApertureImport& import, const fs::path& folder, ApertureLibrary& bundle, const Clock& clock)
{
    if (!fs::exists(folder / "catalog.sqlite"))
        return;
    if (!import.into)
        throw ImportError::catalogExists(folder);
    if (Catalog(folder, clock).hasImported(bundle.identity()))
        throw ImportError::alreadyImported(bundle.bundleURL().filename().string());
}

} // namespace

fs::path libraryBeside(const fs::path& bundle)
{
    auto named = fs::absolute(bundle).lexically_normal();
    if (!named.has_filename()) // it ended in a separator
        named = named.parent_path();
    return named.parent_path() / (named.stem().string() + " Korvo");
}

std::optional<ApertureImported> importAperture(const ApertureImport& import, const Clock& clock,
    Defaults& defaults, const ApertureImporter::ShowProgress& progress, const std::stop_token& stop)
{
    auto bundle = ApertureLibrary::open(import.bundle, ApertureVolumes(import.volumes));
    const auto folder = import.into.value_or(libraryBeside(import.bundle));
    refuseInsideABundle(folder);
    refuseSecondImport(import, folder, bundle, clock);
    ApertureImporter importer(bundle, progress, stop);
    const auto plan = importer.plan(import.match);
    if (!plan)
        return std::nullopt;
    UnfinishedLibrary unfinished(folder);
    auto catalog = std::make_unique<Catalog>(folder, clock);
    auto summary = importer.write(*plan, *catalog, clock);
    if (!summary)
        return std::nullopt;
    unfinished.keep();
    rememberLibrary(*catalog, defaults);
    return ApertureImported{*std::move(summary), catalog->libraryURL()};
}

} // namespace korvo
