#include "app/desktop/viewer/PhotoView.h"

#include "app/desktop/SpokenRole.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/desktop/photos/PhotoDrag.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

using namespace std::chrono_literals;

constexpr QPointF nowhere(-1, -1);
constexpr double mostZoom = 8;
constexpr double zoomStep = 1.25;
constexpr int loupeWidth = 320; // in points
constexpr auto quietAfterResize = 150ms; // before a picture of the new size is decoded
/// A placeholder's photo is taken for so much larger, so that it fills the view as the photo will.
constexpr int placeholderGrowth = 16;

} // namespace

PhotoView::PhotoView(Desktop& desktop, PhotoFeed::Neighbours neighbours)
    : desktop_(desktop), feed_(desktop, neighbours), backdrop_(theme::centre),
      feedChanged_(feed_.changed.connect([this] { feedChanged(); }))
{
    setSpokenRole(*this, QAccessible::Graphic);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(120, 90);
}

void PhotoView::setPhoto(std::optional<PhotoID> photo)
{
    width_ = 0;
    feed_.setPhoto(photo);
}

void PhotoView::setFile(const std::filesystem::path& file)
{
    feed_.setFile(file);
}

void PhotoView::showAsWideAs(const PhotoFeed& other)
{
    width_ = other.screen().full.width();
    feedChanged();
}

/// In the photo's pixels: a rendering of it in another size is seen as large as the photo. Nothing while it
/// is not known.
QSizeF PhotoView::photoSize() const
{
    const QSizeF full = feed_.screen().full;
    return full.isEmpty() || width_ == 0 ? full : full * (width_ / full.width());
}

void PhotoView::setLook(Look look)
{
    look_ = look;
    feed_.setLook(look);
    update();
}

void PhotoView::setBackdrop(const QColor& color)
{
    backdrop_ = color;
    update();
}

void PhotoView::setActive(bool active)
{
    if (std::exchange(active_, active) != active)
        update();
}

void PhotoView::setLoupe(Loupe loupe)
{
    loupe_ = loupe;
    setCursor(loupe_ == Loupe::on ? Qt::BlankCursor : Qt::ArrowCursor);
    updateDetail();
    point(mapFromGlobal(QCursor::pos()));
}

void PhotoView::moveLoupe(double widths, double heights)
{
    const QPointF from = loupePoint().value_or(QRectF(rect()).center());
    point({std::clamp(from.x() + widths * width(), 0.0, width() - 1.0),
        std::clamp(from.y() + heights * height(), 0.0, height() - 1.0)});
}

void PhotoView::followLoupe(std::optional<QPointF> place)
{
    followed_ = place;
    if (place)
        pointer_ = nowhere;
    update();
}

void PhotoView::point(QPointF at)
{
    pointer_ = at;
    if (loupe_ == Loupe::off)
        return;
    update();
    const QSizeF full = photoSize();
    if (full.isEmpty() || !rect().contains(at.toPoint()))
        return pointed.emit({});
    const auto device = devicePoint(at);
    const auto origin = zoom_.origin();
    pointed.emit(QPointF((device.x - origin.x) / (full.width() * zoom_.scale()),
        (device.y - origin.y) / (full.height() * zoom_.scale())));
}

std::optional<QPointF> PhotoView::loupePoint() const
{
    if (loupe_ == Loupe::off)
        return std::nullopt;
    if (rect().contains(pointer_.toPoint()))
        return pointer_;
    if (!followed_)
        return std::nullopt;
    const auto origin = zoom_.origin();
    const QSizeF photo = photoSize() * zoom_.scale();
    return QPointF(origin.x + followed_->x() * photo.width(), origin.y + followed_->y() * photo.height())
        / devicePixelRatioF();
}

ViewPoint PhotoView::devicePoint(const QPointF& point) const
{
    return {point.x() * devicePixelRatioF(), point.y() * devicePixelRatioF()};
}

void PhotoView::toggleZoom()
{
    const auto at = mapFromGlobal(QCursor::pos());
    zoom_.toggle(devicePoint(rect().contains(at) ? at : rect().center()));
    zoomChanged();
}

