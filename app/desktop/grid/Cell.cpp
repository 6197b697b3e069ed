#include "app/desktop/grid/Cell.h"

#include "app/desktop/Theme.h"

#include <QFontMetrics>
#include <QPainter>

namespace korvo {

namespace {

constexpr int gap = 3; // between cells
constexpr int padding = 7; // around the picture

MarkHints hintsIn(const Cell& cell)
{
    if (cell.isHovered)
        return MarkHints::all;
    return cell.isSelected ? MarkHints::stars : MarkHints::none;
}

void paintName(QPainter& painter, const CellGeometry& geometry, QPoint at, const Cell& cell)
{
    const QRect place = geometry.name(at);
    painter.setPen(cell.isSelected ? theme::text : theme::mutedText);
    painter.drawText(place, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine,
        painter.fontMetrics().elidedText(titleOf(*cell.item), Qt::ElideMiddle, place.width()));
}

} // namespace

CellGeometry::CellGeometry(int size, const QFont& font)
    : size_(size), font_(font), line_(std::max(18, QFontMetrics(font).height() + 3))
{ }

QSize CellGeometry::cell() const
{
    return {size_ + 2 * (padding + gap), size_ + 2 * (padding + gap) + 2 * line_};
}

QRect CellGeometry::picture(QPoint at) const
{
    return {at.x() + gap + padding, at.y() + gap + padding, size_, size_};
}

MarkPlaces CellGeometry::marks(QPoint at) const
{
    const QRect above = picture(at);
    return marksAcross({above.left(), above.bottom() + 3, size_, line_});
}

QRect CellGeometry::name(QPoint at) const
{
    const QRect above = picture(at);
    return {above.left() - 2, above.bottom() + 3 + line_, size_ + 4, line_};
}

void paintCell(QPainter& painter, const CellGeometry& geometry, QPoint at, const Cell& cell)
{
    const QRectF plate = QRectF(QRect(at, geometry.cell())).adjusted(gap, gap, -gap, -gap);
    painter.setPen(cell.isCurrent ? QPen(theme::accent, 2) : QPen(Qt::NoPen));
    painter.setBrush(cell.isSelected ? theme::selectedCell : theme::cell);
    painter.drawRoundedRect(plate.adjusted(1, 1, -1, -1), 4, 4);
    painter.setFont(geometry.font());
    paintPicture(painter, geometry.picture(at), cell.picture, *cell.item, cell.signs);
    paintMarks(painter, geometry.marks(at), *cell.item, hintsIn(cell));
    paintName(painter, geometry, at, cell);
}

} // namespace korvo
