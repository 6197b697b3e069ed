#include "metadata/DatesAndPlaces.h"

#include "base/PathFailure.h"
#include "catalog/UserText.h"
#include "catalog/sql/DatabaseError.h"
#include "metadata/CameraFacts.h"
#include "metadata/ExifReader.h"
#include "metadata/FileFields.h"
#include "metadata/PositionInFile.h"
#include "platform/ApertureBundles.h"

namespace korvo {

namespace {

namespace fs = std::filesystem;

/// Changes one file and keeps its new date and size, unless somebody else had changed it before.
void changeOne(Catalog& catalog, const FileRecord& record, const RunExifTool& run, const FileChange& change,
    const std::stop_token& stop)
{
    const bool known = isAsKnown(record, fileState(record.path));
    changeFile(run, record.path, change.arguments, stop);
    if (known) {
        const auto state = fileState(record.path);
        catalog.fileChanged(record.id, state.date, state.size);
    }
    change.check(record.path);
}

/// Changes photo by photo, the catalog first, so that whatever ends this leaves one photo at most of which
/// catalog and file differ. What is done twice to a file would be wrong here, so that each call is a process
/// of its own.
FilesWritten adjust(Catalog& catalog, std::span<const PhotoID> photos,
    const std::function<void(const FileRecord&)>& adjustCatalog, const ExifTool& tool,
    const FileChange& change, const std::stop_token& stop, const FileProgress& progress)
{
    (void)tool.path(); // before anything is done
    FilesWritten result;
    ApertureBundles aperture;
    const RunExifTool run = [&](const ExifToolArguments& call) { return tool.run(call, stop); };
    const auto ids = catalog.mastersOf(photos);
    for (std::size_t i = 0; i < ids.size() && !stop.stop_requested(); ++i) {
        progress(i + 1, ids.size());
        const auto record = catalog.fileRecord(ids[i]);
        if (!record)
            continue;
        const auto fail = [&](const std::string& reason) {
            result.failures.push_back({record->id, sentenceOf({record->path, reason})});
        };
        try {
            adjustCatalog(*record);
            result.touched.push_back(record->id);
            if (!aperture.hold(record->path))
                changeOne(catalog, *record, run, change, stop);
            ++result.done;
        } catch (const ExifToolError& error) {
            fail(error.what());
        } catch (const DatabaseError& error) { // what is done must be told: doing it again would be wrong
            result.fault = sentenceOf({record->path, textForUser(error)});
            break;
        } catch (const NotFoundError&) {
            // It was removed meanwhile.
        } catch (const fs::filesystem_error& error) {
            fail(error.code().message());
        }
    }
    result.stopped = stop.stop_requested();
    return result;
}

} // namespace

FilesWritten shiftDates(Catalog& catalog, std::span<const PhotoID> photos, double seconds,
    const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress)
{
    const auto inCatalog = [&](const FileRecord& record) {
        std::optional<CameraData> unread;
        if (!catalog.isCaptureDateRead(record.id))
            unread = cameraData(readExif(record.path).value_or(PhotoExifInfo()));
        Transaction transaction(catalog.database()); // begun only now, since files may be slow
        if (unread)
            catalog.storeCameraData(record.id, *unread);
        catalog.shiftCaptureDate(record.id, seconds);
        transaction.commit();
    };
    return adjust(catalog, photos, inCatalog, tool, {[&](const fs::path& file) {
        return shiftDatesArguments(seconds, file, fileParts(file).value_or(FileParts()));
    }},
        stop, progress);
}

FilesWritten setLocation(Catalog& catalog, std::span<const PhotoID> photos,
    const std::optional<Coordinate>& position, const ExifTool& tool, const std::stop_token& stop,
    const FileProgress& progress)
{
    const auto inCatalog = [&](const FileRecord& record) {
        catalog.setUserPosition(record.id, position ? std::optional(position->latitude) : std::nullopt,
            position ? std::optional(position->longitude) : std::nullopt);
    };
    const FileChange inFile{[&](const fs::path& file) { return positionArguments(file, position); },
        [&](const fs::path& file) { checkPosition(file, position); }};
    return adjust(catalog, photos, inCatalog, tool, inFile, stop, progress);
}

} // namespace korvo
