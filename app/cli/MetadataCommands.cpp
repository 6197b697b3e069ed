#include "app/SystemExifTool.h"
#include "app/cli/Commands.h"
#include "base/Text.h"
#include "metadata/Backfill.h"
#include "metadata/DescriptiveReader.h"
#include "metadata/FileAdjustments.h"
#include "metadata/MetadataSave.h"
#include "metadata/MetadataWriteBack.h"

#include <fmt/format.h>

#include <cmath>
#include <stdexcept>

namespace korvo {

namespace {

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
        throw std::runtime_error(textForUser(error));
    }
}

ExitCode report(Context& context, const FilesWritten& result, const char* key, const std::string& summary)
{
    for (const auto& failure : result.failures)
        context.fail(failure.message);
    if (!result.fault.empty())
        context.fail(result.fault);
    if (context.options().json)
        context.print(fmt::format(R"({{"{}":{},"failed":{}}})", key, result.done, result.failures.size()));
    else if (!result.stopped)
        context.print(summary);
    return context.finish(result.done, result.stopped ? Ended::early : Ended::whole);
}

std::string infoJSON(const PhotoExifInfo& info)
{
    JsonWriter json;
    json.beginObject();
    json.member("camera", info.camera);
    json.member("lens", info.lens);
    json.member("exposure", info.exposure);
    json.member("aperture", info.aperture);
    json.member("focalLength", info.focalLength);
    json.member("captureDate", info.captureDate);
    json.member("captureTimestamp", info.captureTimestamp);
    json.member("pixelSize", info.pixelSize);
    if (info.coordinate) {
        json.key("coordinate");
        json.beginObject();
        json.member("latitude", info.coordinate->latitude);
        json.member("longitude", info.coordinate->longitude);
        json.endObject();
    }
    json.member("isoValue", info.isoValue);
    json.member("focalValue", info.focalValue);
    json.member("apertureValue", info.apertureValue);
    json.member("shutterSeconds", info.shutterSeconds);
    json.endObject();
    return json.take();
}

std::string infoText(const PhotoExifInfo& info)
{
    std::string text;
    const auto line = [&](std::string_view label, const std::optional<std::string>& value) {
        if (value)
            text += fmt::format("{}{:<14}{}", text.empty() ? "" : "\n", label, *value);
    };
    line("camera", info.camera);
    line("lens", info.lens);
    line("exposure", info.exposure);
    line("aperture", info.aperture);
    if (info.isoValue)
        line("sensitivity", fmt::format("ISO {}", *info.isoValue));
    line("focal length", info.focalLength);
    line("captured", info.captureDate);
    line("size", info.pixelSize);
    if (info.coordinate)
        line("position", fmt::format("{:.6f} {:.6f}", info.coordinate->latitude, info.coordinate->longitude));
    return text;
}

/// Reads all that is not read yet, and returns how many files that were.
std::size_t readAll(Context& context, Backfill kind)
{
    Progress progress(kind == Backfill::camera ? "Reading" : "Locating", context.progressMode());
    std::size_t read = 0;
    BackfillBatch batch;
    for (PhotoID last = 0; !batch.isLast && !context.isStopped();) {
        batch = readBatch(context.library(), kind, last, context.stop());
        if (batch.photos.empty())
            break;
        last = batch.photos.back();
        read += batch.photos.size();
        progress.setDone(read);
    }
    return read;
}

} // namespace

ExitCode infoCommand(Context& context, const std::filesystem::path& file)
{
    const auto info = readFileMetadata(file).exif;
    if (info == PhotoExifInfo())
        throw std::runtime_error(file.string() + " holds no camera data that Korvo can read");
    context.print(context.options().json ? infoJSON(info) : infoText(info));
    return ExitCode::done;
}

ExitCode readCommand(Context& context)
{
    const auto camera = readAll(context, Backfill::camera), positions = readAll(context, Backfill::positions);
    context.print(context.options().json ? fmt::format(R"({{"camera":{},"positions":{}}})", camera, positions)
                                         : fmt::format("Camera data of {} and positions of {} read.",
                                             counted(camera, "photo"), counted(positions, "photo")));
    return context.finish(1);
}

ExitCode shiftDatesCommand(Context& context, double seconds, const PhotoArguments& arguments)
{
    constexpr double longest = 1e11; // more years than a date can have
    if (!(std::abs(seconds) < longest))
        throw std::invalid_argument("dates cannot be moved that far");
    const auto ids = context.photos(arguments);
    const auto result
        = withProgress(context, "Shifting", [&](const ExifTool& tool, const FileProgress& progress) {
              return shiftDates(context.library(), ids, seconds, tool, context.stop(), progress);
          });
    return report(context, result, "shifted", "Moved the dates of " + counted(result.done, "photo") + ".");
}

ExitCode locateCommand(
    Context& context, const std::optional<Coordinate>& position, const PhotoArguments& arguments)
{
    if (position && !(std::abs(position->latitude) <= 90 && std::abs(position->longitude) <= 180))
        throw std::invalid_argument("a latitude is from -90 to 90, a longitude from -180 to 180 degrees");
    const auto ids = context.photos(arguments);
    const auto result
        = withProgress(context, "Locating", [&](const ExifTool& tool, const FileProgress& progress) {
              return setLocation(context.library(), ids, position, tool, context.stop(), progress);
          });
    return report(context, result, "located",
        (position ? "Located " : "Took the position from ") + counted(result.done, "photo") + ".");
}

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
    if (allInApertureLibraries(catalog, ids))
        throw RevertRefused(RevertRefused::Case::apertureOriginals);
    const auto result
        = withProgress(context, "Reverting", [&](const ExifTool& tool, const FileProgress& progress) {
              return revertMetadata(catalog, ids, tool, context.stop(), progress);
          });
    return report(context, result, "reverted", revertSummary(result));
}

} // namespace korvo
