#pragma once

#include "app/pictures/DecodedPhotos.h"
#include "edits/HistogramData.h"
#include "edits/PhotoEdits.h"

#include <atomic>

namespace korvo {

/// A decoded photo to be shown with edits.
struct LiveJob {
    std::shared_ptr<const DecodedPhoto> photo;
    PhotoEdits edits;
    int size = 0; ///< the most pixels of the longer side; 0: no limit
};

/// The picture as it is shown, and its tones. Where the edits change nothing it is the decoded image itself.
struct LivePicture {
    std::shared_ptr<const Bitmap> image; ///< null when there was no memory for it
    HistogramData histogram;
    bool isOpaque = true;
    int fullWidth = 0; ///< that it would have with all pixels of the file
    int fullHeight = 0;
};

/// Renders decoded photos with edits that change as fast as a slider moves, on a thread of its own. A slot
/// holds the one job of a view: a newer one takes the place of one that has not begun. Used on the main
/// thread.
class LiveRenders {
public:
    using Done = std::function<void(LivePicture)>;

    /// `main` must outlive it.
    explicit LiveRenders(MainThread& main);
    ~LiveRenders();
    LiveRenders(const LiveRenders&) = delete;
    LiveRenders& operator=(const LiveRenders&) = delete;

    /// Holds a view's place; destroying it withholds its results.
    using Slot = std::shared_ptr<struct LiveSlot>;
    static Slot slot();

    /// `done` is called later, on the main thread. The photo must be there.
    void render(const Slot& slot, LiveJob job, Done done);
    /// Whether pictures are still to come.
    bool isBusy() const { return *toCome_ > 0; }

private:
    std::weak_ptr<LiveSlot> next(const std::stop_token& stop, LiveSlot& taken);
    void work(const std::stop_token& stop);

    MainThread& main_;
    std::shared_ptr<std::atomic<int>> toCome_ = std::make_shared<std::atomic<int>>(0); // one a slot
    std::mutex mutex_;
    std::condition_variable_any asked_;
    std::list<std::weak_ptr<LiveSlot>> waiting_;
    std::jthread worker_; // last, so that it ends first
};

/// The picture of a job, computed here and now.
LivePicture livePicture(const LiveJob& job);

} // namespace korvo
