#include "imports/ImportPlan.h"

#include "base/FoldedText.h"
#include "base/Text.h"
#include "catalog/FileTypes.h"
#include "catalog/ImportMemory.h"

#include <algorithm>
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

std::unordered_set<std::string> knownKeys(Catalog& catalog)
{
    std::unordered_set<std::string> keys;
    for (const auto& [filename, size] : catalog.knownFiles())
        keys.insert(duplicateKey(filename, static_cast<std::uint64_t>(size)));
    for (auto& key : ImportMemory(catalog).keys())
        keys.insert(std::move(key));
    return keys;
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

std::string keyAmongTwins(const Candidate& candidate)
{
    return duplicateKey(candidate.file) + (candidate.twins == 0 ? "" : "|" + std::to_string(candidate.twins));
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
        if (seen.at(duplicateKey(candidate.file)) > 1 && unfinished.left.contains(keyAmongTwins(candidate)))
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

} // namespace korvo
