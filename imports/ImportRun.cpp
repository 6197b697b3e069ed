#include "imports/ImportRun.h"

#include "base/UserError.h"
#include "imports/ImportBatch.h"
#include "imports/ImportShots.h"
#include "imports/VolumeWatcher.h"
#include "metadata/CameraFacts.h"
#include "metadata/MetadataError.h"

#include <tbb/global_control.h>
#include <tbb/parallel_pipeline.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>

namespace korvo {

namespace {

/// While one file is copied, others are flushed and read again; more at a time only make the disk seek.
constexpr int shotsAtATime = 4;

/// The steps of one run. Copying and keeping each go through the shots one after the other, in their order;
/// ending the writing, flushing, reading again and comparing happen to several at once.
class ImportRun {
public:
    ImportRun(Catalog& catalog, FileSource& source, const ImportPlan& plan, const Clock& clock,
        const std::stop_token& stop, const ImportProgress& progress)
        : source_(source), folder_(destination(plan)), stop_(stop), progress_(progress),
          shots_(shotsToImport(catalog, plan, folder_.path())),
          batch_(catalog, plan, folder_,
              numberShots(catalog, shots_, folder_.path().native() + "\n" + plan.namingPattern), clock,
              result_)
    { }

    ImportResult run()
    {
        using ShotPointer = std::shared_ptr<ImportedShot>;
        const auto copying = tbb::make_filter<void, ShotPointer>(
            tbb::filter_mode::serial_in_order, [this](tbb::flow_control& flow) {
                auto shot = std::make_shared<ImportedShot>();
                if (next_ == shots_.size() || isBroken_ || !copy(*shot))
                    flow.stop();
                return shot;
            });
        const auto checking = tbb::make_filter<ShotPointer, ShotPointer>(
            tbb::filter_mode::parallel, [this](ShotPointer shot) {
                check(*shot);
                return shot;
            });
        const auto keeping = tbb::make_filter<ShotPointer, void>(tbb::filter_mode::serial_in_order,
            [this](const ShotPointer& shot) { unlessBroken([&] { batch_.add(std::move(*shot)); }); });
        // Most of the time is spent waiting for disks, so there may be more at work than processors; others
        // may want more still.
        constexpr auto parallelism = tbb::global_control::max_allowed_parallelism;
        const tbb::global_control threads(
            parallelism, std::max(std::size_t{shotsAtATime}, tbb::global_control::active_value(parallelism)));
        tbb::task_arena(shotsAtATime).execute([&] {
            tbb::parallel_pipeline(shotsAtATime, copying & checking & keeping);
        });
        unlessBroken([this] { batch_.flush(); });
        result_.cancelled = stop_.stop_requested() && (next_ < shots_.size() || isCut_);
        return std::move(result_);
    }

private:
    static ImportFolder destination(const ImportPlan& plan)
    {
        if (!plan.copyTo)
            return {};
        if (plan.card && liesOn(*plan.copyTo, *plan.card))
            throw std::invalid_argument(
                plan.copyTo->string() + " lies on the card itself; choose a folder on another disk");
        return ImportFolder(*plan.copyTo);
    }

    /// What cannot be kept ends the run: the more is copied, the more would stand there unknown.
    template <typename Keep>
    void unlessBroken(Keep keep)
    {
        if (isBroken_)
            return;
        try {
            keep();
        } catch (const std::exception& error) {
            result_.broken = textForUser(error);
            isBroken_ = true;
        }
    }

    /// False when it was stopped.
    bool copy(ImportedShot& shot)
    {
        if (stop_.stop_requested())
            return false;
        shot.shot = &shots_[next_++];
        for (const Shot::File& file : shot.shot->files) {
            if (!file.isSidecar)
                progress_(++begun_);
            copy(shot.files.emplace_back(ImportedFile{.file = &file}));
            if (stop_.stop_requested()) {
                isCut_ = true;
                return false;
            }
        }
        return true;
    }

    void copy(ImportedFile& imported)
    {
        const SourceFile& file = imported.file->file;
        try {
            if (file.size == 0)
                throw SourceError("the file is empty");
            if (folder_) {
                folder_.requireThere();
                imported.copy = copyInto(folder_.path(), source_, file, stop_);
            } else
                imported.path = file.path;
        } catch (const SourceError& error) {
            imported.failure = error.what();
        } catch (const std::system_error& error) {
            imported.failure = notCopied(error);
        }
    }

    /// A shot that a stop left unchecked goes whole.
    void check(ImportedShot& shot)
    {
        for (ImportedFile& file : shot.files)
            if (!check(file)) {
                isCut_ = true;
                shot.files.clear();
                return;
            }
    }

    /// False when it was stopped.
    bool check(ImportedFile& imported) const
    {
        if (!imported.failure.empty())
            return true;
        try {
            if (imported.copy && !finish(*imported.copy, imported.file->file.modified))
                imported.failure = "the copy could not be given the file's time";
            if (imported.copy && !verify(*imported.copy, stop_))
                return false;
            if (!imported.file->isSidecar)
                readInto(imported.photo, imported.copy ? imported.copy->part.path() : imported.path);
        } catch (const MetadataError&) { // it is imported all the same
            imported.failure = "what it says of itself could not be read";
        } catch (const SourceError& error) {
            imported.failure = error.what();
            imported.copy.reset();
        } catch (const std::system_error& error) {
            imported.failure = notCopied(error);
            imported.copy.reset();
        }
        return true;
    }

    std::string notCopied(const std::system_error& error) const
    {
        return "could not be copied to " + folder_.path().string() + ": " + error.code().message();
    }

    FileSource& source_;
    ImportFolder folder_;
    const std::stop_token& stop_;
    const ImportProgress& progress_;
    std::vector<Shot> shots_;
    ImportResult result_;
    ImportBatch batch_;
    std::size_t next_ = 0;
    std::size_t begun_ = 0;
    std::atomic<bool> isCut_ = false; // a shot that was begun was dropped after a stop
    std::atomic<bool> isBroken_ = false;
};

} // namespace

ImportResult runImport(Catalog& catalog, FileSource& source, const ImportPlan& plan, const Clock& clock,
    const std::stop_token& stop, const ImportProgress& progress)
{
    if (plan.project)
        catalog.requireSource({LibrarySource::Kind::project, *plan.project});
    if (plan.files.empty() && (plan.known.empty() || plan.sidecars.empty()))
        return {};
    return ImportRun(catalog, source, plan, clock, stop, progress).run();
}

} // namespace korvo
