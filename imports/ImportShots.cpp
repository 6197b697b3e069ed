#include "imports/ImportShots.h"

#include "imports/ImportNames.h"

#include <algorithm>

namespace korvo {

namespace fs = std::filesystem;

namespace {

bool isSidecarsAlone(const Shot& shot)
{
    return shot.files.front().isSidecar;
}

void leaveOutSidecarsThatAreThere(Catalog& catalog, Shot& shot, const fs::path& destination)
{
    const auto base = knownBase(catalog, destination, shot.known);
    if (!base && !isSidecarsAlone(shot))
        return;
    std::erase_if(shot.files, [&](const Shot::File& file) {
        return file.isSidecar
            && (!base || fs::exists(fs::symlink_status(destination / (*base + file.suffix))));
    });
}

/// The number that an earlier import gave the shot; 0 when none did.
std::size_t earlierNumber(const Shot& shot, const UnfinishedImport& earlier)
{
    for (const Shot::File& file : shot.files)
        if (const auto found = earlier.left.find(file.key); found != earlier.left.end())
            return found->second;
    return 0;
}

void note(Catalog& catalog, const std::vector<Shot>& shots, UnfinishedImport import)
{
    for (const Shot& shot : shots)
        for (const Shot::File& file : shot.files)
            if (!file.isSidecar)
                import.left.emplace(file.key, shot.number);
    ImportMemory(catalog).begin(import);
}

} // namespace

std::vector<Shot> shotsToImport(Catalog& catalog, const ImportPlan& plan, const fs::path& destination)
{
    auto all = shots(plan);
    for (Shot& shot : all)
        if (!shot.known.empty())
            leaveOutSidecarsThatAreThere(catalog, shot, destination);
    std::erase_if(all, [](const Shot& shot) { return shot.files.empty(); });
    return all;
}

std::size_t numberShots(Catalog& catalog, std::vector<Shot>& shots, const std::string& target)
{
    // Sidecars alone get the names of their photos.
    const auto end = std::find_if(shots.begin(), shots.end(), isSidecarsAlone);
    const auto total = static_cast<std::size_t>(end - shots.begin());
    if (total == 0)
        return 0;
    const auto earlier = ImportMemory(catalog).unfinished();
    for (auto shot = shots.begin(); shot != end; ++shot)
        shot->number = earlierNumber(*shot, earlier);
    if (earlier.target == target
        && std::all_of(shots.begin(), end, [](const Shot& shot) { return shot.number > 0; }))
        return earlier.shots;
    for (std::size_t i = 0; i < total; ++i)
        shots[i].number = i + 1;
    note(catalog, shots, {target, total, {}});
    return total;
}

} // namespace korvo
