#include "metadata/MetadataSave.h"

#include "base/Json.h"
#include "base/PathFailure.h"
#include "base/UserError.h"
#include "catalog/sql/DatabaseError.h"
#include "metadata/CameraFacts.h"
#include "metadata/DescriptiveReader.h"
#include "metadata/FileFields.h"
#include "metadata/MetadataError.h"
#include "metadata/exiftool/KeptExifTool.h"
#include "platform/ApertureBundles.h"
#include "platform/FileSync.h"
#include "platform/PosixFile.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <set>
#include <unordered_map>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// So many files are read before the first of them is written: few enough that work begins soon.
constexpr std::size_t filesPerRead = 500;
/// Up to here a process for each file costs less than it would take to see through another way.
constexpr std::size_t mostSingleCalls = 3;
/// The rows of written files are stored together, since each flush of the catalog to disk costs a tenth of
/// what the tool needs for a small file. A crash leaves those of this time waiting, and they are written once
/// more.
constexpr std::chrono::milliseconds timeBetweenStores(250);

/// Whether the disk has the file's name but does not give out what it holds, as one that was pulled.
bool isUnreadable(const fs::path& file)
{
    const auto opened = openFile(file, O_RDONLY | O_NONBLOCK);
    char byte = 0;
    return (!opened || ::read(opened.descriptor(), &byte, 1) < 0) && errno == EIO;
}

/// What exiftool leaves out when it says that it cannot open a file, or write one beside it.
std::string whyNotWritable(const fs::path& file)
{
    constexpr std::uintmax_t growth = 1 << 20; // more than what is written makes a file grow by
    const auto folder = file.parent_path();
    if (isUnreadable(file) || ::access(folder.c_str(), W_OK) != 0)
        return fmt::format(" ({})", std::generic_category().message(errno));
    std::error_code unknown;
    const auto needed = fs::file_size(file, unknown) + growth;
    const auto space = fs::space(folder, unknown);
    return !unknown && space.available < needed ? " (its disk is full)" : "";
}

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
        return untilFault([&] {
            for (auto rest = photos; !rest.empty() && !stop_.stop_requested();) {
                const auto batch = rest.first(std::min(rest.size(), filesPerRead));
                prepare(batch);
                for (const PhotoID id : batch) {
                    announce();
                    if (seen_.contains(id) && !stop_.stop_requested())
                        attempt(id, [&](const FileRecord& record) { saveOne(record); });
                }
                rest = rest.subspan(batch.size());
            }
        });
    }

    FilesWritten revert(std::span<const PhotoID> photos)
    {
        return untilFault([&] {
            for (std::size_t i = 0; i < photos.size() && !stop_.stop_requested(); ++i) {
                announce();
                attempt(photos[i], [&](const FileRecord& record) { revertOne(record); });
            }
        });
    }

