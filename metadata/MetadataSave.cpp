#include "metadata/MetadataSave.h"

#include "base/Json.h"
#include "metadata/KeptExifTool.h"
#include "metadata/MetadataFiles.h"

#include <algorithm>
#include <unordered_set>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// So many files are read before the first of them is written: few enough that work begins soon.
constexpr std::size_t filesPerRead = 500;
/// Up to here a process for each file costs less than it would take to see through another way.
constexpr std::size_t mostSingleCalls = 3;

/// The steps of one save or revert over some masters.
class Writing {
public:
    Writing(Catalog& catalog, const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress,
        std::size_t files)
        : catalog_(catalog), stop_(stop), progress_(progress), total_(files), kept_(tool),
          run_([this, &tool, files](const ExifToolArguments& arguments) {
              return files > mostSingleCalls ? kept_.run(arguments, stop_) : tool.run(arguments, stop_);
          })
    {
        (void)tool.path(); // before anything is done
    }

    FilesWritten save(std::span<const PhotoID> photos)
    {
        while (!photos.empty() && !stop_.stop_requested()) {
            const auto batch = photos.first(std::min(photos.size(), filesPerRead));
            const auto ready = prepare(batch);
            for (const PhotoID id : batch) {
                announce();
                if (ready.contains(id) && !stop_.stop_requested())
                    attempt(id, [&] { saveOne(id); });
            }
            photos = photos.subspan(batch.size());
        }
        return finish();
    }

    FilesWritten revert(std::span<const PhotoID> photos)
    {
        for (const PhotoID id : photos) {
            if (stop_.stop_requested())
                break;
            announce();
            attempt(id, [&] { revertOne(id); });
        }
        return finish();
    }

private:
    void announce()
    {
        if (!stop_.stop_requested())
            progress_(++number_, total_);
    }

    void fail(const FileRecord& record, const std::string& reason)
    {
        result_.failures.push_back({record.id, record.path.string() + ": " + reason});
    }

    /// A file that cannot be worked on is counted, and the others go on.
    template <typename Work>
    void attempt(PhotoID id, Work work)
    {
        const auto record = catalog_.fileRecord(id);
        if (!record) // it was removed meanwhile
            return;
        result_.touched.push_back(id);
        try {
            work();
        } catch (const ExifToolError& error) {
            if (!stop_.stop_requested()) // else it is we who ended the tool
                fail(*record, error.what());
        } catch (const NotFoundError&) {
            // It was removed meanwhile.
        } catch (const fs::filesystem_error& error) {
            fail(*record, error.code().message());
        } catch (const JsonError& error) {
            fail(
                *record, std::string("what the file held when it was found cannot be read: ") + error.what());
        }
    }

    FilesWritten finish()
    {
        std::sort(result_.touched.begin(), result_.touched.end());
        result_.touched.erase(
            std::unique(result_.touched.begin(), result_.touched.end()), result_.touched.end());
        result_.stopped = stop_.stop_requested();
        return std::move(result_);
    }

    /// Keeps what the files hold that are about to be written for the first time, and completes what the
    /// catalog holds of those that have changed. Returns the photos that may be written now.
    std::unordered_set<PhotoID> prepare(std::span<const PhotoID> batch)
    {
        std::unordered_set<PhotoID> ready;
        std::vector<FileRecord> unread;
        for (const PhotoID id : batch)
            attempt(id, [&] {
                auto record = catalog_.fileRecord(id).value();
                if (record.backup.empty() || !isAsKnown(record))
                    unread.push_back(std::move(record));
                else
                    ready.insert(id);
            });
        std::vector<fs::path> files;
        for (const auto& record : unread)
            files.push_back(record.path);
        const auto found = readFields(run_, files, stop_);
        Transaction transaction(catalog_.database());
        for (std::size_t i = 0; i < found.size(); ++i)
            attempt(unread[i].id, [&] {
                if (!found[i].fields)
                    throw ExifToolError::failed(found[i].failure);
                keep(unread[i], *found[i].fields);
                ready.insert(unread[i].id);
            });
        transaction.commit();
        return ready;
    }

    void keep(const FileRecord& before, const PhotoMetadata& inFile)
    {
        catalog_.storeMetadataBackup(before.id, toJson(inFile));
        if (isAsKnown(before))
            return;
        const auto current = catalog_.fileRecord(before.id).value().metadata;
        if (const auto completed = completedFrom(current, inFile); completed != current)
            catalog_.setMetadata(before.id, completed, WriteBack::pending);
    }

    void saveOne(PhotoID id)
    {
        const auto record = catalog_.fileRecord(id);
        if (!record || !record->dirty)
            return;
        write(*record, record->metadata);
    }

    void write(const FileRecord& record, const PhotoMetadata& metadata)
    {
        changeFile(
            run_, record.path, [&](const fs::path& file) { return writeArguments(metadata, file); }, stop_);
        const auto state = fileState(record.path);
        catalog_.metadataWritten(record.id, metadata, state.date, state.size);
        ++result_.done;
    }

    void revertOne(PhotoID id)
    {
        const auto record = catalog_.fileRecord(id).value();
        if (record.backup.empty())
            return readAgain(record);
        const auto found = fromJson<PhotoMetadata>(record.backup);
        // It waits until the file is written, so that a failure or a crash leaves it marked.
        catalog_.setMetadata(id, found, WriteBack::pending);
        write(record, found);
    }

    void readAgain(const FileRecord& record)
    {
        const auto state = fileState(record.path);
        const auto found = readFields(run_, std::span(&record.path, 1), stop_);
        if (found.empty() || !found.front().fields)
            throw ExifToolError::failed(found.empty() ? "" : found.front().failure);
        Transaction transaction(catalog_.database());
        catalog_.setMetadata(record.id, *found.front().fields, WriteBack::done);
        catalog_.fileChanged(record.id, state.date, state.size);
        transaction.commit();
        ++result_.done;
    }

    Catalog& catalog_;
    std::stop_token stop_;
    const FileProgress& progress_;
    std::size_t total_;
    std::size_t number_ = 0;
    KeptExifTool kept_;
    RunExifTool run_;
    FilesWritten result_;
};

} // namespace

std::vector<PhotoID> writableMasters(Catalog& catalog, std::span<const PhotoID> photos)
{
    auto masters = catalog.mastersOf(photos);
    std::erase_if(masters, [&](PhotoID id) {
        const auto record = catalog.fileRecord(id);
        return !record || !mayBeWritten(record->path);
    });
    return masters;
}

FilesWritten saveMetadata(
    Catalog& catalog, const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress)
{
    std::vector<PhotoID> dirty;
    for (const auto& item : catalog.dirtyPhotos())
        dirty.push_back(item.id);
    const auto photos = writableMasters(catalog, dirty);
    if (photos.empty())
        return {};
    return Writing(catalog, tool, stop, progress, photos.size()).save(photos);
}

FilesWritten revertMetadata(Catalog& catalog, std::span<const PhotoID> photos, const ExifTool& tool,
    const std::stop_token& stop, const FileProgress& progress)
{
    const auto masters = writableMasters(catalog, photos);
    if (masters.empty())
        return {};
    return Writing(catalog, tool, stop, progress, masters.size()).revert(masters);
}

} // namespace korvo