void PhotoView::zoomBy(double steps, const QPointF& at)
{
    const double scale = std::min(zoom_.scale() * std::pow(zoomStep, steps), mostZoom);
    if (scale < zoom_.fitScale() * 1.001) // steps up and down again end beside it
        zoom_.showWhole();
    else
        zoom_.zoomTo(scale, devicePoint(at));
    zoomChanged();
}

void PhotoView::panBy(double widths, double heights)
{
    zoom_.pan(devicePoint({widths * width(), heights * height()}));
    zoomChanged();
}

void PhotoView::followZoom(const ViewZoom& zoom)
{
    zoom_.follow(zoom);
    updateDetail();
    update();
}

void PhotoView::zoomChanged()
{
    updateDetail();
    update();
    zoomed.emit();
}

void PhotoView::updateDetail()
{
    feed_.setDetail(zoom_.isFit() && loupe_ == Loupe::off ? ViewDetail::screen : ViewDetail::full);
}

void PhotoView::feedChanged()
{
    const auto& picture = feed_.screen();
    if (const QSizeF size = photoSize(); !size.isEmpty())
        zoom_.setPhoto({size.width(), size.height()});
    else
        zoom_.setPhoto({double(picture.image.width()) * placeholderGrowth,
            double(picture.image.height()) * placeholderGrowth});
    update();
    if (!picture.full.isEmpty() && look_ == Look::after)
        drawn.emit(picture.histogram);
}

void PhotoView::measure()
{
    const auto view = devicePoint({double(width()), double(height())});
    zoom_.setView(view);
    feed_.setSize(static_cast<int>(std::lround(std::max(view.x, view.y))));
}

void PhotoView::resizeEvent(QResizeEvent*)
{
    zoom_.setView(devicePoint({double(width()), double(height())}));
    if (!feed_.screen().image.isNull()) // while the window's border is dragged, the picture is stretched
        resized_ = desktop_.mainThread().postAfter(quietAfterResize, [this] { measure(); });
    else
        measure();
}

bool PhotoView::event(QEvent* event)
{
    if (event->type() == QEvent::ScreenChangeInternal || event->type() == QEvent::Show)
        measure();
    return QWidget::event(event);
}

void PhotoView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), backdrop_);
    paintPhoto(painter);
    if (const auto middle = loupePoint())
        paintLoupe(painter, *middle);
    if (!feed_.item())
        paintMessage(painter, "No photo is shown.");
    else if (!feed_.fault().isEmpty())
        paintMessage(painter, feed_.fault());
    else if (feed_.screen().image.isNull())
        paintMessage(painter, {});
    if (active_) {
        painter.setPen(QPen(theme::accent, 3));
        painter.drawRect(rect().adjusted(1, 1, -2, -2));
    }
}

void PhotoView::paintPhoto(QPainter& painter)
{
    const bool useFull = !zoom_.isFit() && !feed_.full().image.isNull();
    const QImage& image = useFull ? feed_.full().image : feed_.screen().image;
    const QSizeF full = photoSize();
    if (image.isNull())
        return;
    const auto origin = zoom_.origin();
    const QSizeF photo = full.isEmpty() ? QSizeF(image.size()) * placeholderGrowth : full;
    const QRectF target(origin.x, origin.y, std::round(photo.width() * zoom_.scale()),
        std::round(photo.height() * zoom_.scale()));
    const double ratio = devicePixelRatioF();
    painter.save();
    painter.scale(1 / ratio, 1 / ratio); // device pixels from here on
    if (image.hasAlphaChannel())
        painter.fillRect(target, Qt::white);
    // Enlarged pixels stay pixels from twice their size on: that is what one looks at them for.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !useFull || zoom_.scale() < 2);
    const QRectF visible = target.intersected(QRectF(0, 0, width() * ratio, height() * ratio));
    const double across = image.width() / target.width(), down = image.height() / target.height();
    const QRectF source((visible.x() - target.x()) * across, (visible.y() - target.y()) * down,
        visible.width() * across, visible.height() * down);
    painter.drawImage(visible, image, source);
    painter.restore();
}

