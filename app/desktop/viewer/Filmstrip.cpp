#include "app/desktop/viewer/Filmstrip.h"

#include "app/Marking.h"
#include "app/desktop/Theme.h"
#include "app/desktop/photos/Glyphs.h"

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
    : desktop_(desktop), thumbnails_(desktop, [this](PhotoID) { viewport()->update(); }),
      storeChanged_(desktop.store().changed.connect([this](const LibraryChange& change) {
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
    std::vector<const PhotoItem*> shown, soon;
    for (auto i = first; i < last; ++i)
        shown.push_back(&itemAt(i));
    for (auto i = last; i < std::min(count(), last + ahead); ++i)
        soon.push_back(&itemAt(i));
    for (auto i = first; i-- > first - std::min(first, ahead);)
        soon.push_back(&itemAt(i));
    const double ratio = devicePixelRatioF();
    thumbnails_.want(shown, soon, static_cast<int>(std::lround(pictureSide * ratio)), ratio);
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
    painter.fillRect(viewport()->rect(), theme::centre);
    const auto [first, last] = visible();
    for (auto i = first; i < last; ++i)
        paintCell(painter, i);
}

void Filmstrip::paintCell(QPainter& painter, std::size_t index)
{
    const auto& item = itemAt(index);
    const QRect place = cell(index);
    const bool isCurrent = desktop_.browser().current() == item.id;
    painter.setPen(isCurrent ? QPen(theme::accent, 2) : QPen(Qt::NoPen));
    painter.setBrush(isCurrent ? theme::selectedCell : theme::cell);
    painter.drawRoundedRect(QRectF(place).adjusted(2, 2, -2, -2), 3, 3);
    const QRect room(place.left() + gap, place.top() + gap, pictureSide, pictureSide);
    if (const auto [pixmap, isBroken] = thumbnails_.find(item.id); !pixmap.isNull()) {
        QRectF target(QPointF(),
            pixmap.deviceIndependentSize().scaled(pictureSide - 4, pictureSide - 4, Qt::KeepAspectRatio));
        target.moveCenter(QRectF(room).center());
        painter.setOpacity(item.isRejected() ? 0.4 : 1);
        painter.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
        painter.setOpacity(1);
    } else if (isBroken) {
        painter.fillPath(warningGlyph(QRectF(room).adjusted(28, 28, -28, -28)), theme::warning);
    }
    paintMarks(painter, {room.left() + 2, room.bottom() + 1, room.width() - 4, marksHeight}, item);
}

/// Stars on the left; flag or cross and the label on the right, as below a cell of the grid.
void Filmstrip::paintMarks(QPainter& painter, const QRect& line, const PhotoItem& item)
{
    const QRect first(line.left(), line.top(), marksHeight, marksHeight);
    for (int star = 0; star < starsOf(item); ++star)
        painter.fillPath(
            starGlyph(QRectF(first.translated(star * (marksHeight - 2), 0)).adjusted(1, 1, -1, -1)),
            item.isRejected() ? theme::mutedText : theme::star);
    const QRect flag(line.right() + 1 - marksHeight, line.top(), marksHeight, marksHeight);
    if (item.isRejected())
        painter.fillPath(crossGlyph(QRectF(flag).adjusted(1, 1, -1, -1)), theme::warning);
    else if (item.flagged)
        painter.fillPath(flagGlyph(QRectF(flag).adjusted(1, 1, -1, -1)), theme::flag);
    auto small = font();
    small.setPixelSize(marksHeight - 2);
    painter.setFont(small);
    paintLabel(painter, flag.translated(-marksHeight - 2, 0), item.label);
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
