// Photos that are dragged to another place of the album that is shown.

#include "app/AlbumOrder.h"
#include "app/desktop/PhotoDrag.h"
#include "app/desktop/grid/GridView.h"

#include <QDropEvent>
#include <QScrollBar>

#include <algorithm>

namespace korvo {

/// The cell before which the point lies, or one behind the last.
std::size_t GridView::gapAt(QPoint point) const
{
    const auto columns = static_cast<std::size_t>(layout_.columns());
    const int y = std::max(0, point.y() + verticalScrollBar()->value());
    const auto row = static_cast<std::size_t>(y / layout_.cell.height()) * columns;
    for (std::size_t index = row; index < std::min(row + columns, layout_.count); ++index)
        if (point.x() < layout_.rect(index).center().x())
            return index;
    return std::min(row + columns, layout_.count);
}

/// A line on the left of the cell; behind the last of a row on its right.
QRect GridView::gapRect(std::size_t gap) const
{
    constexpr int width = 3;
    const bool isEnd
        = gap > 0 && (gap == layout_.count || gap % static_cast<std::size_t>(layout_.columns()) == 0);
    const QRect cell(cellPosition(isEnd ? gap - 1 : gap), geometry_.cell());
    return {(isEnd ? cell.right() + 1 : cell.left()) - width / 2, cell.top(), width, cell.height()};
}

void GridView::setGap(std::optional<std::size_t> gap)
{
    for (const auto changed : {std::exchange(gap_, gap), gap})
        if (changed)
            viewport()->update(gapRect(*changed));
}

void GridView::dragEnterEvent(QDragEnterEvent* event)
{
    event->setAccepted(isArrangedByHand(store()) && !draggedPhotos(*event->mimeData()).empty());
}

void GridView::dragMoveEvent(QDragMoveEvent* event)
{
    const auto at = event->position().toPoint();
    scrollAt(at);
    setGap(gapAt(at));
    event->acceptProposedAction();
}

void GridView::dragLeaveEvent(QDragLeaveEvent*)
{
    endSweep();
    setGap(std::nullopt);
}

void GridView::dropEvent(QDropEvent* event)
{
    endSweep();
    const auto gap = gapAt(event->position().toPoint());
    setGap(std::nullopt);
    event->setDropAction(Qt::CopyAction); // after a move, whoever it came from would remove them there
    event->accept();
    desktop_.attempt([&] { placeInAlbum(store(), draggedPhotos(*event->mimeData()), gap); });
}

} // namespace korvo
