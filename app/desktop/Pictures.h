#pragma once

#include "app/pictures/Previews.h"
#include "base/MainThread.h"
#include "catalog/PhotoItem.h"

#include <QImage>

#include <array>
#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

namespace korvo {

/// Which pictures come first.
enum class PicturePriority { shown, next, prefetch };

struct PictureRequest {
    std::filesystem::path file;
    SharedText editsJSON; // as the photo's row holds them
    int size = 0; // pixels of the longer side; 0: all there are
    PictureSource source = PictureSource::quick;
    PicturePriority priority = PicturePriority::shown;
};

/// The photo with its edits at that size. Unedited photos come from what is embedded in the file where that
/// is large enough.
PictureRequest pictureOf(const PhotoItem& item, int size, PicturePriority priority);

// Who loads pictures for the window: `Pictures` previews at a size, for all parts; `Thumbnails` the cells of
// the grid and the filmstrip that were asked for last; `FileThumbnails` the files that a sheet's list paints;
// `SourcePreviews` small pictures out of a camera; `DecodedPhotos` and `LiveRenders` whole photos, for the
// viewer's `PhotoFeed`.

/// Loads photos' pictures on threads of its own, from the cache of previews or rendered and kept there. Sizes
/// are rounded up to a few steps for the cache, and what comes out has the size that was asked for. Used on
/// the main thread.
class Pictures {
public:
    /// A picture, or a sentence that says why there is none. Both for a file that is missing: the picture is
    /// then what was shown of it last.
    using Done = std::function<void(QImage picture, QString fault)>;
    /// Destroying it cancels the request; nothing is delivered then.
    using Handle = std::shared_ptr<void>;

    /// Both must outlive it.
    Pictures(MainThread& main, ImageReader& reader, PreviewCache& cache);
    ~Pictures();
    Pictures(const Pictures&) = delete;
    Pictures& operator=(const Pictures&) = delete;

    /// `done` is called later, on the main thread. Those of one priority are served in the order of asking.
    [[nodiscard]] Handle load(PictureRequest request, Done done);

    /// How many were asked for and are not there yet.
    std::size_t waiting() const { return waitingFor_; }

private:
    struct Order;

    void work(const std::stop_token& stop);
    std::shared_ptr<Order> next(const std::stop_token& stop);
    QImage picture(const Order& order);
    QImage lastPicture(const Order& order);

    MainThread& main_;
    ImageReader& reader_;
    Previews previews_;
    std::size_t waitingFor_ = 0;
    std::mutex mutex_;
    std::condition_variable_any asked_;
    std::array<std::list<std::weak_ptr<Order>>, 3> waiting_; // by priority
    std::vector<std::jthread> workers_; // last, so that they end first
};

} // namespace korvo
