// What is dragged from the sidebar, and dropped on its lines.

#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/desktop/photos/PhotoDrag.h"
#include "app/desktop/sidebar/Sidebar.h"
#include "app/view/SidebarActions.h"

#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QToolTip>

#include <utility>

namespace korvo {

namespace {

constexpr int openWhileDragging = 700; // ms over a closed line

} // namespace

/// The line's name beside the pointer, so that the line below it can be seen.
void Sidebar::startDrag(Qt::DropActions actions)
{
    if (!currentItem() || !currentItem()->flags().testFlag(Qt::ItemIsDragEnabled))
        return;
    const QString name = fontMetrics().elidedText(currentItem()->text(0), Qt::ElideMiddle, 200);
    const QSize size = fontMetrics().size(Qt::TextSingleLine, name) + QSize(16, 8);
    QPixmap ghost(size * devicePixelRatioF());
    ghost.setDevicePixelRatio(devicePixelRatioF());
    ghost.fill(theme::accentFill);
    QPainter painter(&ghost);
    painter.setFont(font());
    painter.setPen(theme::text);
    painter.drawText(QRect({}, size), Qt::AlignCenter, name);
    painter.end();
    auto* const drag = new QDrag(this); // Qt's from then on
    drag->setMimeData(mimeData({currentItem()}));
    drag->setPixmap(ghost);
    drag->setHotSpot({-14, -10});
    drag->exec(actions, Qt::CopyAction);
}

/// Photos go into a line, and files that become photos of the library. A line goes beside or into another, as
/// near to where the pointer is as can be.
std::optional<Sidebar::Place> Sidebar::placeOf(const QDropEvent& event) const
{
    const auto point = event.position().toPoint();
    const auto* const item = itemAt(point);
    if (!item)
        return std::nullopt;
    const auto onto = keyOf(*item);
    if (!draggedPhotos(*event.mimeData()).empty() || holdsFiles(*event.mimeData()))
        return takesPhotos(onto) ? std::optional(Place{onto, DropAt::into}) : std::nullopt;
    if (event.source() != this || !currentItem())
        return std::nullopt;
    const QRect line = visualItemRect(item);
    const bool isUpper = point.y() < line.center().y();
    const auto beside = isUpper ? DropAt::above : DropAt::below;
    const int fromEdge = isUpper ? point.y() - line.top() : line.bottom() - point.y();
    const bool isAtEdge = fromEdge < line.height() / 4;
    for (const auto at : {isAtEdge ? beside : DropAt::into, isAtEdge ? DropAt::into : beside})
        if (canBeMoved(keyOf(*currentItem()), onto, at))
            return Place{onto, at};
    return std::nullopt;
}

void Sidebar::mark(std::optional<Place> place)
{
    marked_ = place;
    viewport()->update();
}

/// Opens the line once the pointer has rested on it for a while.
void Sidebar::openLater(const QTreeWidgetItem* item)
{
    const auto line = item ? std::optional(keyOf(*item)) : std::nullopt;
    if (std::exchange(under_, line) != line)
        openTimer_.start(openWhileDragging);
}

void Sidebar::paintEvent(QPaintEvent* event)
{
    QTreeWidget::paintEvent(event);
    const auto* const item = marked_ ? itemOf(marked_->line) : nullptr;
    if (!item)
        return;
    QRect line = visualItemRect(item);
    line.setRight(viewport()->width() - 1);
    QPainter painter(viewport());
    if (marked_->at == DropAt::into) {
        painter.setPen({theme::accent, 2});
        painter.drawRect(line.adjusted(1, 1, -1, -1));
    } else {
        const int y = marked_->at == DropAt::above ? line.top() - 1 : line.bottom();
        painter.fillRect(line.left(), y, line.width(), 3, theme::accent);
    }
}

SidebarNode Sidebar::nodeOf(const SidebarKey& line) const
{
    return {line.kind, line.id, utf8(itemOf(line)->text(0)), {}};
}

/// A line that takes no photos takes files too, which then are only added.
void Sidebar::tellOfFiles(const QPoint& at) const
{
    const QString place = marked_ ? " and to “" + qt(nodeOf(marked_->line).name) + "”" : QString();
    QToolTip::showText(viewport()->mapToGlobal(at), "Add to the library" + place, viewport());
}

void Sidebar::dragEnterEvent(QDragEnterEvent* event)
{
    event->acceptProposedAction();
}

void Sidebar::dragMoveEvent(QDragMoveEvent* event)
{
    QTreeWidget::dragMoveEvent(event); // scrolls
    const bool areFiles = draggedPhotos(*event->mimeData()).empty() && holdsFiles(*event->mimeData());
    mark(placeOf(*event));
    openLater(itemAt(event->position().toPoint()));
    if (areFiles)
        tellOfFiles(event->position().toPoint());
    event->setAccepted(areFiles || marked_);
}

void Sidebar::dragLeaveEvent(QDragLeaveEvent* event)
{
    QTreeWidget::dragLeaveEvent(event);
    QToolTip::hideText();
    mark(std::nullopt);
    openLater(nullptr);
}

void Sidebar::dropEvent(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction); // after a move, whoever it came from would remove it there
    event->accept();
    stopAutoScroll();
    setState(NoState);
    QToolTip::hideText();
    mark(std::nullopt);
    openLater(nullptr);
    const auto ids = draggedPhotos(*event->mimeData());
    const auto place = placeOf(*event);
    if (ids.empty() && holdsFiles(*event->mimeData()))
        return window_.addDropped(
            *event->mimeData(), place ? std::optional(nodeOf(place->line)) : std::nullopt);
    if (!place)
        return;
    desktop_.attempt([&] {
        if (ids.empty())
            moveLine(desktop_.store(), keyOf(*currentItem()), place->line, place->at);
        else
            desktop_.say(dropPhotos(desktop_.store(), nodeOf(place->line), ids), Offer::undo);
    });
}

} // namespace korvo
