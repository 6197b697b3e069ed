#include "app/AddFiles.h"
#include "app/Libraries.h"
#include "app/cli/Commands.h"
#include "app/cli/Progress.h"
#include "base/Text.h"
#include "catalog/FolderScan.h"
#include "catalog/HealthCheck.h"

#include <fmt/format.h>

#include <thread>

namespace korvo {

namespace {

/// Walks the names once, for the total of the progress bar.
std::size_t countFiles(const std::vector<std::filesystem::path>& paths, const std::stop_token& stop)
{
    FolderScan scan(paths);
    std::size_t count = 0;
    while (!stop.stop_requested() && scan.next())
        ++count;
    return count;
}

struct AddArguments {
    std::vector<std::string> paths;
    bool noRead = false;
};

void addAddArguments(CLI::App& sub, AddArguments& arguments)
{
    sub.add_option("PATH", arguments.paths, "folders, taken with all that lies in them, and files")
        ->required();
    sub.add_flag("--no-read", arguments.noRead, "leave camera data, dates and positions for later");
}

struct AddCounts {
    std::size_t added, known, ignored, failed;
};
KORVO_RECORD(AddCounts, added, known, ignored, failed)

ExitCode addToLibrary(Context& context, const AddArguments& arguments)
{
    const std::vector<std::filesystem::path> paths(arguments.paths.begin(), arguments.paths.end());
    AddResult result;
    {
        Progress progress("Adding", context.progressMode());
        std::jthread counter;
        if (progress.isShown())
            counter = std::jthread(
                [&](const std::stop_token& stop) { progress.setTotal(countFiles(paths, stop)); });
        result = addFiles(context.library(), paths, context.clock(),
            arguments.noRead ? ReadCameraData::later : ReadCameraData::now, context.stop(),
            [&](std::size_t done) { progress.setDone(done); });
    }
    for (const auto& failure : result.failures)
        context.fail(sentenceOf(failure));
    if (!result.broken.empty())
        context.fail(result.broken);
    const auto failed = result.failures.size() + (result.broken.empty() ? 0 : 1);
    context.print(AddCounts{result.added, result.known, result.ignored, failed},
        fmt::format("{} added, {} known already, {} of other kinds passed over, {} failed",
            counted(result.added, "photo"), grouped(result.known), counted(result.ignored, "file"),
            grouped(failed)));
    return context.finish(result.added + result.known, result.cancelled ? Ended::early : Ended::whole);
}

struct MadeLibrary {
    std::string path;
};
KORVO_RECORD(MadeLibrary, path)

void createLibrary(Context& context, const std::filesystem::path& folder)
{
    if (std::filesystem::exists(folder / "catalog.sqlite"))
        throw std::runtime_error("there is a library already in " + folder.string());
    UnfinishedLibrary unfinished(folder);
    const auto catalog = openLibrary(folder, context.clock(), context.defaults());
    unfinished.keep();
    const auto path = catalog->libraryURL().string();
    context.print(MadeLibrary{path}, path);
}

struct LibraryInUse {
    std::string path;
    std::vector<std::string> recent;
};
KORVO_RECORD(LibraryInUse, path, recent)

void showLibrary(Context& context)
{
    LibraryInUse library{context.library().libraryURL().string(), {}};
    for (const auto& path : recentLibraries(context.defaults()))
        library.recent.push_back(path.string());
    context.print(library, library.path);
}

struct CheckResult {
    std::size_t photos;
    std::vector<std::string> problems;
};
KORVO_RECORD(CheckResult, photos, problems)

ExitCode checkLibrary(Context& context)
{
    HealthReport report;
    {
        Progress progress("Checking", context.progressMode());
        report = checkHealth(context.library(), [&](std::size_t done) {
            progress.setDone(done);
            return !context.isStopped();
        });
    }
    std::string text;
    for (const auto& problem : report.problems)
        text += problem + "\n";
    text += fmt::format(
        "{} checked, {} found", counted(report.photos, "photo"), counted(report.problems.size(), "problem"));
    context.print(CheckResult{report.photos, report.problems}, text);
    if (report.stopped)
        return ExitCode::interrupted;
    return report.problems.empty() ? ExitCode::done : ExitCode::part;
}

} // namespace

void addLibraryCommands(const Commands& app)
{
    app.add<std::string>(
        "create", "make a new library folder",
        [](CLI::App& sub, std::string& folder) { sub.add_option("DIR", folder, "the folder")->required(); },
        createLibrary);
    app.add("library", "which library is in use", showLibrary);
    app.add<AddArguments>("add", "take folders and files into the library", addAddArguments, addToLibrary);
    app.add("check", "the library's health", checkLibrary);
}

} // namespace korvo
