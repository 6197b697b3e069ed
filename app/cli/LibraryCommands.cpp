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

void printResult(const Context& context, const AddResult& result)
{
    if (context.options().json)
        context.print(fmt::format(R"({{"added":{},"known":{},"ignored":{},"failed":{}}})", result.added,
            result.known, result.ignored, result.failures.size()));
    else
        context.print(fmt::format("{} added, {} known already, {} of other kinds passed over, {} failed",
            counted(result.added, "photo"), result.known, counted(result.ignored, "file"),
            result.failures.size()));
}

} // namespace

ExitCode createCommand(Context& context, const std::filesystem::path& folder)
{
    if (std::filesystem::exists(folder / "catalog.sqlite"))
        throw std::runtime_error("there is a library already in " + folder.string());
    UnfinishedLibrary unfinished(folder);
    const auto catalog = openLibrary(folder, context.clock(), context.defaults());
    unfinished.keep();
    const auto path = catalog->libraryURL().string();
    if (context.options().json) {
        JsonWriter json;
        json.beginObject();
        json.member("path", path);
        json.endObject();
        context.print(json.take());
    } else {
        context.print(path);
    }
    return ExitCode::done;
}

ExitCode libraryCommand(Context& context)
{
    const auto folder = context.library().libraryURL();
    if (context.options().json) {
        std::vector<std::string> recent;
        for (const auto& path : recentLibraries(context.defaults()))
            recent.push_back(path.string());
        JsonWriter json;
        json.beginObject();
        json.member("path", folder.native());
        json.member("recent", recent);
        json.endObject();
        context.print(json.take());
    } else {
        context.print(folder.string());
    }
    return ExitCode::done;
}

ExitCode addCommand(Context& context, const std::vector<std::string>& names, bool readCamera)
{
    const std::vector<std::filesystem::path> paths(names.begin(), names.end());
    AddResult result;
    {
        Progress progress("Adding", context.progressMode());
        std::jthread counter;
        if (progress.isShown())
            counter = std::jthread(
                [&](const std::stop_token& stop) { progress.setTotal(countFiles(paths, stop)); });
        result = addFiles(context.library(), paths, context.clock(),
            readCamera ? ReadCameraData::now : ReadCameraData::later, context.stop(),
            [&](std::size_t done) { progress.setDone(done); });
    }
    for (const auto& failure : result.failures)
        context.fail(failure.message);
    printResult(context, result);
    return context.finish(result.added + result.known, result.cancelled ? Ended::early : Ended::whole);
}

ExitCode checkCommand(Context& context)
{
    HealthReport report;
    {
        Progress progress("Checking", context.progressMode());
        report = checkHealth(context.library(), [&](std::size_t done) {
            progress.setDone(done);
            return !context.isStopped();
        });
    }
    if (context.options().json) {
        JsonWriter json;
        json.beginObject();
        json.member("photos", report.photos);
        json.member("problems", report.problems);
        json.endObject();
        context.print(json.take());
    } else {
        for (const auto& problem : report.problems)
            context.print(problem);
        context.print(fmt::format("{} checked, {} found", counted(report.photos, "photo"),
            counted(report.problems.size(), "problem")));
    }
    if (report.stopped)
        return ExitCode::interrupted;
    return report.problems.empty() ? ExitCode::done : ExitCode::part;
}

} // namespace korvo
