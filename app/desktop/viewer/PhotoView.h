#pragma once

#include "app/ViewZoom.h"
#include "app/desktop/viewer/PhotoFeed.h"

#include <QWidget>

namespace korvo {

/// Shows one photo: as a whole, or at 100 % and more, where it can be dragged about. Below it, what there is
/// to say of the picture.
class PhotoView : public QWidget {
public:
    PhotoView(Desktop& desktop, int viewer, PhotoFeed::Neighbours neighbours);

    PhotoFeed& feed() { return feed_; }
    const ViewZoom& zoom() const { return zoom_; }

    Signal<> zoomed; ///< the user has zoomed or panned
    Signal<> clicked; ///< pressed with the mouse, whatever follows
    Signal<const HistogramData&> drawn; ///< a picture of the photo with its edits is on screen

    void setPhoto(std::optional<PhotoID> photo);
    /// Between the whole photo and 100 %, at the pointer where it is over the photo.
    void toggleZoom();
    /// Takes the zoom of another view, whose photo may have another size.
    void followZoom(const ViewZoom& zoom);
    void setLook(Look look);
    void setLoupe(bool shown);
    bool hasLoupe() const { return loupe_; }
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
    void updateDetail();
    ViewPoint devicePoint(const QPointF& point) const;
    void paintPhoto(QPainter& painter);
    void paintLoupe(QPainter& painter);
    void paintMessage(QPainter& painter, const QString& text);

    Desktop& desktop_;
    PhotoFeed feed_;
    ViewZoom zoom_;
    bool loupe_ = false;
    bool active_ = false;
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
