#include "app/ImportPhotos.h"
#include "app/cli/Commands.h"
#include "app/cli/Progress.h"
#include "imports/ImportOptions.h"
#include "imports/ImportWindow.h"
#include "platform/linux/LinuxVolumes.h"

#include <fmt/format.h>

namespace korvo {

namespace {

struct ImportArguments {
    std::vector<std::string> sources;
    std::optional<std::string> copyTo; // without one into the user's folder for pictures
    bool reference = false; // leave the files where they are
    std::string pattern = "{name}";
    std::string project; // its name
    bool byDay = false;
    std::string creator, copyright, keywords;
    bool keepDuplicates = false;
    bool eject = false;
    bool dryRun = false; // only list what would be imported
};

void addImportArguments(CLI::App& sub, ImportArguments& import)
{
    sub.add_option("SOURCE", import.sources,
           "a card, a drive, folders or files; \"camera\" for the one on USB, camera:PORT for one of several")
        ->required();
    auto* const copyTo = sub.add_option(
        "--copy-to", import.copyTo, "the folder for the copies; else Korvo Imports in Pictures");
    sub.add_flag("--reference", import.reference, "leave the files where they are; those of cards are copied")
        ->excludes(copyTo);
    sub.add_option("--pattern", import.pattern, "new names, with {name}, {seq}, {date} and {title}");
    auto* const project
        = sub.add_option("--project", import.project, "into the project of this name, made if there is none");
    sub.add_flag("--by-day", import.byDay, "into one project per day")->excludes(project);
    sub.add_option("--creator", import.creator, "the photos' creator");
    sub.add_option("--copyright", import.copyright, "the photos' copyright");
    sub.add_option("--keywords", import.keywords, "keywords to add, comma, separated");
    sub.add_flag("--keep-duplicates", import.keepDuplicates, "import what the library has already, too");
    sub.add_flag("--eject", import.eject, "eject the card or drive afterwards");
    sub.add_flag("--dry-run", import.dryRun, "only list what would be imported");
}

constexpr std::string_view cameraWord = "camera";

/// "camera" for the one that is connected, "camera:PORT" for one of several, else files and folders.
ImportSource sourceOf(const std::vector<std::string>& names)
{
    if (names.size() == 1 && names.front() == cameraWord)
        return {.kind = ImportSource::Kind::camera};
    if (names.size() == 1 && names.front().starts_with("camera:"))
        return {.kind = ImportSource::Kind::camera, .port = names.front().substr(cameraWord.size() + 1)};
    LinuxVolumes volumes;
    return sourceOf({names.begin(), names.end()}, knownVolumes(volumes));
}

struct ListedCandidate {
    std::string path;
    std::uint64_t size;
    std::optional<UnixTime> fileDate;
    bool isDuplicate;
    bool picked;
};
KORVO_RECORD(ListedCandidate, path, size, fileDate, isDuplicate, picked)

void printCandidates(const Context& context, const ImportListing& listing)
{
    for (const auto& candidate : listing.candidates) {
        const auto& file = candidate.file;
        ListedCandidate listed{
            file.path.string(), file.size, std::nullopt, candidate.isDuplicate, candidate.picked};
        if (file.modified)
            listed.fileDate = unixTime(*file.modified);
        context.print(listed,
            fmt::format("{:<13}{:<12}{}", rowText(candidate),
                candidate.isDuplicate ? importWindow::inLibrary : "", listed.path));
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

PhotosImported run(Context& context, const ListedSource& from, const ImportPlan& plan)
{
    Progress progress("Importing", context.progressMode());
    progress.setTotal(plan.files.size());
    auto imported = importPhotos(context.library(), from, plan, context.clock(), context.stop(),
        [&](std::size_t index) { progress.setDone(index - 1); });
    progress.setDone(plan.files.size());
    return imported;
}

/// A volume that is not ejected leaves what was imported in place.
void print(Context& context, const PhotosImported& imported)
{
    for (const auto& text : imported.failures)
        context.fail(text);
    context.print(imported.counts, countsText(imported.counts));
    if (imported.ejected && !imported.ejected->done)
        context.fail(imported.ejected->text);
    else if (imported.ejected && !context.options().json)
        context.print(imported.ejected->text);
}

struct OfferedVolume {
    std::string path;
    std::string name;
    bool isCard;
};
KORVO_RECORD(OfferedVolume, path, name, isCard)

void listVolumes(Context& context)
{
    for (const auto& volume : offeredVolumes(LinuxVolumes().mounted())) {
        const OfferedVolume offered{volume.url.string(), volume.name, volume.isCard};
        context.print(
            offered, fmt::format("{}  {}  {}", offered.path, volume.name, volume.isCard ? "card" : "drive"));
    }
}

ExitCode importFrom(Context& context, const ImportArguments& arguments)
{
    auto from = listSource(sourceOf(arguments.sources), context.library(), context.stop());
    auto& listing = from.listing;
    if (!listing.isWhole)
        throw Interrupted();
    pick(listing.candidates, arguments.keepDuplicates ? Duplicates::take : Duplicates::leaveOut);
    if (arguments.dryRun || listing.candidates.empty())
        for (auto& text : failuresOf(listing, {}))
            context.fail(std::move(text));
    if (arguments.dryRun) {
        printCandidates(context, listing);
        return context.finish(listing.candidates.size());
    }
    if (listing.candidates.empty()) {
        if (listing.failures.empty())
            context.fail(std::string(importWindow::nothingImportable));
        return context.finish(0);
    }
    const auto plan = planOf(listing, from.source, optionsOf(arguments));
    if (arguments.reference && plan.copyTo)
        printError(importWindow::cardsAreCopied);
    const auto imported = run(context, from, plan);
    print(context, imported);
    return context.finish(imported.counts.imported + imported.counts.duplicates,
        imported.cancelled ? Ended::early : Ended::whole);
}

} // namespace

void addImportCommands(const Commands& app)
{
    app.add("volumes", "the cards and drives that photos can be imported from", listVolumes);
    app.add<ImportArguments>(
        "import", "take photos in from cards, drives, folders and cameras", addImportArguments, importFrom);
}

} // namespace korvo
