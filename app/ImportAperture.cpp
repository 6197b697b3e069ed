#include "app/ImportAperture.h"

#include "app/Libraries.h"
#include "catalog/ApertureImports.h"
#include "platform/ApertureBundles.h"

#include <stdexcept>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// Also of a folder that a link leads into a bundle.
void refuseInsideABundle(const fs::path& folder)
{
    if (ApertureBundles().hold(fs::weakly_canonical(fs::absolute(folder)) / "catalog.sqlite"))
        throw std::runtime_error(
            folder.string() + ": lies in an Aperture library, which is never changed; choose another folder");
}

/// Refuses what can be told to be refused before the bundle is read.
void refuseSecondImport(
    const ApertureImport& request, const fs::path& folder, ApertureLibrary& bundle, const Clock& clock)
{
    if (!fs::exists(folder / "catalog.sqlite"))
        return;
    if (!request.into)
        throw ImportError::catalogExists(folder);
    if (hasImported(Catalog(folder, clock).database(), bundle.identity()))
        throw ImportError::alreadyImported(bundle.bundleURL().filename().string());
}

/// See importAperture; throws DatabaseError too when a stop ends a reading.
std::optional<ApertureImported> imported(const ApertureImport& request, const Clock& clock,
    Defaults& defaults, const ApertureImporter::ShowProgress& progress, const std::stop_token& stop)
{
    auto bundle = ApertureLibrary::open(request.bundle, ApertureVolumes(request.volumes), stop);
    const auto folder = request.into.value_or(libraryBeside(request.bundle));
    refuseInsideABundle(folder);
    refuseSecondImport(request, folder, bundle, clock);
    ApertureImporter importer(bundle, progress, stop);
    const auto plan = importer.plan(request.match);
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

} // namespace

fs::path libraryBeside(const fs::path& bundle)
{
    auto named = fs::absolute(bundle).lexically_normal();
    if (!named.has_filename()) // it ended in a separator
        named = named.parent_path();
    return named.parent_path() / (named.stem().string() + " Korvo");
}

std::map<std::string, std::size_t> unreachableVolumes(
    const fs::path& bundle, const std::map<std::string, fs::path>& given, const std::stop_token& stop)
{
    auto library = ApertureLibrary::open(bundle, ApertureVolumes(given), stop);
    std::map<std::string, std::size_t> volumes;
    for (const auto& [uuid, master] : library.masters()) {
        if (stop.stop_requested())
            break;
        if (master.isReferenced && !master.volume.empty() && !library.masterFile(master).isPresent)
            ++volumes[master.volume];
    }
    return volumes;
}

std::optional<ApertureImported> importAperture(const ApertureImport& request, const Clock& clock,
    Defaults& defaults, const ApertureImporter::ShowProgress& progress, const std::stop_token& stop)
{
    try {
        return imported(request, clock, defaults, progress, stop);
    } catch (const DatabaseError&) {
        if (stop.stop_requested())
            return std::nullopt;
        throw;
    }
}

} // namespace korvo
