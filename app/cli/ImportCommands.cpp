#include "app/cli/Commands.h"
#include "app/cli/Progress.h"
#include "imports/ImportSource.h"
#include "platform/linux/LinuxCameras.h"
#include "platform/linux/LinuxVolumes.h"

#include <fmt/format.h>

namespace korvo {

namespace {

constexpr std::string_view cameraWord = "camera";

/// "camera" for the one that is connected, "camera:PORT" for one of several, else files and folders.
Source sourceOf(const std::vector<std::string>& names)
{
    if (names.size() == 1 && names.front() == cameraWord)
        return {.kind = Source::Kind::camera};
    if (names.size() == 1 && names.front().starts_with("camera:"))
        return {.kind = Source::Kind::camera, .port = names.front().substr(cameraWord.size() + 1)};
    LinuxVolumes volumes;
    return sourceOf({names.begin(), names.end()}, knownVolumes(volumes));
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

ImportOptions optionsOf(const ImportArguments& arguments)
{
    using Files = ImportOptions::Files;
    using Project = ImportOptions::Project;
    const bool named = !arguments.project.empty();
    return {.files = arguments.reference ? Files::reference : Files::copy,
        .destination
        = arguments.copyTo ? std::optional(std::filesystem::path(*arguments.copyTo)) : std::nullopt,
        .pattern = arguments.pattern,
        .project = arguments.byDay ? Project::byDay
            : named                ? Project::made
                                   : Project::none,
        .newProject = arguments.project,
        .creator = arguments.creator,
        .copyright = arguments.copyright,
        .keywords = arguments.keywords,
        .eject = arguments.eject};
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

/// A failure leaves what was imported in place.
void eject(Context& context, const Source& source, const ImportResult& result)
{
    LinuxVolumes volumes;
    const auto ejected = ejectAfter(result, source, volumes);
    if (ejected && !ejected->done)
        context.fail(ejected->text);
    else if (ejected && !context.options().json)
        context.print(ejected->text);
}

void noteFailures(Context& context, const ImportListing& listing, const ImportResult& result)
{
    for (auto& text : failuresOf(listing, result))
        context.fail(std::move(text));
}

void printResult(const Context& context, const ImportCounts& counts)
{
    context.print(context.options().json ? fmt::format(R"({{"imported":{},"duplicates":{},"failed":{}}})",
                      counts.imported, counts.duplicates, counts.failed)
                                         : countsText(counts));
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
    LinuxCameras cameras;
    const auto files = openSource(source, cameras);
    auto listing = listImportable(*files, library, context.stop());
    if (!listing.isWhole)
        throw Interrupted();
    pick(listing.candidates, arguments.keepDuplicates ? Duplicates::take : Duplicates::leaveOut);
    if (arguments.dryRun || listing.candidates.empty())
        noteFailures(context, listing, {});
    if (arguments.dryRun) {
        printCandidates(context, listing);
        return context.finish(listing.candidates.size());
    }
    if (listing.candidates.empty()) {
        if (listing.failures.empty())
            context.fail(std::string(importWindow::nothingImportable));
        return context.finish(0);
    }
    const auto plan = planOf(listing, source, optionsOf(arguments));
    if (arguments.reference && plan.copyTo)
        fmt::print(stderr, "{}\n", importWindow::cardsAreCopied);
    const auto result = run(context, *files, plan);
    noteFailures(context, listing, result);
    const auto counts = countsOf(listing, result);
    printResult(context, counts);
    if (plan.eject && !result.cancelled)
        eject(context, source, result);
    return context.finish(
        counts.imported + counts.duplicates, result.cancelled ? Ended::early : Ended::whole);
}

} // namespace korvo
