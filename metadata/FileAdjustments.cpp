#include "metadata/FileAdjustments.h"

#include "metadata/CameraFacts.h"
#include "metadata/ExifReader.h"
#include "metadata/MetadataFiles.h"

namespace korvo {

namespace {

namespace fs = std::filesystem;

/// Changes one file and keeps its new date and size, unless somebody else had changed it before.
void adjust(Catalog& catalog, const FileRecord& record, const RunExifTool& run,
    const ChangeArguments& arguments, const std::stop_token& stop)
{
    const bool known = isAsKnown(record);
    changeFile(run, record.path, arguments, stop);
    if (!known)
        return;
    const auto state = fileState(record.path);
    catalog.fileChanged(record.id, state.date, state.size);
}

/// Changes the files one by one. What is done twice to a file would be wrong here, so that each call is a
/// process of its own.
FilesWritten adjustFiles(Catalog& catalog, std::span<const PhotoID> photos, const ExifTool& tool,
    const ChangeArguments& arguments, const std::stop_token& stop, const FileProgress& progress)
{
    FilesWritten result;
    const RunExifTool run = [&](const ExifToolArguments& call) { return tool.run(call, stop); };
    const auto fail = [&](const FileRecord& record, const std::string& reason) {
        result.failures.push_back({record.id, record.path.string() + ": " + reason});
    };
    for (std::size_t i = 0; i < photos.size() && !stop.stop_requested(); ++i) {
        progress(i + 1, photos.size());
        const auto record = catalog.fileRecord(photos[i]);
        if (!record)
            continue;
        try {
            if (mayBeWritten(record->path))
                adjust(catalog, *record, run, arguments, stop);
            ++result.done;
        } catch (const ExifToolError& error) {
            fail(*record, error.what());
        } catch (const fs::filesystem_error& error) {
            fail(*record, error.code().message());
        }
    }
    result.touched.assign(photos.begin(), photos.end());
    result.stopped = stop.stop_requested();
    return result;
}

} // namespace

FilesWritten shiftDates(Catalog& catalog, std::span<const PhotoID> photos, double seconds,
    const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress)
{
    (void)tool.path(); // before anything is done
    const auto ids = catalog.mastersOf(photos);
    {
        Transaction transaction(catalog.database());
        for (const PhotoID id : ids) {
            if (!catalog.isCaptureDateRead(id))
                catalog.storeCameraData(
                    id, cameraData(readExif(catalog.fileRecord(id).value().path).value_or(PhotoExifInfo())));
            catalog.shiftCaptureDate(id, seconds);
        }
        transaction.commit();
    }
    return adjustFiles(
        catalog, ids, tool, [&](const fs::path& file) { return shiftDatesArguments(seconds, file); }, stop,
        progress);
}

FilesWritten setLocation(Catalog& catalog, std::span<const PhotoID> photos,
    const std::optional<Coordinate>& position, const ExifTool& tool, const std::stop_token& stop,
    const FileProgress& progress)
{
    (void)tool.path();
    const auto ids = catalog.mastersOf(photos);
    {
        Transaction transaction(catalog.database());
        for (const PhotoID id : ids)
            catalog.setUserPosition(id, position ? std::optional(position->latitude) : std::nullopt,
                position ? std::optional(position->longitude) : std::nullopt);
        transaction.commit();
    }
    return adjustFiles(
        catalog, ids, tool,
        [&](const fs::path& file) {
            return position ? writeGPSArguments(*position, file) : stripGPSArguments(file);
        },
        stop, progress);
}

} // namespace korvo
