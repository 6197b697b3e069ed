#include "app/pictures/LiveRenders.h"

#include "app/pictures/PhotoRender.h"
#include "edits/BasicFilters.h"
#include "edits/DisabledBricks.h"
#include "edits/Geometry.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace korvo {

/// Under the mutex.
struct LiveSlot {
    LiveJob job;
    LiveRenders::Done done;
};

namespace {

/// Whether the picture is shown just as it was decoded.
bool isUntouched(const LiveJob& job, const Bitmap& image)
{
    const auto edits = withoutDisabledBricks(job.edits);
    return basicFilters(edits).empty() && geometryOf(edits).isIdentity()
        && (job.size == 0 || std::max(image.width, image.height) <= job.size);
}

} // namespace

LivePicture livePicture(const LiveJob& job)
{
    LivePicture result;
    const auto* const bitmap = std::get_if<Bitmap>(&job.photo->image.pixels);
    if (bitmap && isUntouched(job, *bitmap))
        result.image = {job.photo, bitmap};
    else
        result.image = std::make_shared<const Bitmap>(renderDecoded(job.photo->image, job.edits, job.size));
    result.histogram = histogram(*result.image);
    result.isOpaque = isOpaque(*result.image);
    std::tie(result.fullWidth, result.fullHeight)
        = sizeWith(geometryOf(job.edits), job.photo->image.fullWidth, job.photo->image.fullHeight);
    return result;
}

LiveRenders::LiveRenders(MainThread& main) : main_(main)
{
    worker_ = std::jthread([this](const std::stop_token& stop) { work(stop); });
}

LiveRenders::~LiveRenders() = default;

LiveRenders::Slot LiveRenders::slot()
{
    return std::make_shared<LiveSlot>();
}

void LiveRenders::render(const Slot& slot, LiveJob job, Done done)
{
    main_.assertCurrent();
    {
        const std::scoped_lock lock(mutex_);
        *slot = {std::move(job), std::move(done)};
        if (std::ranges::none_of(waiting_, [&](const auto& other) { return other.lock() == slot; })) {
            waiting_.push_back(slot);
            ++*toCome_;
        }
    }
    asked_.notify_one();
}

std::weak_ptr<LiveSlot> LiveRenders::next(const std::stop_token& stop, LiveSlot& taken)
{
    std::unique_lock lock(mutex_);
    asked_.wait(lock, stop, [this] { return !waiting_.empty(); });
    if (stop.stop_requested())
        return {};
    const auto place = waiting_.front();
    waiting_.pop_front();
    if (const auto slot = place.lock())
        taken = std::exchange(*slot, {});
    return place;
}

void LiveRenders::work(const std::stop_token& stop)
{
    while (!stop.stop_requested()) {
        LiveSlot taken;
        const auto place = next(stop, taken);
        if (!taken.done) { // the view has gone meanwhile
            --*toCome_;
            continue;
        }
        LivePicture picture;
        try {
            picture = livePicture(taken.job);
        } catch (const std::bad_alloc&) { // the view keeps what it shows
        }
        main_.post([place, done = std::move(taken.done), shown = std::move(picture), toCome = toCome_] {
            --*toCome;
            if (place.lock())
                done(shown);
        });
    }
}

} // namespace korvo
