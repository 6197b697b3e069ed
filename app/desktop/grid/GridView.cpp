#include "app/desktop/grid/GridView.h"

#include "app/desktop/Labels.h"
#include "app/desktop/SpokenRole.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <unordered_set>

namespace korvo {

namespace {

constexpr int usualSize = 190;
constexpr std::size_t screensAhead = 2; // of pictures that are loaded before they are seen

} // namespace

GridView::GridView(MainWindow& window)
    : window_(window), desktop_(window.desktop()), geometry_(usualSize, font()),
      thumbnails_(desktop_, [this](PhotoID id) {
          updatePhotos({&id, 1});
      })
{
    setObjectName("grid");
    setSpokenRole(*this, QAccessible::List);
    setAccessibleName("Photos");
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAcceptDrops(true);
    viewport()->setMouseTracking(true);
    viewport()->setAutoFillBackground(false);
    wantTimer_.setSingleShot(true);
    wantTimer_.setInterval(0);
    connect(&wantTimer_, &QTimer::timeout, this, [this] { wantPictures(); });
    sweepTimer_.setInterval(16);
    connect(&sweepTimer_, &QTimer::timeout, this, [this] {
        verticalScrollBar()->setValue(verticalScrollBar()->value() + scrollAtEdge(sweptTo_));
        if (gap_)
            setGap(gapAt(sweptTo_));
        else
            sweep(sweptTo_);
    });
    storeChanged_ = store().changed.connect([this](const LibraryChange& change) { libraryChanged(change); });
    browserChanged_ = desktop_.browser().changed.connect([this] {
        cursor_.reset();
        showCurrent();
    });
    layOut();
}

const PhotoItem& GridView::itemAt(Index index) const
{
    const auto& list = store().list();
    return list.items()[list.shown()[index]];
}

Cell GridView::cellAt(Index index) const
{
    const auto& item = itemAt(index);
    auto picture = thumbnails_.find(item.id);
    return {.item = &item,
        .picture = std::move(picture.pixmap),
        .signs = signsOf(desktop_, item, picture.state),
        .isSelected = std::binary_search(selected_.begin(), selected_.end(), item.id),
        .isCurrent = hasFocus() && cursor() == item.id,
        .isHovered = hovered_ == index};
}

void GridView::layOut()
{
    layout_ = {viewport()->width(), geometry_.cell(), store().list().shown().size()};
    verticalScrollBar()->setRange(0, std::max(0, layout_.height() - viewport()->height()));
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setSingleStep(std::max(1, geometry_.cell().height() / 3));
    wantTimer_.start();
    viewport()->update();
}

void GridView::setThumbnailSize(int size)
{
    size = std::clamp(size, smallest, largest);
    if (size == geometry_.pictureSize())
        return;
    const auto [first, last] = visible();
    auto kept = currentIndex();
    if (!kept || *kept < first || *kept >= last)
        kept = first + (last - first) / 2;
    geometry_ = CellGeometry(size, font());
    layOut();
    if (*kept < layout_.count)
        verticalScrollBar()->setValue(layout_.rect(*kept).center().y() - viewport()->height() / 2);
    thumbnailSizeChanged.emit(size);
}

void GridView::libraryChanged(const LibraryChange& change)
{
    if (change.tree) // counts of versions may have come
        viewport()->update();
    if (change.list) {
        hovered_.reset();
        if (cursor_ && !store().list().shownPosition(*cursor_))
            cursor_.reset();
        layOut();
        if (std::exchange(source_, store().source()) != store().source())
            verticalScrollBar()->setValue(0);
    } else {
        updatePhotos(change.photos);
        wantTimer_.start(); // edits may have changed
        describeCurrent();
    }
    if (!change.selection)
        return;
    selectionChanged();
    if (change.list) // the current photo was told before the cells had their places
        showCurrent();
}

void GridView::selectionChanged()
{
    cursor_.reset();
    auto before = std::exchange(selected_, store().selection());
    if (!std::is_sorted(selected_.begin(), selected_.end()))
        std::sort(selected_.begin(), selected_.end());
    const auto holds
        = [](const auto& ids, PhotoID id) { return std::binary_search(ids.begin(), ids.end(), id); };
    if (selected_.size() == 1 || (anchor_ && !holds(selected_, *anchor_)))
        anchor_ = desktop_.browser().current(); // chosen elsewhere, in the viewer for one
    const auto [first, last] = visible();
    for (Index index = first; index < last; ++index)
        if (const PhotoID id = itemAt(index).id; holds(before, id) != holds(selected_, id))
            updateCell(index);
}

void GridView::updatePhotos(std::span<const PhotoID> ids)
{
    const std::unordered_set<PhotoID> changed(ids.begin(), ids.end());
    const auto [first, last] = visible();
    for (Index index = first; index < last; ++index)
        if (changed.contains(itemAt(index).id))
            updateCell(index);
}

void GridView::updateCell(Index index)
{
    viewport()->update(QRect(cellPosition(index), geometry_.cell()));
}

std::pair<GridView::Index, GridView::Index> GridView::visible() const
{
    const int top = verticalScrollBar()->value();
    auto [first, last] = layout_.between(top, top + viewport()->height() - 1);
    const auto count
        = store().list().shown().size(); // while a change is being told, the layout may be behind
    return {std::min(first, count), std::min(last, count)};
}

std::size_t GridView::emptyCells() const
{
    const auto [first, last] = visible();
    std::size_t count = 0;
    for (Index index = first; index < last; ++index)
        count += thumbnails_.find(itemAt(index).id).pixmap.isNull() ? 1 : 0;
    return count;
}

QPoint GridView::cellPosition(Index index) const
{
    return layout_.rect(index).topLeft() - QPoint(0, verticalScrollBar()->value());
}

void GridView::makeVisible(Index index)
{
    const QRect cell = layout_.rect(index);
    auto* const bar = verticalScrollBar();
    if (cell.top() < bar->value())
        bar->setValue(cell.top());
    else if (cell.bottom() > bar->value() + viewport()->height())
        bar->setValue(cell.bottom() - viewport()->height() + 1);
}

void GridView::showCurrent()
{
    const auto current = currentIndex();
    if (current && *current < layout_.count)
        makeVisible(*current);
    describeCurrent();
    const auto [first, last] = visible();
    for (Index index = first; index < last; ++index) // the one that was current has no mark of its own
        updateCell(index);
}

/// The cell that keys are on, in words; who reads the screen aloud is told of each change.
void GridView::describeCurrent()
{
    const auto index = cursorIndex();
    if (!index || !isVisible())
        return;
    const auto& item = itemAt(*index);
    const auto words = spokenText(item, signsOf(desktop_, item, thumbnails_.find(item.id).state))
        + QString(", %1 of %2").arg(number(*index + 1), number(store().list().shown().size()));
    if (words != accessibleDescription())
        setAccessibleDescription(words);
}

void GridView::wantPictures()
{
    if (!isVisible())
        return;
    const auto [first, last] = visible();
    const auto ahead = (last - first) * screensAhead;
    std::vector<const PhotoItem*> shown, soon;
    for (Index index = first; index < last; ++index)
        shown.push_back(&itemAt(index));
    if (direction_ > 0)
        for (Index index = last; index < std::min(last + ahead, layout_.count); ++index)
            soon.push_back(&itemAt(index));
    else
        for (Index index = first; index-- > first - std::min(first, ahead);)
            soon.push_back(&itemAt(index));
    const double ratio = devicePixelRatioF();
    thumbnails_.want(shown, soon, static_cast<int>(geometry_.pictureSize() * ratio + 0.5), ratio);
}

void GridView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), theme::centre);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto [first, last] = visible();
    for (Index index = first; index < last; ++index)
        if (const QPoint at = cellPosition(index); event->rect().intersects({at, geometry_.cell()}))
            paintCell(painter, geometry_, at, cellAt(index));
    if (gap_)
        painter.fillRect(gapRect(*gap_), theme::accent);
    if (first == last)
        paintEmpty();
}

