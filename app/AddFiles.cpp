#include "app/AddFiles.h"

#include "base/UserError.h"
#include "catalog/FolderScan.h"
#include "catalog/UnreadPhotos.h"
#include "metadata/CameraFacts.h"
#include "metadata/MetadataError.h"

#include <tbb/parallel_pipeline.h>

#include <map>
#include <memory>
#include <thread>

namespace korvo {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t batchSize = 256;

/// One file on its way into the catalog.
struct NewFile {
    ScannedFile file;
    NewPhoto photo;
    std::string failure; // why it is left out or taken in unread; else empty
    bool wasUnread = false; // the catalog has it, but it could not be read when it was added
};

using Batch = std::vector<NewFile>;

/// The steps of one run. Scanning and storing each go through the batches one after the other, in the order
/// of the scan; reading happens to several batches at once.
class AddRun {
public:
    AddRun(Catalog& catalog, std::span<const fs::path> paths, const Clock& clock, ReadCameraData mode,
        const std::stop_token& stop, const AddProgress& progress)
        : catalog_(catalog), scan_(paths), clock_(clock), mode_(mode), stop_(stop), progress_(progress)
    { }

    AddResult run()
    {
        try {
            pass();
        } catch (const std::exception& error) { // what is kept by then can be told, and undone
            result_.broken = textForUser(error);
        }
        result_.ignored = scan_.ignored();
        return std::move(result_);
    }

private:
    void pass()
    {
        tbb::parallel_pipeline(batches_.size(),
            tbb::make_filter<void, Batch*>(tbb::filter_mode::serial_in_order,
                [this](tbb::flow_control& flow) {
                    Batch& batch = scanBatch();
                    if (batch.empty())
                        flow.stop();
                    return &batch;
                })
                & tbb::make_filter<Batch*, Batch*>(tbb::filter_mode::parallel,
                    [this](Batch* batch) {
                        for (NewFile& candidate : *batch)
                            read(candidate);
                        return batch;
                    })
                & tbb::make_filter<Batch*, void>(
                    tbb::filter_mode::serial_in_order, [this](Batch* batch) { store(*batch); }));
    }

    Batch& scanBatch()
    {
        Batch& batch = batches_[scanned_++ % batches_.size()];
        batch.clear();
        while (batch.size() < batchSize && !result_.cancelled) {
            auto file = scan_.next();
            if (!file)
                break;
            if (stop_.stop_requested())
                result_.cancelled = true;
            else
                batch.push_back({.file = std::move(*file)});
        }
        return batch;
    }

    void read(NewFile& candidate) const
    {
        if (!candidate.file.failure.empty()) {
            candidate.failure = candidate.file.failure;
            return;
        }
        candidate.photo.path = candidate.file.path.native();
        try {
            candidate.photo.fileSize = static_cast<std::int64_t>(fs::file_size(candidate.file.path));
            candidate.photo.fileDate = modificationTime(candidate.file.path);
            const auto held = heldFile(catalog_, candidate.photo.path);
            candidate.wasUnread = held == HeldFile::unread;
            if (held == HeldFile::read)
                return;
            if (candidate.photo.fileSize == 0)
                candidate.failure = "the file is empty";
            if (mode_ == ReadCameraData::now)
                readInto(candidate.photo, candidate.file.path);
            else
                candidate.photo.metadata = photoMetadata(readDescriptive(candidate.file.path));
        } catch (const fs::filesystem_error& error) { // it has gone since it was scanned
            candidate.failure = error.code().message();
            candidate.photo.path.clear();
        } catch (const MetadataError& error) { // if it is there, it is taken in unread
            candidate.photo.fileSize.reset();
            if (std::error_code unknown; !fs::exists(candidate.file.path, unknown))
                candidate.photo.path.clear(); // known unread it would never be read when its disk comes back
            candidate.failure = error.reason();
        }
    }

    void store(Batch& batch)
    {
        for (const NewFile& candidate : batch)
            if (!candidate.failure.empty())
                result_.failures.push_back({candidate.file.path, candidate.failure});
        const auto kept = keep(batch);
        result_.add(kept);
        result_.added += kept.added;
        result_.known += kept.known;
        result_.met.insert(result_.met.end(), kept.met.begin(), kept.met.end());
        done_ += batch.size();
        progress_(done_);
    }

    /// Nothing of the batch is in the library when this throws.
    AddResult keep(Batch& batch)
    {
        AddResult kept;
        std::vector<NewPhoto> photos;
        std::vector<const NewFile*> sources;
        Transaction transaction(catalog_.database());
        for (NewFile& candidate : batch) {
            if (candidate.photo.path.empty())
                continue;
            candidate.photo.addedAt = clock_.now();
            candidate.photo.folderID = folderOf(candidate.file, kept);
            photos.push_back(std::move(candidate.photo));
            sources.push_back(&candidate);
        }
        const auto added = catalog_.addPhotos(photos);
        for (std::size_t i = 0; i < added.size(); ++i) {
            ++(added[i].isNew ? kept.added : kept.known);
            kept.met.push_back(added[i].id);
            if (added[i].isNew)
                kept.photos.push_back(added[i].id);
            if (!added[i].isNew && sources[i]->wasUnread && photos[i].fileSize)
                storeLateReading(catalog_, added[i].id, photos[i]);
        }
        transaction.commit();
        return kept;
    }

    std::optional<std::int64_t> folderOf(const ScannedFile& file, AddedRows& kept)
    {
        if (file.added.empty())
            return catalog_.folderContaining(file.path.native());
        const auto [entry, isFirst] = folders_.try_emplace(file.added.native(), 0);
        if (isFirst) {
            const auto [id, isNew] = catalog_.addFolder(file.added.native(), clock_.now());
            entry->second = id;
            if (isNew)
                kept.folders.push_back(id);
        }
        return entry->second;
    }

    Catalog& catalog_;
    FolderScan scan_;
    const Clock& clock_;
    ReadCameraData mode_;
    const std::stop_token& stop_;
    const AddProgress& progress_;
    std::map<std::string, std::int64_t> folders_;
    AddResult result_;
    std::size_t done_ = 0;
    /// Those under way, in turn: the pipeline starts none before the one as many before it is stored. It
    /// would leak batches of its own when storing throws.
    std::vector<Batch> batches_{2 * std::max<std::size_t>(1, std::thread::hardware_concurrency())};
    std::size_t scanned_ = 0;
};

} // namespace

AddResult addFiles(Catalog& catalog, std::span<const fs::path> paths, const Clock& clock,
    ReadCameraData cameraData, const std::stop_token& stop, const AddProgress& progress)
{
    return AddRun(catalog, paths, clock, cameraData, stop, progress).run();
}

} // namespace korvo
