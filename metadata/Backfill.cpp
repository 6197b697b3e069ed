#include "metadata/Backfill.h"

#include "catalog/sql/DatabaseError.h"
#include "metadata/CameraFacts.h"
#include "metadata/ExifReader.h"
#include "platform/ThreadPriority.h"

#include <functional>
#include <utility>

namespace korvo {

namespace {

using Store = std::function<void()>;

constexpr std::int64_t cameraBatch = 100;
constexpr std::int64_t positionBatch = 200;

Store readCamera(Catalog& catalog, PhotoID id, const std::string& path)
{
    return [&catalog, id, data = cameraData(readExif(path).value_or(PhotoExifInfo()))] {
        catalog.storeCameraData(id, data);
    };
}

Store readPosition(Catalog& catalog, PhotoID id, const std::string& path)
{
    return [&catalog, id, position = readGPS(path)] {
        catalog.storeReadPosition(id, position ? std::optional(position->latitude) : std::nullopt,
            position ? std::optional(position->longitude) : std::nullopt);
    };
}

} // namespace

BackfillBatch readBatch(Catalog& catalog, Backfill kind, PhotoID after, const std::stop_token& stop)
{
    const auto camera = kind == Backfill::camera;
    const auto limit = camera ? cameraBatch : positionBatch;
    const auto waiting = camera ? catalog.photosToRead(limit, after) : catalog.photosToLocate(limit, after);
    BackfillBatch batch{.isLast = waiting.size() < static_cast<std::size_t>(limit)};
    std::vector<Store> stores;
    for (const auto& [id, path] : waiting) {
        if (stop.stop_requested())
            break;
        stores.push_back(camera ? readCamera(catalog, id, path) : readPosition(catalog, id, path));
        batch.photos.push_back(id);
    }
    Transaction transaction(catalog.database()); // begun only now, since files may be slow
    for (const auto& store : stores)
        store();
    transaction.commit();
    return batch;
}

void Backfills::start(Run& run, Backfill kind)
{
    main_.assertCurrent();
    if (run.running) {
        run.again = true; // it may be past the place of what is new
        return;
    }
    run.running = true;
    run.task = runInBackground(
        main_, [this, &run, kind, &catalog = store_.catalog()](const Task::Context& context) {
            giveWayToOthers();
            try {
                BackfillBatch batch;
                for (PhotoID last = 0; !batch.isLast && !context.stopRequested();) {
                    batch = readBatch(catalog, kind, last, context.stopToken());
                    if (batch.photos.empty())
                        break;
                    last = batch.photos.back();
                    context.deliver(
                        [this, ids = catalog.withVersions(batch.photos)] { store_.photosChanged(ids); });
                }
            } catch (const DatabaseError&) {
                // What is not read stays marked so, and the next run tries again.
            }
            context.deliver([this, &run, kind] {
                run.running = false;
                if (std::exchange(run.again, false))
                    start(run, kind);
            });
        });
}

} // namespace korvo
