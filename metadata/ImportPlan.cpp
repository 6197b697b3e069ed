#include "metadata/ImportPlan.h"

#include "base/FoldedText.h"
#include "base/Text.h"
#include "catalog/FileTypes.h"
#include "metadata/Naming.h"

#include <algorithm>
#include <map>
#include <unordered_set>

namespace korvo {

namespace {

bool isSidecar(std::string_view filename)
{
    return lowerExtension(filename) == "xmp";
}

bool isImportable(std::string_view filename)
{
    return isLibraryFile(filename) || isSidecar(filename);
}

/// The base name of the photo that a sidecar belongs to: both "IMG_1.xmp" and "IMG_1.CR3.xmp" are IMG_1's.
std::string_view sidecarBase(std::string_view filename)
{
    const auto name = withoutExtension(filename);
    return isLibraryFile(name) ? withoutExtension(name) : name;
}

std::unordered_set<std::string> knownKeys(Catalog& catalog)
{
    std::unordered_set<std::string> keys;
    for (const auto& [filename, size] : catalog.knownFiles())
        keys.insert(duplicateKey(filename, static_cast<std::uint64_t>(size)));
    for (auto& key : catalog.importedKeys())
        keys.insert(std::move(key));
    return keys;
}

bool holdsSuffix(const Shot& shot, std::string_view suffix)
{
    return std::any_of(shot.files.begin(), shot.files.end(),
        [&](const Shot::File& file) { return folded(file.suffix) == folded(suffix); });
}

/// Finds the shot of a folder and a base name.
using ShotIndex = std::map<std::pair<std::string, std::string>, std::size_t>;

void addPhoto(std::vector<Shot>& shots, ShotIndex& index, const SourceFile& file)
{
    const auto filename = file.path.filename().string();
    const std::string name(withoutExtension(filename));
    const auto suffix = filename.substr(name.size());
    const auto [entry, isNew] = index.try_emplace({file.path.parent_path().native(), name}, shots.size());
    // Names that differ in case alone cannot stand beside each other in every folder.
    if (isNew || holdsSuffix(shots[entry->second], suffix))
        shots.push_back({name, {{file, suffix}}});
    else
        shots[entry->second].files.push_back({file, suffix});
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

} // namespace

std::string duplicateKey(std::string_view filename, std::uint64_t size)
{
    // Decoding would make the same of all bytes that are no text.
    return (isUtf8(filename) ? lowered(filename) : asciiLower(filename)) + "|" + std::to_string(size);
}

ImportListing listImportable(FileSource& source, Catalog& catalog, const std::stop_token& stop)
{
    auto found = source.list(isImportable, stop);
    const auto known = knownKeys(catalog);
    ImportListing listing{{}, {}, std::move(found.failures), !stop.stop_requested()};
    for (auto& file : found.files) {
        const auto filename = file.path.filename().native();
        if (isSidecar(filename))
            listing.sidecars.push_back(std::move(file));
        else
            listing.candidates.push_back({file, known.contains(duplicateKey(filename, file.size))});
    }
    return listing;
}

void pick(std::vector<Candidate>& candidates, Duplicates duplicates)
{
    for (auto& candidate : candidates)
        candidate.picked = duplicates == Duplicates::take || !candidate.isDuplicate;
}

ImportPlan planFor(const ImportListing& listing)
{
    ImportPlan plan;
    for (const auto& candidate : listing.candidates)
        if (candidate.picked)
            plan.files.push_back(candidate.file);
    plan.sidecars = listing.sidecars;
    return plan;
}

std::vector<Shot> shots(const ImportPlan& plan)
{
    std::vector<Shot> result;
    ShotIndex index;
    for (const auto& file : plan.files)
        addPhoto(result, index, file);
    for (const auto& file : plan.sidecars)
        addSidecar(result, index, file);
    return result;
}

} // namespace korvo
