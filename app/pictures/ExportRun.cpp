#include "app/pictures/ExportRun.h"

#include "base/PathFailure.h"
#include "imports/Naming.h"
#include "platform/FileSync.h"

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// The first of name, name-2, name-3 that nothing has.
fs::path freePlace(const PhotoItem& photo, const ExportPlan& plan, std::size_t index, std::size_t total)
{
    const auto ending = endingOf(plan.format);
    for (int number = 1;; ++number) {
        const auto suffix = (number == 1 ? "" : "-" + std::to_string(number)) + std::string(ending);
        const auto base = baseName(photo, plan.pattern, index, total, longestFileName - suffix.size());
        const auto place = plan.folder / (base + suffix);
        std::error_code unknown; // what cannot be looked at cannot be written either, which says more
        if (!fs::exists(fs::symlink_status(place, unknown)))
            return place;
    }
}

std::string sentence(const PhotoItem& photo, std::string_view what)
{
    const bool namesIt = what.find(photo.path().native()) != what.npos;
    return namesIt ? std::string(what) : sentenceOf({photo.path(), std::string(what)});
}

class Run {
public:
    Run(const ExportTools& tools, const ExportPlan& plan, const std::stop_token& stop)
        : tools_(tools), plan_(plan), stop_(stop)
    { }

    void write(const PhotoItem& photo, std::size_t index, std::size_t total)
    try {
        const RenderJob render{photo.path(), photo.edits(), plan_.size};
        const auto place = [&] { return freePlace(photo, plan_, index, total); };
        const ExportJob job{render, place(), plan_.quality, exportedPosition(photo, plan_.position), place};
        const auto isOriginal = [&](const fs::path& file) { return tools_.catalog.isOriginal(file); };
        const auto done = exportPhoto(tools_.reader, tools_.exifTool, job, isOriginal, stop_);
        ++result.written;
        if (!done.note.empty())
            result.failures.push_back(sentence(photo, "exported, but " + done.note));
        if (done.exifFailure)
            result.failures.push_back(
                sentence(photo, "exported, but the camera's EXIF could not be kept: " + *done.exifFailure));
    } catch (const std::exception& error) {
        if (!stop_.stop_requested())
            result.failures.push_back(sentence(photo, error.what()));
    }

    ExportResult result;

private:
    const ExportTools& tools_;
    const ExportPlan& plan_;
    const std::stop_token& stop_;
};

} // namespace

ExportResult runExport(const ExportTools& tools, std::span<const PhotoItem> photos, const ExportPlan& plan,
    const std::stop_token& stop, const std::function<void(std::size_t)>& progress)
{
    makeFolders(plan.folder);
    removeUnfinishedExports(plan.folder);
    Run run(tools, plan, stop);
    for (std::size_t i = 0; i < photos.size() && !stop.stop_requested(); ++i) {
        run.write(photos[i], i + 1, photos.size());
        progress(i + 1);
    }
    run.result.cancelled = stop.stop_requested();
    return std::move(run.result);
}

} // namespace korvo
