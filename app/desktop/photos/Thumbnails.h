#pragma once

#include "app/desktop/photos/PhotoSigns.h"

#include <QCache>
#include <QPixmap>

#include <span>
#include <unordered_map>

namespace korvo {

/// The pictures of a grid's cells: those that were asked for last are loaded, and as many as fit are kept.
/// Used on the main thread.
class Thumbnails {
public:
    using Arrived = std::function<void(PhotoID)>;

    /// `desktop` must outlive it. `arrived` is told that a photo's cell has something new to show.
    Thumbnails(Desktop& desktop, Arrived arrived) : desktop_(desktop), arrived_(std::move(arrived)) { }

    /// Loads these, the shown ones first, each in its order, and nothing else any more. `pixels` is the
    /// longer side in device pixels.
    void want(std::span<const PhotoItem* const> shown, std::span<const PhotoItem* const> soon, int pixels,
        double devicePixelRatio);

    struct Picture {
        /// Of an earlier edit or another size till the wanted one is there; null if there is none.
        QPixmap pixmap;
        /// Broken: the file cannot be read; what it showed before may be there.
        PictureState state = PictureState::fine;
    };
    Picture find(PhotoID id) const;

private:
    struct Kept {
        QPixmap pixmap;
        PictureState state = PictureState::fine;
        SharedText file;
        SharedText edits;
        int pixels = 0;
        std::chrono::steady_clock::time_point asked = std::chrono::steady_clock::now();

        bool shows(const PhotoItem& item, int wantedPixels) const
        {
            return pixels == wantedPixels && edits == item.editsJSON && file == item.filename;
        }
        /// Whether it is time to look again for a file that may be back.
        bool isDue() const
        {
            return state == PictureState::broken
                && std::chrono::steady_clock::now() - asked > std::chrono::seconds(2);
        }
    };
    struct Loading {
        PicturePriority priority;
        Kept result; // but for the pixmap
        Pictures::Handle handle;
    };

    void load(const PhotoItem& item, PicturePriority priority, int pixels, double ratio);

    Desktop& desktop_;
    Arrived arrived_;
    QCache<PhotoID, Kept> kept_{256 << 10}; // KiB
    std::unordered_map<PhotoID, Loading> loading_;
};

} // namespace korvo
