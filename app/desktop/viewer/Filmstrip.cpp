#include "app/desktop/viewer/Filmstrip.h"

#include "app/desktop/Labels.h"
#include "app/desktop/Theme.h"
#include "app/desktop/photos/PhotoDrag.h"
#include "app/desktop/window/MarkCommands.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace korvo {

namespace {

constexpr int pictureSide = 84;
constexpr int gap = 4;
constexpr std::size_t ahead = 12; // thumbnails that are loaded on each side of those in sight

} // namespace

Filmstrip::Filmstrip(MainWindow& window)
    : window_(window), desktop_(window.desktop()),
      thumbnails_(desktop_, [this](PhotoID) { viewport()->update(); }),
      storeChanged_(desktop_.store().changed.connect([this](const LibraryChange& change) {
          if (change.list)
              layOut();
          want();
          viewport()->update();
      })),
      browserChanged_(desktop_.browser().changed.connect([this] { showCurrent(); }))
{
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus); // its keys are the viewer's
    setAccessibleName("Filmstrip");
    viewport()->setMouseTracking(true);
    measure();
}

void Filmstrip::measure()
{
    setFixedHeight(pictureSide + marksHeight() + 2 * gap + horizontalScrollBar()->sizeHint().height());
}

int Filmstrip::marksHeight() const
{
    return std::max(12, fontMetrics().height() * 3 / 4);
}

Filmstrip::Index Filmstrip::count() const
{
    return desktop_.store().list().shown().size();
}

const PhotoItem& Filmstrip::itemAt(Index index) const
{
    const auto& list = desktop_.store().list();
    return list.items()[list.shown()[index]];
}

int Filmstrip::cellWidth() const
{
    return pictureSide + 2 * gap;
}

QRect Filmstrip::cell(Index index) const
{
    const auto left = static_cast<int>(index) * cellWidth() - horizontalScrollBar()->value();
    return {left, 0, cellWidth(), pictureSide + marksHeight() + 2 * gap};
}

QRect Filmstrip::pictureIn(const QRect& cell) const
{
    return {cell.left() + gap, cell.top() + gap, pictureSide, pictureSide};
}

MarkPlaces Filmstrip::marksIn(const QRect& cell) const
{
    const QRect above = pictureIn(cell);
    return marksAcross({above.left() + 2, above.bottom() + 1, above.width() - 4, marksHeight()});
}

PhotoSigns Filmstrip::signsAt(Index index) const
{
    const auto& item = itemAt(index);
    return signsOf(desktop_, item, thumbnails_.find(item.id).state);
}

std::pair<Filmstrip::Index, Filmstrip::Index> Filmstrip::visible() const
{
    const int left = horizontalScrollBar()->value(), right = left + viewport()->width();
    const auto first = std::min(count(), static_cast<Index>(left / cellWidth()));
    return {first, std::min(count(), static_cast<Index>(right / cellWidth()) + 1)};
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
    hovered_.reset();
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

void Filmstrip::paintCell(QPainter& painter, Index index)
{
    const auto& item = itemAt(index);
    const QRect place = cell(index);
    const bool isCurrent = desktop_.browser().current() == item.id;
    painter.setPen(isCurrent ? QPen(theme::accent, 2) : QPen(Qt::NoPen));
    painter.setBrush(isCurrent ? theme::selectedCell : theme::cell);
    painter.drawRoundedRect(QRectF(place).adjusted(2, 2, -2, -2), 3, 3);
    painter.setFont(font());
    paintPicture(painter, pictureIn(place), thumbnails_.find(item.id).pixmap, item, signsAt(index));
    paintMarks(painter, marksIn(place), item, hovered_ == index ? MarkHints::all : MarkHints::none);
}

std::optional<Filmstrip::Index> Filmstrip::indexAt(QPoint point) const
{
    const auto index = static_cast<Index>((point.x() + horizontalScrollBar()->value()) / cellWidth());
    return index < count() && cell(index).contains(point) ? std::optional(index) : std::nullopt;
}

/// Makes the photo there the current one. A comparison passes over the one that stays.
bool Filmstrip::choose(QPoint at)
{
    const auto index = indexAt(at);
    if (!index)
        return false;
    const PhotoID id = itemAt(*index).id;
    desktop_.browser().setCurrent(id);
    return desktop_.browser().current() == id;
}

void Filmstrip::mousePressEvent(QMouseEvent* event)
{
    pressed_.reset();
    if (event->button() != Qt::LeftButton)
        return;
    const auto index = indexAt(event->pos());
    const auto place = index ? marksIn(cell(*index)) : MarkPlaces();
    if (const auto part = index ? markAt(place, itemAt(*index), event->pos()) : std::nullopt)
        clickOnMark(window_, {itemAt(*index).id}, *part, viewport()->mapToGlobal(place.label.bottomLeft()));
    else if (choose(event->pos()))
        pressed_ = event->pos();
}

void Filmstrip::mouseMoveEvent(QMouseEvent* event)
{
    hover(event->buttons() ? std::nullopt : indexAt(event->pos()));
    if (!pressed_ || !event->buttons().testFlag(Qt::LeftButton)
        || (event->pos() - *pressed_).manhattanLength() < QApplication::startDragDistance())
        return;
    pressed_.reset();
    if (const auto* const item = desktop_.browser().currentItem())
        dragPhotos(*this, {&item, 1}, thumbnails_.find(item->id).pixmap);
}

void Filmstrip::contextMenuEvent(QContextMenuEvent* event)
{
    if (choose(event->pos()))
        window_.showPhotoMenu(event->globalPos());
}

void Filmstrip::hover(std::optional<Index> index)
{
    if (std::exchange(hovered_, index) != index)
        viewport()->update();
}

void Filmstrip::leaveEvent(QEvent* event)
{
    QAbstractScrollArea::leaveEvent(event);
    hover(std::nullopt);
}

void Filmstrip::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        measure();
}

bool Filmstrip::event(QEvent* event)
{
    if (event->type() == QEvent::ScreenChangeInternal) // its pixels may be finer
        measure();
    return QAbstractScrollArea::event(event);
}

bool Filmstrip::viewportEvent(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QAbstractScrollArea::viewportEvent(event);
    const auto* const help = static_cast<QHelpEvent*>(event);
    const auto index = indexAt(help->pos());
    const auto text = index ? warningText(desktop_, itemAt(*index), signsAt(*index)) : QString();
    QToolTip::showText(help->globalPos(), plainToolTip(text), viewport());
    return true;
}

void Filmstrip::wheelEvent(QWheelEvent* event)
{
    const auto way = event->angleDelta();
    horizontalScrollBar()->setValue(
        horizontalScrollBar()->value() - (std::abs(way.x()) > std::abs(way.y()) ? way.x() : way.y()));
}

} // namespace korvo