void PhotoView::paintLoupe(QPainter& painter, QPointF middle)
{
    const QSizeF full = photoSize();
    const QImage& image = feed_.full().image.isNull() ? feed_.screen().image : feed_.full().image;
    if (image.isNull() || full.isEmpty())
        return;
    const double ratio = devicePixelRatioF();
    const auto origin = zoom_.origin();
    const auto at = devicePoint(middle);
    // The place of the photo under it, in the image's pixels.
    const double across = double(image.width()) / full.width();
    const double x = (at.x - origin.x) / zoom_.scale() * across,
                 y = (at.y - origin.y) / zoom_.scale() * across;
    const double side = loupeWidth * ratio * across * (zoom_.scale() < 1 ? 1 : 0.5 / zoom_.scale());
    const QRectF glass(middle.x() - loupeWidth / 2.0, middle.y() - loupeWidth / 2.0, loupeWidth, loupeWidth);
    QPainterPath round;
    round.addEllipse(glass);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(round);
    painter.fillRect(glass, backdrop_);
    painter.drawImage(glass, image, QRectF(x - side / 2, y - side / 2, side, side));
    painter.setClipping(false);
    painter.setPen(QPen(QColor(255, 255, 255, 200), 2));
    painter.drawEllipse(glass);
    painter.restore();
}

void PhotoView::paintMessage(QPainter& painter, const QString& text)
{
    if (text.isEmpty())
        return;
    const int margin = 10;
    const QRectF room = rect().adjusted(3 * margin, 3 * margin, -3 * margin, -3 * margin);
    const bool isAlone = feed_.screen().image.isNull();
    QTextOption where(Qt::AlignHCenter | (isAlone ? Qt::AlignVCenter : Qt::AlignBottom));
    where.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // a long path has no words
    const QRectF box = painter.boundingRect(room, text, where);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::plate);
    painter.drawRoundedRect(box.adjusted(-margin, -margin, margin, margin), 6, 6);
    painter.setPen(Qt::white);
    painter.drawText(room, text, where);
}

void PhotoView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    setFocus(Qt::MouseFocusReason);
    pressed_ = dragged_ = event->position();
    isDragging_ = false;
    clicked.emit();
}

void PhotoView::mouseMoveEvent(QMouseEvent* event)
{
    point(event->position());
    if (!event->buttons().testFlag(Qt::LeftButton))
        return;
    if (!isDragging_ && (event->position() - pressed_).manhattanLength() < QApplication::startDragDistance())
        return;
    const bool begins = !std::exchange(isDragging_, true);
    if (zoom_.isFit()) {
        if (begins && loupe_ == Loupe::off)
            dragOut();
        return;
    }
    setCursor(Qt::ClosedHandCursor);
    const auto way = event->position() - dragged_;
    dragged_ = event->position();
    zoom_.pan(devicePoint(way));
    zoomChanged();
}

void PhotoView::dragOut()
{
    if (const auto* const item = feed_.photo() ? feed_.item() : nullptr) // no render beside it
        dragPhotos(*this, {&item, 1},
            QPixmap::fromImage(feed_.screen().image.scaled(200, 200, Qt::KeepAspectRatio)));
}

void PhotoView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    setCursor(loupe_ == Loupe::on ? Qt::BlankCursor : Qt::ArrowCursor);
    if (isDragging_ || !clickZooms_ || loupe_ == Loupe::on)
        return;
    zoom_.toggle(devicePoint(event->position()));
    zoomChanged();
}

void PhotoView::leaveEvent(QEvent*)
{
    point(nowhere);
}

void PhotoView::wheelEvent(QWheelEvent* event)
{
    const double notches = event->angleDelta().y() / 120.0;
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        zoomBy(notches, event->position());
    } else if (!zoom_.isFit()) {
        const QPointF way = event->pixelDelta().isNull() ? QPointF(event->angleDelta()) : event->pixelDelta();
        zoom_.pan(devicePoint(way));
        zoomChanged();
    } else
        event->ignore(); // the page steps to another photo
}

} // namespace korvo