private:
    struct Written {
        PhotoID id;
        PhotoMetadata metadata;
        FileState state;
    };

    void announce()
    {
        if (!stop_.stop_requested())
            progress_(++number_, total_);
    }

    void fail(const FileRecord& record, const std::string& reason)
    {
        result_.failures.push_back({record.id, sentenceOf({record.path, reason})});
    }

    template <typename Work>
    void keepFault(Work work)
    {
        try {
            work();
        } catch (const DatabaseError& error) {
            result_.fault = textForUser(error);
        }
    }

    /// What is written stays written when the catalog fails later.
    template <typename Work>
    FilesWritten untilFault(Work work)
    {
        keepFault(work);
        keepFault([&] { storeWritten(); });
        std::sort(result_.touched.begin(), result_.touched.end());
        result_.touched.erase(
            std::unique(result_.touched.begin(), result_.touched.end()), result_.touched.end());
        result_.stopped = stop_.stop_requested();
        return std::move(result_);
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
            work(*record);
        } catch (const ExifToolError& error) {
            if (!stop_.stop_requested()) // else it is we who ended the tool
                fail(*record, error.what() + whyNotWritable(record->path));
        } catch (const NotFoundError&) {
            // It was removed meanwhile.
        } catch (const std::system_error& error) {
            fail(*record, error.code().message());
        } catch (const MetadataError& error) {
            fail(*record, error.reason());
        } catch (const JsonError& error) {
            fail(
                *record, std::string("what the file held when it was found cannot be read: ") + error.what());
        }
    }

    /// Keeps what the files hold that are about to be written for the first time, and brings the catalog up
    /// to date with those that were changed elsewhere. What may be written then is in `seen_`.
    void prepare(std::span<const PhotoID> batch)
    {
        std::vector<PhotoID> unread;
        std::vector<fs::path> files;
        std::vector<FileState> states; // from before the reading
        for (const PhotoID id : batch)
            attempt(id, [&](const FileRecord& record) {
                const auto state = fileState(record.path);
                if (!record.backup.empty() && isAsKnown(record, state)) {
                    seen_[id] = state;
                    return;
                }
                unread.push_back(id);
                files.push_back(record.path);
                states.push_back(state);
            });
        const auto found = readFields(run_, files, stop_);
        Transaction transaction(catalog_.database());
        for (std::size_t i = 0; i < found.size(); ++i)
            attempt(unread[i], [&](const FileRecord& record) {
                if (!found[i].fields)
                    throw ExifToolError::failed(found[i].failure);
                keep(record, *found[i].fields, states[i]);
                seen_[record.id] = states[i];
            });
        transaction.commit();
    }

    void keep(const FileRecord& record, const PhotoMetadata& inFile, const FileState& state)
    {
        catalog_.storeMetadataBackup(record.id, toJson(inFile));
        const auto merged = mergedWith(inFile, record, state);
        if (!merged) {
            catalog_.metadataSeen(record.id, inFile, state.date, state.size); // the user knows of it now
            throw ExifToolError::failed("was changed by another program as well; "
                                        "saving again replaces what that wrote with what the library holds");
        }
        if (*merged != record.metadata)
            catalog_.setMetadata(record.id, *merged, WriteBack::pending);
    }

    void saveOne(const FileRecord& record)
    {
        if (!record.dirty)
            return;
        if (fileState(record.path) == seen_.at(record.id))
            return write(record, record.metadata);
        seen_.erase(record.id); // another program wrote it while it waited here
        prepare(std::span(&record.id, 1));
        if (const auto merged = catalog_.fileRecord(record.id); merged && seen_.contains(record.id))
            write(*merged, merged->metadata);
    }

    void write(const FileRecord& record, const PhotoMetadata& metadata)
    {
        changeFile(
            run_, record.path, [&](const fs::path& file) { return writeArguments(metadata, file); }, stop_);
        const auto now = std::chrono::steady_clock::now();
        if (written_.empty())
            firstWritten_ = now;
        written_.push_back({record.id, metadata, fileState(record.path)});
        if (now - firstWritten_ >= timeBetweenStores)
            storeWritten();
    }

    /// Of the files that were written those that stay so when the power fails. What is wrong with the others
    /// is told.
    std::vector<Written> flushed()
    {
        std::set<fs::path> folders;
        std::vector<Written> safe;
        for (const auto& written : written_)
            attempt(written.id, [&](const FileRecord& record) {
                const auto file = fs::canonical(record.path); // which the tool has replaced
                syncFile(file);
                if (!folders.contains(file.parent_path()))
                    syncFolder(file.parent_path());
                folders.insert(file.parent_path());
                safe.push_back(written);
            });
        return safe;
    }

    /// From here on the photos that were written wait no longer.
    void storeWritten()
    {
        written_ = flushed();
        if (written_.empty())
            return;
        Transaction transaction(catalog_.database());
        for (const auto& [id, metadata, state] : written_)
            catalog_.metadataWritten(id, metadata, state.date, state.size);
        transaction.commit();
        result_.done += written_.size();
        written_.clear();
    }

    /// A file that holds what was found, as one does that was never written or cannot be, is left as it is.
    void revertOne(const FileRecord& record)
    {
        const auto state = fileState(record.path);
        const auto inFile = photoMetadata(readDescriptive(record.path));
        const auto found = record.backup.empty() ? inFile : fromJson<PhotoMetadata>(record.backup);
        if (inFile != found) { // it waits until the file is written, whatever comes between
            catalog_.setMetadata(record.id, found, WriteBack::pending);
            return write(record, found);
        }
        Transaction transaction(catalog_.database());
        catalog_.setMetadata(record.id, found, WriteBack::done);
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
    std::unordered_map<PhotoID, FileState> seen_; // the files that may be written, as they were looked at
    std::vector<Written> written_; // files whose rows are not stored yet
    std::chrono::steady_clock::time_point firstWritten_; // the first of these
    FilesWritten result_;
};

/// The masters of the photos, each once, whose files may be written.
std::vector<PhotoID> writableMasters(Catalog& catalog, std::span<const PhotoID> photos)
{
    ApertureBundles aperture;
    auto masters = catalog.mastersOf(photos);
    std::erase_if(masters, [&](PhotoID id) {
        const auto record = catalog.fileRecord(id);
        return !record || aperture.hold(record->path);
    });
    return masters;
}

} // namespace

RevertRefused::RevertRefused()
    : std::runtime_error(
        "These are in an Aperture library. Korvo never writes into those originals, so there's "
        "nothing to revert in the files.")
{ }

void requireRevertible(Catalog& catalog, std::span<const PhotoID> photos)
{
    ApertureBundles aperture;
    bool any = false;
    for (const PhotoID id : photos)
        if (const auto record = catalog.fileRecord(catalog.masterOf(id))) {
            if (!aperture.hold(record->path))
                return;
            any = true;
        }
    if (any)
        throw RevertRefused();
}

FilesWritten saveMetadata(
    Catalog& catalog, const ExifTool& tool, const std::stop_token& stop, const FileProgress& progress)
{
    const auto dirty = catalog.dirtyPhotos();
    const auto photos = writableMasters(catalog, dirty);
    std::vector<PhotoID> passedOver;
    std::ranges::set_difference(dirty, photos, std::back_inserter(passedOver));
    for (const PhotoID id : passedOver)
        catalog.clearDirty(id);
    if (photos.empty())
        return {.touched = passedOver};
    auto result = Writing(catalog, tool, stop, progress, photos.size()).save(photos);
    result.touched.insert(result.touched.end(), passedOver.begin(), passedOver.end());
    return result;
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
