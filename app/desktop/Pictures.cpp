#include "app/desktop/Pictures.h"

#include "app/desktop/Texts.h"
#include "base/Json.h"

#include <algorithm>

namespace korvo {

namespace {

/// The size at which a preview for this one is kept; 0 for one that is too large.
int keptSize(int size)
{
    const auto kept = std::ranges::find_if(Previews::sizes, [size](int each) { return each >= size; });
    return size == 0 || kept == Previews::sizes.end() ? 0 : *kept;
}

QImage imageOf(const Bitmap& bitmap)
{
    const QImage view(bitmap.bytes.data(), bitmap.width, bitmap.height,
        static_cast<qsizetype>(bitmap.rowBytes()), QImage::Format_RGBX8888);
    return view.convertToFormat(QImage::Format_RGB32);
}

/// Shrunk to the size, never enlarged.
QImage fitted(QImage image, int size)
{
    if (size == 0 || std::max(image.width(), image.height()) <= size)
        return image;
    return image.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

struct Pictures::Order {
    PictureRequest request;
    Done done; // touched on the main thread only
    std::stop_source stop;
};

PictureRequest pictureOf(const PhotoItem& item, int size, PicturePriority priority)
{
    const auto source = item.hasEdits() ? PictureSource::whole : PictureSource::quick;
    return {item.path(), item.editsJSON, size, source, priority};
}

Pictures::Pictures(MainThread& main, ImageReader& reader, PreviewCache& cache)
    : main_(main), reader_(reader), previews_(reader, cache)
{
    const auto count = std::clamp(std::thread::hardware_concurrency(), 2U, 8U);
    for (unsigned i = 0; i < count; ++i)
        workers_.emplace_back([this](const std::stop_token& stop) { work(stop); });
}

Pictures::~Pictures()
{
    for (auto& worker : workers_)
        worker.request_stop();
}

Pictures::Handle Pictures::load(PictureRequest request, Done done)
{
    const auto priority = static_cast<std::size_t>(request.priority);
    auto order = std::make_shared<Order>(Order{std::move(request), std::move(done), {}});
    {
        const std::lock_guard lock(mutex_);
        waiting_[priority].push_back(order);
    }
    asked_.notify_one();
    ++waitingFor_;
    // The handle is not the order: a worker that holds one would keep it from being dropped.
    return {order.get(), [this, order](void*) {
                if (std::exchange(order->done, nullptr))
                    --waitingFor_;
                order->stop.request_stop();
            }};
}

std::shared_ptr<Pictures::Order> Pictures::next(const std::stop_token& stop)
{
    std::unique_lock lock(mutex_);
    const auto isWaiting = [](const auto& list) { return !list.empty(); };
    asked_.wait(lock, stop, [&] { return std::any_of(waiting_.begin(), waiting_.end(), isWaiting); });
    if (stop.stop_requested())
        return nullptr;
    auto& list = *std::find_if(waiting_.begin(), waiting_.end(), isWaiting);
    const auto order = list.front().lock();
    list.pop_front();
    return order;
}

void Pictures::work(const std::stop_token& stop)
{
    while (!stop.stop_requested()) {
        const auto order = next(stop);
        if (!order || order->stop.stop_requested())
            continue;
        const std::stop_callback stopped(stop, [&] { order->stop.request_stop(); });
        QImage image;
        QString fault;
        try {
            image = picture(*order);
        } catch (const std::exception& error) { // it is shown in the picture's place
            fault = qt(error.what());
            image = lastPicture(*order);
            if (!image.isNull())
                fault = "This is the last preview. " + qt(missingFileText(order->request.file.native()));
        }
        main_.post([this, order, image, fault] {
            if (const auto done = std::exchange(order->done, nullptr)) {
                --waitingFor_;
                done(image, fault);
            }
        });
    }
}

namespace {

RenderJob jobOf(const PictureRequest& request)
{
    RenderJob job{
        .file = request.file, .edits = {}, .size = keptSize(request.size), .source = request.source};
    if (!request.editsJSON.empty())
        job.edits = fromJson<PhotoEdits>(request.editsJSON.view());
    return job;
}

} // namespace

QImage Pictures::picture(const Order& order)
{
    const auto job = jobOf(order.request);
    const auto stop = order.stop.get_token();
    if (job.size == 0) // too large to be kept
        return fitted(imageOf(renderPhoto(reader_, job, stop).image), order.request.size);
    return fitted(imageOf(previews_.preview(job, stop)), order.request.size);
}

/// Of a file that is missing; null for others.
QImage Pictures::lastPicture(const Order& order)
{
    if (previewState(order.request.file))
        return {};
    try {
        const auto last = previews_.lastShown(jobOf(order.request), order.stop.get_token());
        return last ? fitted(imageOf(*last), order.request.size) : QImage();
    } catch (const std::exception&) { // why there is none has been said already
        return {};
    }
}

} // namespace korvo
