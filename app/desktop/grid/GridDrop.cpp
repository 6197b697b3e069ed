// Photos that are dragged to another place of the album that is shown.

#include "app/desktop/grid/GridView.h"
#include "app/desktop/photos/PhotoDrag.h"
#include "app/view/AlbumOrder.h"

#include <QDropEvent>
#include <QScrollBar>

#include <algorithm>

namespace korvo {

GridView::Gap GridView::gapAt(QPoint point) const
{
    const auto columns = static_cast<std::size_t>(layout_.columns());
    const int y = std::max(0, point.y() + verticalScrollBar()->value());
    const auto lastRow = layout_.count > 0 ? (layout_.count - 1) / columns : 0;
    const auto row = static_cast<std::size_t>(y / layout_.cell.height());
    if (row > lastRow)
        return {layout_.count, lastRow};
    const auto end = std::min((row + 1) * columns, layout_.count);
    for (std::size_t index = row * columns; index < end; ++index)
        if (point.x() < layout_.rect(index).center().x())
            return {index, row};
    return {end, row};
}

/// A line on the left of the cell; behind the last of a row on its right.
QRect GridView::gapRect(const Gap& gap) const
{
    constexpr int width = 3;
    const bool isEnd = gap.before > 0
        && (gap.before == layout_.count
            || gap.before / static_cast<std::size_t>(layout_.columns()) > gap.row);
    const QRect cell(cellPosition(isEnd ? gap.before - 1 : gap.before), geometry_.cell());
    return {(isEnd ? cell.right() + 1 : cell.left()) - width / 2, cell.top(), width, cell.height()};
}

void GridView::setGap(std::optional<Gap> gap)
{
    for (const auto& changed : {std::exchange(gap_, gap), gap})
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
    desktop_.attempt([&] { placeInAlbum(store(), draggedPhotos(*event->mimeData()), gap.before); });
}

} // namespace korvo
