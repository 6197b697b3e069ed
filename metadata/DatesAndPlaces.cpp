#include "metadata/DatesAndPlaces.h"

#include "base/PathFailure.h"
#include "base/UserError.h"
#include "catalog/sql/DatabaseError.h"
#include "metadata/CameraFacts.h"
#include "metadata/ExifReader.h"
#include "metadata/FileFields.h"
#include "metadata/MetadataError.h"
#include "metadata/PositionInFile.h"
#include "platform/ApertureBundles.h"
#include "platform/FileSync.h"

namespace korvo {

namespace {

namespace fs = std::filesystem;

/// Changes one file and keeps its new date and size, unless somebody else had changed it before.
void changeOne(Catalog& catalog, const FileRecord& record, const RunExifTool& run, const FileChange& change,
    const std::stop_token& stop)
{
    const bool known = isAsKnown(record, fileState(record.path));
    changeFile(run, record.path, change.arguments, stop);
    change.written();
    const auto file = fs::canonical(record.path); // which the tool has replaced
    syncFile(file);
    syncFolder(file.parent_path());
    if (known) {
        const auto state = fileState(record.path);
        catalog.fileChanged(record.id, state.date, state.size);
    }
    change.check(record.path);
}

/// The steps of one correction. What is done twice to a file would be wrong here, so that each call of the
/// tool is a process of its own.
class Correcting {
public:
    Correcting(Catalog& catalog, const PhotoCorrection& correction, const ExifTool& tool,
        const std::stop_token& stop)
        : catalog_(catalog), correction_(correction), stop_(stop),
          run_([&tool, &stop](const ExifToolArguments& call) { return tool.run(call, stop); })
    {
        (void)tool.path(); // before anything is done
    }

    FilesWritten run(std::span<const PhotoID> ids, const FileProgress& progress)
    {
        for (std::size_t i = 0; i < ids.size() && !stop_.stop_requested() && result_.fault.empty(); ++i) {
            progress(i + 1, ids.size());
            attempt(ids[i]);
        }
        result_.stopped = stop_.stop_requested();
        return std::move(result_);
    }

private:
    void attempt(PhotoID id)
    {
        fs::path file;
        const auto sentence = [&](const std::string& reason) {
            return file.empty() ? reason : sentenceOf({file, reason});
        };
        const auto fail = [&](const std::string& reason) {
            result_.failures.push_back({id, sentence(reason)});
        };
        try {
            const auto record = catalog_.fileRecord(id);
            if (!record) // it was removed meanwhile
                return;
            file = record->path;
            correct(*record);
        } catch (const ExifToolError& error) {
            fail(error.what());
            if (error.which() == ExifToolError::Case::notFound) // it vanished, for all others, too
                result_.fault = textForUser(error);
        } catch (const MetadataError& error) {
            fail(error.reason());
        } catch (const DatabaseError& error) { // what is done must be told: doing it again would be wrong
            result_.fault = sentence(textForUser(error));
        } catch (const NotFoundError&) {
            // The same.
        } catch (const std::system_error& error) {
            fail(error.code().message());
        }
    }

    /// The catalog first, so that whatever ends this leaves one photo at most of which catalog and file
    /// differ.
    void correct(const FileRecord& record)
    {
        correction_.inCatalog(record);
        result_.touched.push_back(record.id);
        const auto change = correction_.inFile(record);
        if (change.arguments && !aperture_.hold(record.path))
            changeOne(catalog_, record, run_, change, stop_);
        ++result_.done;
    }

    Catalog& catalog_;
    const PhotoCorrection& correction_;
    const std::stop_token& stop_;
    RunExifTool run_;
    ApertureBundles aperture_;
    FilesWritten result_;
};

} // namespace

PhotoCorrection dateShiftBy(Catalog& catalog, double seconds)
{
    const auto inCatalog = [&catalog, seconds](const FileRecord& record) {
        std::optional<CameraData> unread;
        if (!catalog.isCaptureDateRead(record.id))
            unread = cameraData(readExif(record.path).value_or(PhotoExifInfo()));
        Transaction transaction(catalog.database()); // begun only now, since files may be slow
        if (unread)
            catalog.storeCameraData(record.id, *unread);
        catalog.shiftCaptureDate(record.id, seconds);
        transaction.commit();
    };
    const FileChange change{[seconds](const fs::path& file) {
        return shiftDatesArguments(seconds, file, fileParts(file).value_or(FileParts()));
    }};
    return {inCatalog, [change](const FileRecord&) { return change; }};
}

PhotoCorrection positionChangeTo(Catalog& catalog, const std::optional<Coordinate>& position)
{
    const auto inCatalog = [&catalog, position](const FileRecord& record) {
        catalog.setUserPosition(record.id, position ? std::optional(position->latitude) : std::nullopt,
            position ? std::optional(position->longitude) : std::nullopt);
    };
    const FileChange change{[position](const fs::path& file) { return positionArguments(file, position); },
        [position](const fs::path& file) { checkPosition(file, position); }};
    return {inCatalog, [change](const FileRecord&) { return change; }};
}

FilesWritten correctPhotos(Catalog& catalog, std::span<const PhotoID> photos,
    const PhotoCorrection& correction, const ExifTool& tool, const std::stop_token& stop,
    const FileProgress& progress)
{
    const auto ids = catalog.mastersOf(photos);
    return Correcting(catalog, correction, tool, stop).run(ids, progress);
}

} // namespace korvo
