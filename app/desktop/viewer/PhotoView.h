#pragma once

#include "app/desktop/viewer/PhotoFeed.h"
#include "app/view/ViewZoom.h"

#include <QWidget>

namespace korvo {

enum class Loupe { off, on };

/// Shows one photo: as a whole, when it can be dragged elsewhere, or at 100 % and more, where it can be
/// dragged about. Below it, what there is to say of the picture.
class PhotoView : public QWidget {
public:
    PhotoView(Desktop& desktop, PhotoFeed::Neighbours neighbours);

    PhotoFeed& feed() { return feed_; }
    const ViewZoom& zoom() const { return zoom_; }

    Signal<> zoomed; ///< the user has zoomed or panned
    Signal<> clicked; ///< pressed with the mouse, whatever follows
    /// The loupe is over a place of the photo, in fractions of its sides, or over none.
    Signal<std::optional<QPointF>> pointed;
    Signal<const HistogramData&> drawn; ///< a picture of the photo with its edits is on screen

    void setPhoto(std::optional<PhotoID> photo);
    /// Shows a file that is no photo of the library, as large as a photo so wide, once that is known.
    void setFile(const std::filesystem::path& file);
    void showAsWideAs(const PhotoFeed& other);
    /// Between the whole photo and 100 %, at the pointer where it is over the photo.
    void toggleZoom();
    /// Enlarges the photo by steps, or shrinks it until it is shown whole; about its middle, or about a
    /// place.
    void zoomBy(double steps) { zoomBy(steps, rect().center()); }
    void zoomBy(double steps, const QPointF& at);
    /// Moves the photo by a part of the view's size, while it is not shown whole.
    void panBy(double widths, double heights);
    /// Takes the zoom of another view, whose photo may have another size.
    void followZoom(const ViewZoom& zoom);
    void setLook(Look look);
    void setLoupe(Loupe loupe);
    /// Moves the loupe by a part of the view's size, from the middle where it is over no place.
    void moveLoupe(double widths, double heights);
    /// Shows the loupe over the same place as another view does, while the pointer is not in this one.
    void followLoupe(std::optional<QPointF> place);
    /// Where the loupe's middle is; nothing while there is none.
    std::optional<QPointF> loupePoint() const;
    /// A frame that marks the one of several that keys act on.
    void setActive(bool active);
    /// In survey, a click chooses the photo instead of zooming.
    void setClickZooms(bool zooms) { clickZooms_ = zooms; }
    void setBackdrop(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    void feedChanged();
    void zoomChanged();
    void measure();
    QSizeF photoSize() const;
    void updateDetail();
    void dragOut();
    ViewPoint devicePoint(const QPointF& point) const;
    void paintPhoto(QPainter& painter);
    void paintLoupe(QPainter& painter, QPointF middle);
    void point(QPointF at);
    void paintMessage(QPainter& painter, const QString& text);

    Desktop& desktop_;
    PhotoFeed feed_;
    ViewZoom zoom_;
    Loupe loupe_ = Loupe::off;
    std::optional<QPointF> followed_; // another view's loupe, in fractions of the photo
    bool active_ = false;
    int width_ = 0; // that the photo is taken to have; 0: its own
    bool clickZooms_ = true;
    Look look_ = Look::after;
    QColor backdrop_;
    QPointF pressed_, dragged_;
    bool isDragging_ = false;
    QPointF pointer_{-1, -1};
    MainThread::Timer resized_;
    Connection feedChanged_;
};

} // namespace korvo
