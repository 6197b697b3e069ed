#include "imports/ImportShots.h"

#include "base/FoldedText.h"
#include "catalog/FileTypes.h"
#include "imports/ImportNames.h"
#include "imports/Naming.h"

#include <algorithm>
#include <map>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// The base name of the photo that a sidecar belongs to: both "IMG_1.xmp" and "IMG_1.CR3.xmp" are IMG_1's.
std::string_view sidecarBase(std::string_view filename)
{
    const auto name = withoutExtension(filename);
    return isLibraryFile(name) ? withoutExtension(name) : name;
}

bool holdsSuffix(const Shot& shot, std::string_view suffix)
{
    return std::any_of(shot.files.begin(), shot.files.end(),
        [&](const Shot::File& file) { return folded(file.suffix) == folded(suffix); });
}

/// Finds the shot of a folder and a base name.
using ShotIndex = std::map<std::pair<std::string, std::string>, std::size_t>;

void addPhoto(std::vector<Shot>& shots, ShotIndex& index, const Candidate& candidate)
{
    const SourceFile& file = candidate.file;
    const auto filename = file.path.filename().string();
    const std::string name(withoutExtension(filename));
    Shot::File photo{file, filename.substr(name.size()), false, keyAmongTwins(candidate)};
    const auto [entry, isNew] = index.try_emplace({file.path.parent_path().native(), name}, shots.size());
    // Names that differ in case alone cannot stand beside each other in every folder.
    if (isNew || holdsSuffix(shots[entry->second], photo.suffix))
        shots.push_back({name, {std::move(photo)}, {}});
    else
        shots[entry->second].files.push_back(std::move(photo));
}

void addKnown(std::vector<Shot>& shots, ShotIndex& index, const SourceFile& file)
{
    const auto filename = file.path.filename().string();
    const std::string name(withoutExtension(filename));
    const auto [entry, isNew] = index.try_emplace({file.path.parent_path().native(), name}, shots.size());
    if (isNew)
        shots.push_back({name, {}, {}});
    shots[entry->second].known.push_back({file, filename.substr(name.size())});
}

void addSidecar(std::vector<Shot>& shots, const ShotIndex& index, const SourceFile& file)
{
    const auto filename = file.path.filename().string();
    const std::string name(sidecarBase(filename));
    const auto suffix = filename.substr(name.size());
    const auto found = index.find({file.path.parent_path().native(), name});
    if (found != index.end() && !holdsSuffix(shots[found->second], suffix))
        shots[found->second].files.push_back({file, suffix, true});
}

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

std::vector<Shot> shots(const ImportPlan& plan)
{
    std::vector<Shot> result;
    ShotIndex index;
    for (const auto& candidate : plan.files)
        addPhoto(result, index, candidate);
    for (const auto& file : plan.known)
        addKnown(result, index, file);
    for (const auto& file : plan.sidecars)
        addSidecar(result, index, file);
    std::erase_if(result, [](const Shot& shot) { return shot.files.empty(); });
    return result;
}

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
