#include "app/ImportPhotos.h"

#include "platform/linux/LinuxCameras.h"
#include "platform/linux/LinuxVolumes.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace korvo {

namespace {

std::optional<Ejected> eject(
    const ImportResult& result, const ImportSource& source, const std::stop_token& stop)
{
    struct Ejecting {
        std::mutex mutex;
        std::condition_variable_any changed;
        bool ended = false;
        std::optional<Ejected> result;
    };
    const auto ejecting = std::make_shared<Ejecting>();
    std::thread([ejecting, result, source] {
        LinuxVolumes volumes;
        auto ejected = ejectAfter(result, source, volumes);
        const std::lock_guard lock(ejecting->mutex);
        ejecting->result = std::move(ejected);
        ejecting->ended = true;
        ejecting->changed.notify_all();
    }).detach();
    std::unique_lock lock(ejecting->mutex);
    if (!ejecting->changed.wait(lock, stop, [&] { return ejecting->ended; }))
        return Ejected{false, nameOf(source) + " is still being ejected."};
    return ejecting->result;
}

} // namespace

ListedSource listSource(const ImportSource& source, Catalog& catalog, const std::stop_token& stop,
    std::shared_ptr<FileSource> before)
{
    while (source.kind == ImportSource::Kind::camera && before.use_count() > 1 && !stop.stop_requested())
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // a picture is being fetched from it
    before.reset();
    LinuxCameras cameras;
    ListedSource listed{source, openSource(source, cameras), {}};
    listed.listing = listImportable(*listed.files, catalog, stop);
    return listed;
}

PhotosImported importPhotos(Catalog& catalog, const ListedSource& from, const ImportPlan& plan,
    const Clock& clock, const std::stop_token& stop, const ImportProgress& progress)
{
    const auto result = runImport(catalog, *from.files, plan, clock, stop, progress);
    PhotosImported imported{result, countsOf(from.listing, result), failuresOf(from.listing, result),
        std::nullopt, result.cancelled};
    if (plan.eject && !result.cancelled)
        imported.ejected = eject(result, from.source, stop);
    return imported;
}

} // namespace korvo
