#include "app/desktop/viewer/Filmstrip.h"

#include "app/desktop/viewer/MarkColors.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

constexpr int pictureSide = 84;
constexpr int gap = 4;
constexpr int marksHeight = 12;
constexpr std::size_t ahead = 12; // thumbnails that are loaded on each side of those in sight

} // namespace

Filmstrip::Filmstrip(Desktop& desktop)
    : desktop_(desktop), storeChanged_(desktop.store().changed.connect([this](const LibraryChange& change) {
          if (change.list)
              layOut();
          want();
          viewport()->update();
      })),
      browserChanged_(desktop.browser().changed.connect([this] { showCurrent(); }))
{
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus); // its keys are the viewer's
    setAccessibleName("Filmstrip");
    setFixedHeight(pictureSide + marksHeight + 2 * gap + horizontalScrollBar()->sizeHint().height());
}

std::size_t Filmstrip::count() const
{
    return desktop_.store().list().shown().size();
}

const PhotoItem& Filmstrip::itemAt(std::size_t index) const
{
    const auto& list = desktop_.store().list();
    return list.items()[list.shown()[index]];
}

int Filmstrip::cellWidth() const
{
    return pictureSide + 2 * gap;
}

QRect Filmstrip::cell(std::size_t index) const
{
    const auto left = static_cast<int>(index) * cellWidth() - horizontalScrollBar()->value();
    return {left, 0, cellWidth(), pictureSide + marksHeight + 2 * gap};
}

std::pair<std::size_t, std::size_t> Filmstrip::visible() const
{
    const int left = horizontalScrollBar()->value(), right = left + viewport()->width();
    const auto first = std::min(count(), static_cast<std::size_t>(left / cellWidth()));
    return {first, std::min(count(), static_cast<std::size_t>(right / cellWidth()) + 1)};
}

void Filmstrip::layOut()
{
    const int width = static_cast<int>(count()) * cellWidth();
    horizontalScrollBar()->setRange(0, std::max(0, width - viewport()->width()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    horizontalScrollBar()->setSingleStep(cellWidth());
    showCurrent();
}

void Filmstrip::showCurrent()
{
    const auto current = desktop_.browser().current();
    const auto place = current ? desktop_.store().list().shownPosition(*current) : std::nullopt;
    if (place && isVisible())
        horizontalScrollBar()->setValue(
            static_cast<int>(*place) * cellWidth() - (viewport()->width() - cellWidth()) / 2);
    want();
    viewport()->update();
}

void Filmstrip::want()
{
    if (!isVisible())
        return;
    const auto [first, last] = visible();
    const auto from = first - std::min(first, ahead), to = std::min(count(), last + ahead);
    std::unordered_map<PhotoID, Picture> kept;
    for (auto i = from; i < to; ++i)
        if (auto node = pictures_.extract(itemAt(i).id))
            kept.insert(std::move(node));
    pictures_ = std::move(kept);
    for (auto i = first; i < last; ++i)
        load(itemAt(i), PicturePriority::next);
    for (auto i = from; i < to; ++i)
        load(itemAt(i), PicturePriority::prefetch);
}

/// An older picture is shown until the new one is there.
void Filmstrip::load(const PhotoItem& item, PicturePriority priority)
{
    auto& picture = pictures_[item.id];
    if (picture.handle && picture.edits == item.editsJSON)
        return;
    picture.edits = item.editsJSON;
    const double ratio = devicePixelRatioF();
    const auto pixels = static_cast<int>(std::lround(pictureSide * ratio));
    picture.handle = desktop_.pictures().load(
        pictureOf(item, pixels, priority), [this, id = item.id, ratio](const QImage& image, const QString&) {
            auto& pixmap = pictures_[id].pixmap;
            pixmap = QPixmap::fromImage(image);
            pixmap.setDevicePixelRatio(ratio);
            viewport()->update();
        });
}

void Filmstrip::resizeEvent(QResizeEvent*)
{
    layOut();
}

void Filmstrip::showEvent(QShowEvent*)
{
    layOut();
}

void Filmstrip::scrollContentsBy(int, int)
{
    want();
    viewport()->update();
}

void Filmstrip::paintEvent(QPaintEvent*)
{
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(viewport()->rect(), palette().color(QPalette::Window));
    const auto [first, last] = visible();
    for (auto i = first; i < last; ++i)
        paintCell(painter, i);
}

void Filmstrip::paintCell(QPainter& painter, std::size_t index)
{
    const auto& item = itemAt(index);
    const QRect place = cell(index);
    const bool isCurrent = desktop_.browser().current() == item.id;
    painter.setPen(isCurrent ? QPen(palette().color(QPalette::Highlight), 2) : QPen(Qt::NoPen));
    painter.setBrush(palette().color(isCurrent ? QPalette::Mid : QPalette::Base));
    painter.drawRoundedRect(QRectF(place).adjusted(2, 2, -2, -2), 3, 3);
    const QRect room(place.left() + gap, place.top() + gap, pictureSide, pictureSide);
    if (const auto picture = pictures_.find(item.id);
        picture != pictures_.end() && !picture->second.pixmap.isNull()) {
        const auto& pixmap = picture->second.pixmap;
        const QSizeF size
            = pixmap.deviceIndependentSize().scaled(pictureSide - 4, pictureSide - 4, Qt::KeepAspectRatio);
        QRectF target(QPointF(), size);
        target.moveCenter(QRectF(room).center());
        painter.setOpacity(item.isRejected() ? 0.4 : 1);
        painter.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
        painter.setOpacity(1);
    }
    const QRect line(room.left() + 2, room.bottom() + 1, room.width() - 4, marksHeight);
    auto small = font();
    small.setPixelSize(marksHeight);
    painter.setFont(small);
    painter.setPen(item.isRejected() ? marks::reject : marks::star);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
        item.isRejected() ? QString("✕") : QString("★").repeated(std::max(0, item.rating)));
    painter.setPen(palette().color(QPalette::WindowText));
    if (item.flagged)
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, "⚑");
    marks::paintLabel(
        painter, QRect(line.right() - 2 * marksHeight, line.top(), marksHeight, marksHeight), item.label);
}

void Filmstrip::mousePressEvent(QMouseEvent* event)
{
    const auto index
        = static_cast<std::size_t>((event->pos().x() + horizontalScrollBar()->value()) / cellWidth());
    if (event->button() == Qt::LeftButton && index < count())
        desktop_.browser().setCurrent(itemAt(index).id);
}

void Filmstrip::wheelEvent(QWheelEvent* event)
{
    const auto way = event->angleDelta();
    horizontalScrollBar()->setValue(
        horizontalScrollBar()->value() - (std::abs(way.x()) > std::abs(way.y()) ? way.x() : way.y()));
}

} // namespace korvo
