#include "imports/ImportSource.h"

#include "base/Text.h"
#include "imports/FolderFiles.h"
#include "platform/AppFolders.h"

#include <algorithm>

namespace korvo {

namespace {

std::unique_ptr<FileSource> openCamera(const std::string& port, CameraService& cameras)
{
    std::string others;
    for (const auto& camera : cameras.connected()) {
        if (port.empty() || camera.port == port)
            return cameras.open(camera);
        others += "\n  camera:" + camera.port + "  " + camera.name;
    }
    throw std::runtime_error(others.empty() ? std::string(importWindow::sections[1].emptyText)
                                            : "no camera at " + port + "; there is" + others);
}

void setProject(ImportPlan& plan, const ImportOptions& options)
{
    using Project = ImportOptions::Project;
    plan.byDay = options.project == Project::byDay;
    if (options.project == Project::made)
        plan.newProject = options.newProject;
    if (options.project == Project::chosen)
        plan.project = options.chosenProject;
}

/// A card from which photos could not be taken, or were left, is wanted again.
bool isStillNeeded(const ImportResult& result)
{
    return !result.broken.empty() || (result.photos.empty() && !result.failures.empty());
}

} // namespace

std::vector<Volume> knownVolumes(VolumeService& service)
{
    try {
        return offeredVolumes(service.mounted());
    } catch (const VolumeError&) {
        return {};
    }
}

Source sourceOf(const std::vector<std::filesystem::path>& paths, const std::vector<Volume>& offered)
{
    Source source{.kind = Source::Kind::chosen, .chosen = paths};
    for (const auto& path : paths) {
        auto volume = offered.empty() ? fileSystemHolding(path) : volumeHolding(path, offered);
        if (volume && (volume->isCard || paths.size() == 1)) {
            source.kind = Source::Kind::volume;
            source.volume = std::move(*volume);
        }
    }
    return source;
}

std::unique_ptr<FileSource> openSource(const Source& source, CameraService& cameras)
{
    if (source.kind == Source::Kind::camera)
        return openCamera(source.port, cameras);
    if (source.chosen.empty())
        return std::make_unique<FolderFiles>(std::vector{source.volume.url});
    return std::make_unique<FolderFiles>(source.chosen);
}

std::filesystem::path defaultDestination()
{
    return picturesFolder() / importWindow::destinationName;
}

ImportPlan planOf(const ImportListing& listing, const Source& source, const ImportOptions& options)
{
    auto plan = planFor(listing);
    if (options.files == ImportOptions::Files::copy || mustCopy(source))
        plan.copyTo = options.destination ? *options.destination : defaultDestination();
    if (source.kind == Source::Kind::volume && source.volume.isCard)
        plan.card = source.volume.url;
    plan.namingPattern = options.pattern;
    setProject(plan, options);
    plan.creator = options.creator;
    plan.copyright = options.copyright;
    plan.keywords = options.keywords;
    plan.eject = options.eject;
    return plan;
}

ImportCounts countsOf(const ImportListing& listing, const ImportResult& result)
{
    const auto left = std::count_if(listing.candidates.begin(), listing.candidates.end(),
        [](const Candidate& candidate) { return candidate.isDuplicate && !candidate.picked; });
    return {result.photos.size(), static_cast<std::size_t>(left) + result.known,
        listing.failures.size() + result.failures.size()};
}

std::string countsText(const ImportCounts& counts)
{
    return counted(counts.imported, "photo") + " imported, " + std::to_string(counts.duplicates)
        + " already in the library, " + std::to_string(counts.failed) + " failed";
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

std::optional<Ejected> ejectAfter(const ImportResult& result, const Source& source, VolumeService& volumes)
{
    if (source.kind == Source::Kind::camera)
        return std::nullopt;
    const auto name = nameOf(source);
    if (isStillNeeded(result))
        return Ejected{false, name + " was not ejected: not all of its photos were imported."};
    try {
        if (source.kind == Source::Kind::chosen)
            throw VolumeError(VolumeError::Case::eject, "it is on no card or drive.");
        volumes.eject(source.volume.url);
        return Ejected{true, ejectText(name, std::nullopt)};
    } catch (const VolumeError& error) {
        return Ejected{false, ejectText(name, error.what())};
    }
}

} // namespace korvo
