#pragma once

#include "app/desktop/Desktop.h"
#include "app/view/ViewerWishes.h"

#include <QImage>

#include <optional>

namespace korvo {

/// A photo with its adjustments, or as it was before them.
enum class Look { after, before };

/// The pictures of one photo as they come: a thumbnail or what the cache still has, then the photo at the
/// size of its view, and all its pixels where they are asked for. Follows the photo's edits, those that are
/// being dragged too. Used on the main thread.
class PhotoFeed {
public:
    /// What of the other photos is decoded besides.
    enum class Neighbours { none, ahead };

    struct Picture {
        QImage image;
        QSize full; ///< the photo's own pixels, once they are known
        HistogramData histogram;
    };

    /// `desktop` must outlive it. What earlier made feeds show is decoded first.
    PhotoFeed(Desktop& desktop, Neighbours neighbours);
    ~PhotoFeed();
    PhotoFeed(const PhotoFeed&) = delete;
    PhotoFeed& operator=(const PhotoFeed&) = delete;

    Signal<> changed; ///< one of the pictures, or the fault

    void setPhoto(std::optional<PhotoID> photo);
    /// Shows a file that is no photo of the library, as it is.
    void setFile(const std::filesystem::path& file);
    /// Pixels of the longer side of the view.
    void setSize(int size);
    void setDetail(ViewDetail detail);
    void setLook(Look look);

    std::optional<PhotoID> photo() const { return photo_; }
    /// The photo that is shown, or one without an id for a file; null when there is none.
    const PhotoItem* item() const;
    /// At the size of the view, or less until it is there; null while there is none.
    const Picture& screen() const { return screen_; }
    /// All pixels; null while they are not asked for or not there.
    const Picture& full() const { return full_; }
    bool isLoading() const;
    /// Whether what is shown, if anything, is not what the file holds now.
    bool isBroken() const { return !fault().isEmpty() && shown_ < Shown::quick; }
    /// Why there is no picture, or only an old one; empty when all is well.
    const QString& fault() const { return missing_.isEmpty() ? fault_ : missing_; }

private:
    enum class Shown { nothing, placeholder, quick, whole };

    void wish();
    void arrived(const DecodeWish& wish);
    void storeChanged(const LibraryChange& change);
    void editsChanged();
    void clear();
    void begin();
    bool isAtHand() const;
    void dropFull();
    void askForPlaceholder();
    void renderScreen();
    void renderFull();
    PhotoEdits edits() const;
    void render(const LiveRenders::Slot& slot, std::shared_ptr<const DecodedPhoto> photo, int size,
        Picture& target, Shown shown);

    Desktop& desktop_;
    int viewer_;
    Neighbours neighbours_;
    std::optional<PhotoID> photo_;
    std::optional<PhotoItem> file_; // in place of a photo
    std::filesystem::path path_; // of what was begun
    std::size_t position_ = 0;
    std::ptrdiff_t direction_ = 1;
    int size_ = 0;
    ViewDetail detail_ = ViewDetail::screen;
    Look look_ = Look::after;
    PhotoEdits drawn_; // the last edits that were asked to be drawn
    Picture screen_, full_;
    Shown shown_ = Shown::nothing;
    QString fault_;
    QString missing_; // what is shown is what was kept of a file that is missing
    LiveRenders::Slot screenSlot_, fullSlot_;
    Pictures::Handle placeholder_;
    Connection arrived_, storeChanged_, draftChanged_;
};

/// The bitmap as Qt sees it, without a copy.
QImage imageOf(const LivePicture& picture);

} // namespace korvo
