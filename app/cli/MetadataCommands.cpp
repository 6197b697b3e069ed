#include "app/cli/Commands.h"
#include "base/Text.h"
#include "metadata/MetadataSave.h"
#include "metadata/MetadataWriteBack.h"
#include "platform/AppFolders.h"

#include <fmt/format.h>

#include <cstdlib>
#include <stdexcept>

namespace korvo {

namespace {

/// The tool that changes files, as the command line finds it.
struct SystemExifTool {
    std::unique_ptr<ProcessLauncher> launcher = systemProcessLauncher();
    ExifTool tool{*launcher, places()};

    static ExifToolPlaces places()
    {
        const char* const path = std::getenv("PATH");
        return {.bundled = resourceFolder() / "exiftool", .searchPath = path ? path : ""};
    }
};

using Work = std::function<FilesWritten(const ExifTool&, const FileProgress&)>;

/// Runs work on files with a bar for its progress, and says how to come by the tool when it is missing.
FilesWritten withProgress(const Context& context, const char* verb, const Work& work)
{
    const SystemExifTool system;
    Progress progress(verb, context.progressMode());
    try {
        return work(system.tool, [&](std::size_t number, std::size_t total) {
            progress.setTotal(total);
            progress.setDone(number);
        });
    } catch (const ExifToolError& error) {
        if (error.which() != ExifToolError::Case::notFound)
            throw;
        throw std::runtime_error(
            std::string(error.what()) + " On Debian and Ubuntu: apt install libimage-exiftool-perl");
    }
}

ExitCode report(Context& context, const FilesWritten& result, const char* key, const std::string& summary)
{
    for (const auto& failure : result.failures)
        context.fail(failure.message);
    if (context.options().json)
        context.print(fmt::format(R"({{"{}":{},"failed":{}}})", key, result.done, result.failures.size()));
    else if (!result.stopped)
        context.print(summary);
    return context.finish(result.done);
}

} // namespace

ExitCode saveCommand(Context& context)
{
    auto& catalog = context.library();
    const auto result
        = withProgress(context, "Saving", [&](const ExifTool& tool, const FileProgress& progress) {
              return saveMetadata(catalog, tool, context.stop(), progress);
          });
    return report(context, result, "saved", saveSummary(result));
}

ExitCode revertCommand(Context& context, const PhotoArguments& arguments)
{
    const auto ids = context.photos(arguments);
    auto& catalog = context.library();
    if (!ids.empty() && writableMasters(catalog, ids).empty())
        throw RevertRefused(RevertRefused::Case::apertureOriginals);
    const auto result
        = withProgress(context, "Reverting", [&](const ExifTool& tool, const FileProgress& progress) {
              return revertMetadata(catalog, ids, tool, context.stop(), progress);
          });
    return report(context, result, "reverted", revertSummary(result));
}

} // namespace korvo
