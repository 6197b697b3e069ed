// What the user does in the grid with mouse and keys.

#include "app/desktop/grid/GridView.h"
#include "app/desktop/photos/PhotoDrag.h"
#include "app/desktop/window/MarkCommands.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QRubberBand>
#include <QScrollBar>

#include <algorithm>

namespace korvo {

std::optional<GridView::Index> GridView::indexAt(QPoint point) const
{
    const auto index = layout_.indexAt(point + QPoint(0, verticalScrollBar()->value()));
    return index && *index < store().list().shown().size() ? index : std::nullopt;
}

std::optional<GridView::Index> GridView::currentIndex() const
{
    const auto current = desktop_.browser().current();
    return current ? store().list().shownPosition(*current) : std::nullopt;
}

/// Where the keys are: on the current photo, or on one that they were moved to without selecting it.
std::optional<PhotoID> GridView::cursor() const
{
    return cursor_ ? cursor_ : desktop_.browser().current();
}

std::optional<GridView::Index> GridView::cursorIndex() const
{
    const auto photo = cursor();
    return photo ? store().list().shownPosition(*photo) : std::nullopt;
}

void GridView::setCursorPhoto(std::optional<PhotoID> photo)
{
    const auto before = cursorIndex();
    cursor_ = photo;
    for (const auto index : {before, cursorIndex()})
        if (index)
            updateCell(*index);
    describeCurrent();
}

void GridView::choose(Index index, Qt::KeyboardModifiers modifiers)
{
    const PhotoID id = itemAt(index).id;
    if (modifiers.testFlag(Qt::ShiftModifier)) {
        const auto from = anchor_ ? store().list().shownPosition(*anchor_) : std::nullopt;
        chooseRange(from.value_or(index), index);
        return;
    }
    anchor_ = id;
    auto ids = store().selection();
    if (!modifiers.testFlag(Qt::ControlModifier))
        ids = {id};
    else if (std::erase(ids, id) == 0)
        ids.push_back(id);
    const bool chosen = std::find(ids.begin(), ids.end(), id) != ids.end();
    store().select(std::move(ids));
    if (chosen)
        desktop_.browser().setCurrent(id);
    setCursorPhoto(id);
}

void GridView::chooseRange(Index from, Index to)
{
    anchor_ = itemAt(from).id;
    std::vector<PhotoID> ids;
    for (Index index = std::min(from, to); index <= std::max(from, to); ++index)
        ids.push_back(itemAt(index).id);
    store().select(std::move(ids));
    desktop_.browser().setCurrent(itemAt(to).id);
}

std::optional<MarkPart> GridView::markAt(Index index, QPoint point) const
{
    return korvo::markAt(geometry_.marks(cellPosition(index)), itemAt(index), point);
}

/// Of all selected, if the photo is one of them.
void GridView::mark(Index index, const MarkPart& part)
{
    const PhotoID id = itemAt(index).id;
    const bool isSelected = std::binary_search(selected_.begin(), selected_.end(), id);
    const QPoint below = geometry_.marks(cellPosition(index)).label.bottomLeft();
    clickOnMark(
        window_, isSelected ? store().selection() : std::vector{id}, part, viewport()->mapToGlobal(below));
}

void GridView::mousePressEvent(QMouseEvent* event)
{
    const auto index = indexAt(event->pos());
    chooseOnRelease_ = false;
    if (event->button() == Qt::LeftButton) {
        pressed_ = event->pos();
        beforeSweep_ = event->modifiers() ? store().selection() : std::vector<PhotoID>();
    }
    if (!index) {
        if (!event->modifiers())
            store().select({});
        return;
    }
    const bool isPlain = event->button() == Qt::LeftButton && !event->modifiers();
    if (const auto part = markAt(*index, event->pos()); part && isPlain) {
        pressed_.reset();
        return mark(*index, *part);
    }
    const bool isSelected = std::binary_search(selected_.begin(), selected_.end(), itemAt(*index).id);
    if (isSelected && !event->modifiers()) { // it may become a drag of all of them
        chooseOnRelease_ = event->button() == Qt::LeftButton;
        desktop_.browser().setCurrent(itemAt(*index).id);
    } else {
        choose(*index, event->modifiers());
    }
}

void GridView::mouseMoveEvent(QMouseEvent* event)
{
    hover(event->buttons() ? std::nullopt : indexAt(event->pos()));
    if (!pressed_ || !event->buttons().testFlag(Qt::LeftButton)
        || (event->pos() - *pressed_).manhattanLength() < QApplication::startDragDistance())
        return;
    if (!band_ && indexAt(*pressed_))
        dragOut();
    else
        sweep(event->pos());
}

void GridView::mouseReleaseEvent(QMouseEvent* event)
{
    if (std::exchange(chooseOnRelease_, false))
        if (const auto index = indexAt(event->pos()))
            choose(*index, {});
    endSweep();
}

void GridView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const auto index = indexAt(event->pos());
    if (index && !markAt(*index, event->pos()))
        window_.commands().run(Command::viewer);
    else
        mousePressEvent(event);
}

