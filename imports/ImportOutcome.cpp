#include "imports/ImportOutcome.h"

#include "base/Text.h"
#include "imports/ImportWindow.h"

#include <algorithm>

namespace korvo {

namespace {

/// A card from which photos could not be taken, or were left, is wanted again.
bool isStillNeeded(const ImportResult& result)
{
    return !result.broken.empty() || (result.photos.empty() && !result.failures.empty());
}

} // namespace

ImportCounts countsOf(const ImportListing& listing, const ImportResult& result)
{
    const auto left = std::count_if(listing.candidates.begin(), listing.candidates.end(),
        [](const Candidate& candidate) { return candidate.isDuplicate && !candidate.picked; });
    return {result.photos.size(), static_cast<std::size_t>(left) + result.known,
        listing.failures.size() + result.failures.size()};
}

std::string countsText(const ImportCounts& counts)
{
    return counted(counts.imported, "photo") + " imported, " + grouped(counts.duplicates)
        + " already in the library, " + grouped(counts.failed) + " failed";
}

std::vector<std::string> failuresOf(const ImportListing& listing, const ImportResult& result)
{
    std::vector<std::string> texts;
    for (const auto& failure : listing.failures)
        texts.push_back(sentenceOf(failure));
    for (const auto& failure : result.failures)
        texts.push_back(sentenceOf(failure));
    if (!result.broken.empty())
        texts.push_back("The import ended early; import again to go on. " + result.broken);
    return texts;
}

std::optional<Ejected> ejectAfter(
    const ImportResult& result, const ImportSource& source, VolumeService& volumes)
{
    if (source.kind == ImportSource::Kind::camera)
        return std::nullopt;
    const auto name = nameOf(source);
    if (isStillNeeded(result))
        return Ejected{false, name + " was not ejected: not all of its photos were imported."};
    try {
        if (source.kind == ImportSource::Kind::chosen)
            throw VolumeError(VolumeError::Case::eject, "it is on no card or drive.");
        volumes.eject(source.volume.url);
        return Ejected{true, ejectText(name, std::nullopt)};
    } catch (const VolumeError& error) {
        return Ejected{false, ejectText(name, error.what())};
    }
}

} // namespace korvo
