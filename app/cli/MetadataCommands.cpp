#include "app/SystemTools.h"
#include "app/cli/Commands.h"
#include "base/Text.h"
#include "base/UserError.h"
#include "metadata/Backfill.h"
#include "metadata/DatesAndPlaces.h"
#include "metadata/DescriptiveReader.h"
#include "metadata/FileWorkTexts.h"
#include "metadata/MetadataSave.h"
#include "metadata/MetadataWriteBack.h"

#include <fmt/format.h>

#include <cmath>
#include <stdexcept>

namespace korvo {

namespace {

using Work = std::function<FilesWritten(const ExifTool&, const FileProgress&)>;

/// Runs work on files with a bar for its progress.
FilesWritten withProgress(const Context& context, const char* verb, const Work& work)
{
    const SystemTools tools;
    Progress progress(verb, context.progressMode());
    return work(tools.exifTool, [&](std::size_t number, std::size_t total) {
        progress.setTotal(total);
        progress.setDone(number);
    });
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

void printInfo(Context& context, const std::string& file)
{
    const auto info = readFileMetadata(file).exif;
    if (info == PhotoExifInfo())
        throw std::runtime_error(file + " holds no camera data that Korvo can read");
    context.print(info, infoText(info));
}

struct ReadCounts {
    std::size_t camera, positions;
};
KORVO_RECORD(ReadCounts, camera, positions)

ExitCode readFiles(Context& context)
{
    const auto camera = readAll(context, Backfill::camera), positions = readAll(context, Backfill::positions);
    context.print(ReadCounts{camera, positions},
        fmt::format("Camera data of {} and positions of {} read.", counted(camera, "photo"),
            counted(positions, "photo")));
    return context.finish(1);
}

struct ShiftArguments {
    double seconds = 0;
    PhotoArguments photos;
};

void addShiftArguments(CLI::App& sub, ShiftArguments& arguments)
{
    sub.add_option("SECONDS", arguments.seconds, "how far; negative is earlier")->required();
    addPhotos(sub, arguments.photos);
}

ExitCode shiftPhotoDates(Context& context, const ShiftArguments& arguments)
{
    constexpr double longest = 1e11; // more years than a date can have
    if (!(std::abs(arguments.seconds) < longest))
        throw std::invalid_argument("dates cannot be moved that far");
    const auto ids = context.photos(arguments.photos);
    const auto result
        = withProgress(context, "Shifting", [&](const ExifTool& tool, const FileProgress& progress) {
              return correctPhotos(context.library(), ids, dateShiftBy(context.library(), arguments.seconds),
                  tool, context.stop(), progress);
          });
    return report(context, result, "shifted", shiftSummary(result));
}

struct LocateArguments {
    bool clear = false;
    PhotoArguments photos; // latitude and longitude stand before the ids unless it is cleared
};

void addLocateArguments(CLI::App& sub, LocateArguments& arguments)
{
    sub.add_flag("--clear", arguments.clear, "take the position away");
    addPhotos(sub, arguments.photos);
}

/// Takes latitude and longitude from the front of the ids.
Coordinate takePosition(PhotoArguments& photos)
{
    double numbers[2]{};
    for (double& number : numbers) {
        if (photos.ids.empty() || !CLI::detail::lexical_cast(photos.ids.front(), number))
            throw std::invalid_argument("a position is a latitude and a longitude in degrees");
        photos.ids.erase(photos.ids.begin());
    }
    if (photos.ids.empty() && photos.source.empty())
        throw std::invalid_argument("no photos to locate");
    if (!(std::abs(numbers[0]) <= 90 && std::abs(numbers[1]) <= 180))
        throw std::invalid_argument("a latitude is from -90 to 90, a longitude from -180 to 180 degrees");
    return {numbers[0], numbers[1]};
}

ExitCode locate(Context& context, LocateArguments arguments)
{
    const auto position = arguments.clear ? std::nullopt : std::optional(takePosition(arguments.photos));
    const auto ids = context.photos(arguments.photos);
    const auto result
        = withProgress(context, "Locating", [&](const ExifTool& tool, const FileProgress& progress) {
              return correctPhotos(context.library(), ids, positionChangeTo(context.library(), position),
                  tool, context.stop(), progress);
          });
    return report(context, result, "located", positionSummary(result, position));
}

ExitCode saveFields(Context& context)
{
    auto& catalog = context.library();
    const auto result
        = withProgress(context, "Saving", [&](const ExifTool& tool, const FileProgress& progress) {
              return saveMetadata(catalog, tool, context.stop(), progress);
          });
    return report(context, result, "saved", saveSummary(result));
}

ExitCode revertFields(Context& context, const PhotoArguments& photos)
{
    const auto ids = context.photos(photos);
    auto& catalog = context.library();
    requireRevertible(catalog, ids);
    const auto result
        = withProgress(context, "Reverting", [&](const ExifTool& tool, const FileProgress& progress) {
              return revertMetadata(catalog, ids, tool, context.stop(), progress);
          });
    return report(context, result, "reverted", revertSummary(result));
}

} // namespace

void addMetadataCommands(const Commands& app)
{
    app.add<std::string>(
        "info", "what a file itself says of how it was taken",
        [](CLI::App& sub, std::string& file) { sub.add_option("FILE", file, "the file")->required(); },
        printInfo);
    app.add("read", "read camera data and positions of files not read yet", readFiles);
    app.add("save", "write changed metadata into the files", saveFields);
    app.add<PhotoArguments>(
        "revert", "metadata back to what the files held when found", addPhotos, revertFields);
    app.add<ShiftArguments>("shift-dates", "move capture dates, in the library and in the files",
        addShiftArguments, shiftPhotoDates);
    app.add<LocateArguments>(
        "locate", "say where photos were taken: LAT LON ID..., or --clear ID...", addLocateArguments, locate);
}

} // namespace korvo