void GridView::dragOut()
{
    pressed_.reset();
    chooseOnRelease_ = false;
    std::vector<const PhotoItem*> items;
    for (const PhotoID id : store().selection())
        if (const auto* const item = store().list().find(id))
            items.push_back(item);
    const auto current = desktop_.browser().current();
    dragPhotos(*this, items, current ? thumbnails_.find(*current).pixmap : QPixmap());
}

/// How far a sweep scrolls at once when it is at or beyond an edge.
int GridView::scrollAtEdge(QPoint at) const
{
    constexpr int edge = 24;
    const int bottom = viewport()->height() - edge;
    return at.y() < edge ? at.y() - edge : std::max(0, at.y() - bottom);
}

/// Goes on scrolling as long as the mouse is at an edge.
void GridView::scrollAt(QPoint point)
{
    sweptTo_ = point;
    if (scrollAtEdge(point) == 0)
        sweepTimer_.stop();
    else if (!sweepTimer_.isActive())
        sweepTimer_.start();
}

void GridView::sweep(QPoint to)
{
    if (!pressed_)
        return;
    if (!band_) {
        band_ = new QRubberBand(QRubberBand::Rectangle, viewport());
        band_->show();
    }
    scrollAt(to);
    const QRect swept = QRect(*pressed_, to).normalized();
    band_->setGeometry(swept.intersected(viewport()->rect().adjusted(-1, -1, 1, 1)));
    auto ids = beforeSweep_;
    const int top = verticalScrollBar()->value();
    const auto [first, last] = layout_.between(top + swept.top(), top + swept.bottom());
    for (Index index = first; index < last; ++index)
        if (swept.intersects(geometry_.picture(cellPosition(index))))
            ids.push_back(itemAt(index).id);
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    store().select(std::move(ids));
}

void GridView::endSweep()
{
    sweepTimer_.stop();
    delete std::exchange(band_, nullptr);
    pressed_.reset();
}

void GridView::hover(std::optional<Index> index)
{
    if (index == hovered_)
        return;
    for (const auto changed : {std::exchange(hovered_, index), index})
        if (changed)
            updateCell(*changed);
}

void GridView::leaveEvent(QEvent* event)
{
    QAbstractScrollArea::leaveEvent(event);
    hover(std::nullopt);
}

void GridView::moveTo(Index index, Qt::KeyboardModifiers modifiers)
{
    if (modifiers.testFlag(Qt::ControlModifier))
        setCursorPhoto(itemAt(index).id);
    else
        choose(index, modifiers & Qt::ShiftModifier);
    makeVisible(index);
}

void GridView::keyPressEvent(QKeyEvent* event)
{
    constexpr auto known = Qt::ShiftModifier | Qt::ControlModifier | Qt::KeypadModifier;
    if (layout_.count == 0 || event->modifiers() & ~known)
        return QAbstractScrollArea::keyPressEvent(event);
    const auto current = cursorIndex();
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::ControlModifier && current)
        return choose(*current, Qt::ControlModifier);
    const auto columns = static_cast<std::ptrdiff_t>(layout_.columns());
    const auto page = columns * std::max(1, viewport()->height() / layout_.cell.height());
    const auto last = static_cast<std::ptrdiff_t>(layout_.count) - 1;
    const auto from = static_cast<std::ptrdiff_t>(current.value_or(0));
    const auto target = [&]() -> std::optional<std::ptrdiff_t> {
        switch (event->key()) {
        case Qt::Key_Left:
            return from - 1;
        case Qt::Key_Right:
            return from + 1;
        case Qt::Key_Up:
            return from < columns ? from : from - columns;
        case Qt::Key_Down:
            return from + columns > last && from / columns == last / columns ? from : from + columns;
        case Qt::Key_PageUp:
            return from - page;
        case Qt::Key_PageDown:
            return from + page;
        case Qt::Key_Home:
            return 0;
        case Qt::Key_End:
            return last;
        default:
            return std::nullopt;
        }
    }();
    if (!target)
        return QAbstractScrollArea::keyPressEvent(event);
    const auto index = current ? std::clamp<std::ptrdiff_t>(*target, 0, last) : 0;
    moveTo(static_cast<Index>(index), event->modifiers());
}

void GridView::wheelEvent(QWheelEvent* event)
{
    if (event->modifiers().testFlag(Qt::ControlModifier))
        setThumbnailSize(thumbnailSize() + event->angleDelta().y() / 8);
    else
        QAbstractScrollArea::wheelEvent(event);
}

void GridView::contextMenuEvent(QContextMenuEvent* event)
{
    window_.showPhotoMenu(event->globalPos());
}

void GridView::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    showCurrent();
}

void GridView::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    showCurrent();
}

} // namespace korvo
