#include "app/SystemTools.h"
#include "app/cli/Commands.h"
#include "app/cli/Progress.h"
#include "app/pictures/ExportRun.h"
#include "base/Text.h"

#include <fmt/format.h>

namespace korvo {

namespace {

struct ExportArguments {
    ExportPlan plan;
    PhotoArguments photos;
};

void addExportArguments(CLI::App& sub, ExportArguments& arguments)
{
    auto& plan = arguments.plan;
    sub.add_option("--to", plan.folder, "the folder, made if it is not there")->required();
    const auto takeFormat = [&plan](const std::string& ending) {
        const auto format = pictureFormat("x." + ending);
        if (!format)
            throw CLI::ValidationError("\"" + ending + "\" is no format: use jpg, png, webp or tif");
        plan.format = *format;
    };
    sub.add_option_function<std::string>("--format", takeFormat, "jpg, png, webp or tif; jpg unless given");
    sub.add_option("--pattern", plan.pattern, "names, with {name}, {seq}, {date} and {title}");
    sub.add_option("--size", plan.size, "the most pixels of the longer side")
        ->check(CLI::Range(1, 1'000'000));
    sub.add_option("--quality", plan.quality, "of JPEG and WebP, 1 to 100; 90 unless given")
        ->check(CLI::Range(1, 100));
    sub.add_flag_callback(
        "--without-position", [&plan] { plan.position = Position::strip; },
        "leave out where the photos were taken");
    addPhotos(sub, arguments.photos);
}

struct ExportCounts {
    std::size_t exported, failed;
};
KORVO_RECORD(ExportCounts, exported, failed)

ExitCode exportPhotos(Context& context, const ExportArguments& arguments)
{
    const auto photos = context.library().photosByID(context.photos(arguments.photos));
    SystemTools tools;
    ExportResult result;
    {
        Progress progress("Exporting", context.progressMode());
        progress.setTotal(photos.size());
        result = runExport({context.library(), tools.reader, tools.exifTool}, photos, arguments.plan,
            context.stop(), [&](std::size_t done) { progress.setDone(done); });
    }
    for (auto& failure : result.failures)
        context.fail(std::move(failure));
    context.print(ExportCounts{result.written, result.failures.size()},
        fmt::format("{} exported to {}", counted(result.written, "photo"), arguments.plan.folder.string()));
    return context.finish(result.written, result.cancelled ? Ended::early : Ended::whole);
}

} // namespace

void addExportCommands(const Commands& app)
{
    app.add<ExportArguments>("export", "photos with their edits, as files of a folder, named by a pattern",
        addExportArguments, exportPhotos);
}

} // namespace korvo
