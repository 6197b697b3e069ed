#include "imports/ImportPlan.h"

#include "base/FoldedText.h"
#include "base/Text.h"
#include "catalog/FileTypes.h"
#include "catalog/ImportMemory.h"
#include "imports/Naming.h"

#include <algorithm>
#include <map>
#include <unordered_map>
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
    for (auto& key : ImportMemory(catalog).keys())
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

std::string keyAmongTwins(const SourceFile& file, std::size_t twins)
{
    return duplicateKey(file) + (twins == 0 ? "" : "|" + std::to_string(twins));
}

void addPhoto(std::vector<Shot>& shots, ShotIndex& index, const Candidate& candidate)
{
    const SourceFile& file = candidate.file;
    const auto filename = file.path.filename().string();
    const std::string name(withoutExtension(filename));
    Shot::File photo{file, filename.substr(name.size()), false, keyAmongTwins(file, candidate.twins)};
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

} // namespace

std::string duplicateKey(std::string_view filename, std::uint64_t size)
{
    // Decoding would make the same of all bytes that are no text.
    return (isUtf8(filename) ? lowered(filename) : asciiLower(filename)) + "|" + std::to_string(size);
}

std::string duplicateKey(const SourceFile& file)
{
    return duplicateKey(file.path.filename().native(), file.size);
}

ImportListing listImportable(FileSource& source, Catalog& catalog, const std::stop_token& stop)
{
    auto found = source.list(isImportable, stop);
    const auto known = knownKeys(catalog);
    std::unordered_map<std::string, std::size_t> seen;
    ImportListing listing{{}, {}, std::move(found.failures), !stop.stop_requested()};
    for (auto& file : found.files) {
        if (isSidecar(file.path.filename().native())) {
            listing.sidecars.push_back(std::move(file));
            continue;
        }
        const auto key = duplicateKey(file);
        listing.candidates.push_back(
            {.file = std::move(file), .isDuplicate = known.contains(key), .twins = seen[key]++});
    }
    const auto unfinished = ImportMemory(catalog).unfinished();
    for (Candidate& candidate : listing.candidates)
        if (seen.at(duplicateKey(candidate.file)) > 1
            && unfinished.left.contains(keyAmongTwins(candidate.file, candidate.twins)))
            candidate.isDuplicate = false;
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
            plan.files.push_back(candidate);
        else if (candidate.isDuplicate)
            plan.known.push_back(candidate.file);
    plan.sidecars = listing.sidecars;
    return plan;
}

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

} // namespace korvo
