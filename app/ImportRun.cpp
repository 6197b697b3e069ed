#include "app/ImportRun.h"

#include "app/ImportBatch.h"
#include "metadata/MetadataError.h"

#include <tbb/global_control.h>
#include <tbb/parallel_pipeline.h>
#include <tbb/task_arena.h>

#include <atomic>
#include <memory>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// While one file is copied, others are flushed and read again; more at a time only make the disk seek.
constexpr int shotsAtATime = 4;

/// The steps of one run. Copying and keeping each go through the shots one after the other, in their order;
/// flushing, reading again and comparing happen to several at once.
class ImportRun {
public:
    ImportRun(Catalog& catalog, FileSource& source, const ImportPlan& plan, const Clock& clock,
        const std::stop_token& stop, const ImportProgress& progress)
        : source_(source), shots_(shots(plan)), folder_(destination(plan)), stop_(stop), progress_(progress),
          batch_(catalog, plan, folder_, shots_.size(), clock, result_)
    { }

    ImportResult run()
    {
        using ShotPointer = std::shared_ptr<ImportedShot>;
        const auto copying = tbb::make_filter<void, ShotPointer>(
            tbb::filter_mode::serial_in_order, [this](tbb::flow_control& flow) {
                auto shot = std::make_shared<ImportedShot>();
                if (next_ == shots_.size() || !copy(*shot))
                    flow.stop();
                return shot;
            });
        const auto checking = tbb::make_filter<ShotPointer, ShotPointer>(
            tbb::filter_mode::parallel, [this](ShotPointer shot) {
                for (ImportedFile& file : shot->files)
                    check(file);
                if (stop_.stop_requested())
                    drop(*shot);
                return shot;
            });
        const auto keeping = tbb::make_filter<ShotPointer, void>(tbb::filter_mode::serial_in_order,
            [this](const ShotPointer& shot) { batch_.add(std::move(*shot)); });
        // Most of the time is spent waiting for disks, so there may be more at work than processors.
        const tbb::global_control threads(tbb::global_control::max_allowed_parallelism, shotsAtATime);
        tbb::task_arena(shotsAtATime).execute([&] {
            tbb::parallel_pipeline(shotsAtATime, copying & checking & keeping);
        });
        batch_.flush();
        result_.cancelled = leftUndone_;
        return std::move(result_);
    }

private:
    static fs::path destination(const ImportPlan& plan)
    {
        if (!plan.copyTo)
            return {};
        fs::create_directories(*plan.copyTo);
        const auto folder = fs::canonical(*plan.copyTo);
        removeHalfWritten(folder);
        return folder;
    }

    /// False when it was stopped.
    bool copy(ImportedShot& shot)
    {
        leftUndone_ = stop_.stop_requested();
        if (leftUndone_)
            return false;
        shot.shot = &shots_[next_++];
        shot.index = next_;
        for (const Shot::File& file : shot.shot->files) {
            if (!file.isSidecar)
                progress_(++begun_);
            if (!copy(shot.files.emplace_back(ImportedFile{.file = &file})))
                return false;
        }
        return true;
    }

    bool copy(ImportedFile& imported)
    {
        const SourceFile& file = imported.file->file;
        try {
            if (file.size == 0)
                throw SourceError("the file is empty");
            if (folder_.empty())
                imported.path = file.path;
            else
                imported.copy = copyInto(folder_, source_, file, stop_);
        } catch (const SourceError& error) {
            imported.failure = error.what();
        } catch (const std::system_error& error) {
            imported.failure = "could not be copied to " + folder_.string() + ": " + error.code().message();
        }
        leftUndone_ = stop_.stop_requested();
        return !leftUndone_;
    }

    void check(ImportedFile& imported) const
    {
        if (!imported.failure.empty())
            return;
        try {
            if (imported.copy && !verify(*imported.copy, stop_))
                return;
            if (!imported.file->isSidecar && (imported.copy || folder_.empty()))
                imported.contents = readContents(imported.copy ? imported.copy->part.path() : imported.path);
        } catch (const MetadataError&) { // it is imported all the same
            imported.failure = "what it says of itself could not be read";
        } catch (const SourceError& error) {
            imported.failure = error.what();
            imported.copy.reset();
        } catch (const std::system_error& error) {
            imported.failure = "could not be copied to " + folder_.string() + ": " + error.code().message();
            imported.copy.reset();
        }
    }

    /// After a stop some of the files may not have been compared.
    void drop(ImportedShot& shot)
    {
        for (ImportedFile& file : shot.files)
            if (file.copy) {
                file.copy.reset();
                leftUndone_ = true;
            }
    }

    FileSource& source_;
    std::vector<Shot> shots_;
    fs::path folder_; // empty when files stay where they are
    const std::stop_token& stop_;
    const ImportProgress& progress_;
    ImportResult result_;
    ImportBatch batch_;
    std::size_t next_ = 0;
    std::size_t begun_ = 0;
    std::atomic<bool> leftUndone_ = false; // by a stop
};

} // namespace

ImportResult runImport(Catalog& catalog, FileSource& source, const ImportPlan& plan, const Clock& clock,
    const std::stop_token& stop, const ImportProgress& progress)
{
    return ImportRun(catalog, source, plan, clock, stop, progress).run();
}

} // namespace korvo