void GridView::paintEmpty()
{
    const auto& list = store().list();
    if (store().isReading() && list.items().empty()) // they are about to come: nothing that would flicker
        return;
    QString title = "No photos here";
    QString help;
    if (const auto& fault = store().sourceFault()) {
        title = "This cannot be shown";
        help = qt(*fault);
    } else if (!list.items().empty()) {
        title = "No photo passes the search and the filter";
        help = "Search for something else, or choose another filter in the toolbar; “Clear” there takes all "
               "of "
               "them back.";
    } else if (!store().source()) {
        title = "This library is empty";
        help = "Drag a folder of photos here, or choose “Add Folder…” (Ctrl+Shift+O). The files stay where "
               "they are.";
    }
    QPainter painter(viewport());
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    painter.setFont(large);
    painter.setPen(theme::text);
    const QRect place = viewport()->rect().adjusted(40, 0, -40, 0);
    painter.drawText(place.adjusted(0, 0, 0, -place.height() / 2), Qt::AlignHCenter | Qt::AlignBottom, title);
    painter.setFont(font());
    painter.setPen(theme::mutedText);
    painter.drawText(place.adjusted(0, place.height() / 2 + 10, 0, 0),
        Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, help);
}

void GridView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    layOut();
}

void GridView::hideEvent(QHideEvent* event)
{
    QAbstractScrollArea::hideEvent(event);
    endSweep();
}

void GridView::showEvent(QShowEvent* event)
{
    QAbstractScrollArea::showEvent(event);
    layOut();
    showCurrent();
}

void GridView::scrollContentsBy(int, int dy)
{
    direction_ = dy < 0 ? 1 : -1;
    if (band_ && pressed_)
        pressed_->ry() += dy;
    hovered_.reset();
    viewport()->update();
    wantTimer_.start();
}

bool GridView::event(QEvent* event)
{
    if (event->type() == QEvent::ScreenChangeInternal) // its pixels may be finer
        wantTimer_.start();
    return QAbstractScrollArea::event(event);
}

/// What the warning signs of a cell mean.
bool GridView::viewportEvent(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QAbstractScrollArea::viewportEvent(event);
    const auto* const help = static_cast<QHelpEvent*>(event);
    const auto index = indexAt(help->pos());
    const auto text = index ? warningText(desktop_, itemAt(*index), cellAt(*index).signs) : QString();
    QToolTip::showText(help->globalPos(), plainToolTip(text), viewport());
    return true;
}

void GridView::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::ActivationChange) // a disk may have been connected meanwhile
        wantTimer_.start();
    if (event->type() == QEvent::FontChange) {
        geometry_ = CellGeometry(geometry_.pictureSize(), font());
        layOut();
    }
}

} // namespace korvo
