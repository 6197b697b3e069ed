#include "app/ImportRun.h"
#include "app/cli/Commands.h"
#include "app/cli/Progress.h"
#include "base/Text.h"
#include "metadata/FolderFiles.h"
#include "metadata/ImportWindow.h"
#include "platform/AppFolders.h"
#include "platform/linux/LinuxCameras.h"
#include "platform/linux/LinuxVolumes.h"

#include <fmt/format.h>

namespace korvo {

namespace {

constexpr std::string_view cameraWord = "camera";

/// What is offered; nothing when the system does not tell, since a path can be imported all the same.
std::vector<Volume> knownVolumes()
{
    try {
        return offeredVolumes(LinuxVolumes().mounted());
    } catch (const VolumeError&) {
        return {};
    }
}

Source chosenSource(const std::vector<std::filesystem::path>& paths)
{
    Source source{.kind = Source::Kind::chosen, .chosen = paths};
    const auto offered = knownVolumes();
    for (const auto& path : paths) {
        auto volume = offered.empty() ? fileSystemHolding(path) : volumeHolding(path, offered);
        if (volume && (volume->isCard || paths.size() == 1)) {
            source.kind = Source::Kind::volume;
            source.volume = std::move(*volume);
        }
    }
    return source;
}

/// "camera" for the one that is connected, "camera:PORT" for one of several, else files and folders.
Source sourceOf(const std::vector<std::string>& names)
{
    if (names.size() == 1 && names.front() == cameraWord)
        return {.kind = Source::Kind::camera};
    if (names.size() == 1 && names.front().starts_with("camera:"))
        return {.kind = Source::Kind::camera, .port = names.front().substr(cameraWord.size() + 1)};
    return chosenSource({names.begin(), names.end()});
}

std::unique_ptr<FileSource> openCamera(const std::string& port)
{
    LinuxCameras cameras;
    std::string others;
    for (const auto& camera : cameras.connected()) {
        if (port.empty() || camera.port == port)
            return cameras.open(camera);
        others += "\n  camera:" + camera.port + "  " + camera.name;
    }
    throw std::runtime_error(others.empty() ? std::string(importWindow::sections[1].emptyText)
                                            : "no camera at " + port + "; there is" + others);
}

std::unique_ptr<FileSource> open(const Source& source)
{
    if (source.kind == Source::Kind::camera)
        return openCamera(source.port);
    return std::make_unique<FolderFiles>(source.chosen);
}

void printCandidates(const Context& context, const ImportListing& listing)
{
    for (const auto& candidate : listing.candidates) {
        const auto path = candidate.file.path.string();
        if (!context.options().json) {
            context.print(fmt::format("{:<13}{:<12}{}", rowText(candidate),
                candidate.isDuplicate ? importWindow::inLibrary : "", path));
            continue;
        }
        JsonWriter json;
        json.beginObject();
        json.member("path", path);
        json.member("size", candidate.file.size);
        if (candidate.file.modified)
            json.member("fileDate", unixTime(*candidate.file.modified));
        json.member("isDuplicate", candidate.isDuplicate);
        json.member("picked", candidate.picked);
        json.endObject();
        context.print(json.take());
    }
}

ImportPlan planOf(const ImportArguments& arguments, const ImportListing& listing, const Source& source)
{
    auto plan = planFor(listing);
    if (!arguments.reference || mustCopy(source))
        plan.copyTo = arguments.copyTo ? std::filesystem::path(*arguments.copyTo)
                                       : picturesFolder() / importWindow::destinationName;
    if (source.kind == Source::Kind::volume && source.volume.isCard)
        plan.card = source.volume.url;
    plan.namingPattern = arguments.pattern;
    plan.byDay = arguments.byDay;
    plan.newProject = arguments.project;
    plan.creator = arguments.creator;
    plan.copyright = arguments.copyright;
    plan.keywords = arguments.keywords;
    plan.eject = arguments.eject;
    return plan;
}

ImportResult run(Context& context, FileSource& files, const ImportPlan& plan)
{
    Progress progress("Importing", context.progressMode());
    progress.setTotal(plan.files.size());
    const auto result = runImport(context.library(), files, plan, context.clock(), context.stop(),
        [&](std::size_t index) { progress.setDone(index - 1); });
    progress.setDone(plan.files.size());
    return result;
}

/// Lets the volume go. A failure leaves what was imported in place.
void eject(Context& context, const Source& source)
{
    if (source.kind == Source::Kind::camera)
        return;
    std::optional<std::string> failure;
    try {
        if (source.kind == Source::Kind::chosen)
            throw VolumeError(VolumeError::Case::eject, "it is on no card or drive.");
        LinuxVolumes().eject(source.volume.url);
    } catch (const VolumeError& error) {
        failure = error.what();
    }
    const auto text = ejectText(nameOf(source), failure);
    if (failure)
        context.fail(text);
    else if (!context.options().json)
        context.print(text);
}

/// A card from which photos could not be taken, or were left, is wanted again.
void ejectUnlessNeeded(Context& context, const Source& source, const ImportResult& result)
{
    const bool nothingWorked = result.photos.empty() && !result.failures.empty();
    if (!result.broken.empty() || nothingWorked)
        context.fail(nameOf(source) + " was not ejected: not all of its photos were imported.");
    else
        eject(context, source);
}

void printResult(const Context& context, std::size_t imported, std::size_t duplicates, std::size_t failed)
{
    context.print(fmt::format(
        fmt::runtime(context.options().json ? R"({{"imported":{0},"duplicates":{2},"failed":{3}}})"
                                            : "{1} imported, {2} already in the library, {3} failed"),
        imported, counted(imported, "photo"), duplicates, failed));
}

} // namespace

ExitCode volumesCommand(Context& context)
{
    for (const auto& volume : offeredVolumes(LinuxVolumes().mounted())) {
        const auto path = volume.url.string();
        if (!context.options().json) {
            context.print(fmt::format("{}  {}  {}", path, volume.name, volume.isCard ? "card" : "drive"));
            continue;
        }
        JsonWriter json;
        json.beginObject();
        json.member("path", path);
        json.member("name", volume.name);
        json.member("isCard", volume.isCard);
        json.endObject();
        context.print(json.take());
    }
    return ExitCode::done;
}

ExitCode importCommand(Context& context, const ImportArguments& arguments)
{
    Catalog& library = context.library();
    const auto source = sourceOf(arguments.sources);
    const auto files = open(source);
    auto listing = listImportable(*files, library, context.stop());
    if (!listing.isWhole)
        throw Interrupted();
    pick(listing.candidates, arguments.keepDuplicates ? Duplicates::take : Duplicates::leaveOut);
    for (const auto& failure : listing.failures)
        context.fail(failure.path.string() + ": " + failure.reason);
    if (arguments.dryRun) {
        printCandidates(context, listing);
        return context.finish(listing.candidates.size());
    }
    if (listing.candidates.empty()) {
        if (listing.failures.empty())
            context.fail(std::string(importWindow::nothingImportable));
        return context.finish(0);
    }
    const auto plan = planOf(arguments, listing, source);
    if (arguments.reference && plan.copyTo)
        fmt::print(stderr, "{}\n", importWindow::cardsAreCopied);
    const auto result = run(context, *files, plan);
    for (const auto& failure : result.failures)
        context.fail(failure.message);
    const auto left = listing.candidates.size() - plan.files.size() + result.known;
    printResult(context, result.photos.size(), left, listing.failures.size() + result.failures.size());
    if (!result.broken.empty())
        context.fail("The import ended early; import again to go on. " + result.broken);
    if (plan.eject && !result.cancelled)
        ejectUnlessNeeded(context, source, result);
    return context.finish(result.photos.size() + left, result.cancelled ? Ended::early : Ended::whole);
}

} // namespace korvo
