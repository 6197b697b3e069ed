#include "app/desktop/grid/Cell.h"

#include "app/Marking.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/desktop/photos/Glyphs.h"
#include "base/Text.h"
#include "catalog/FileTypes.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStringList>

namespace korvo {

namespace {

constexpr int gap = 3; // between cells
constexpr int padding = 7; // around the picture
constexpr int badge = 14;

/// The picture in the middle of its place, at its own pixels; shrunk while it is one of a larger size.
QRect fittedRect(const QPixmap& picture, const QRect& place)
{
    QSizeF size = picture.deviceIndependentSize();
    if (size.width() > place.width() + 1 || size.height() > place.height() + 1)
        size.scale(place.size(), Qt::KeepAspectRatio);
    const QSizeF space = QSizeF(place.size()) - size;
    return {place.topLeft() + QPointF(space.width() / 2, space.height() / 2).toPoint(), size.toSize()};
}

void paintPicture(QPainter& painter, const QRect& place, const Cell& cell)
{
    if (!cell.picture.isNull()) {
        painter.setOpacity(cell.item->isRejected() ? 0.35 : 1);
        painter.drawPixmap(fittedRect(cell.picture, place), cell.picture);
        painter.setOpacity(1);
    } else if (cell.isBroken) {
        const int side = std::min(48, place.width() / 3);
        QRect middle(0, 0, side, side);
        middle.moveCenter(place.center());
        painter.fillPath(warningGlyph(middle), theme::warning);
    } else {
        painter.fillRect(
            place.adjusted(0, place.height() / 6, 0, -place.height() / 6), theme::selectedCell.darker(130));
    }
}

struct Badge {
    QPainterPath (*glyph)(const QRectF&);
    int number; // 0: none
    QColor color;
};

std::vector<Badge> badgesOf(const Cell& cell)
{
    std::vector<Badge> badges;
    const auto& item = *cell.item;
    const auto add
        = [&](bool shown, QPainterPath (*glyph)(const QRectF&), int number = 0, QColor color = theme::text) {
              if (shown)
                  badges.push_back({glyph, number, color});
          };
    add(cell.isBroken, warningGlyph, 0, theme::warning);
    add(cell.isUnsaved, warningGlyph, 0, theme::star);
    add(item.dirty, pencilGlyph);
    add(item.hasEdits(), slidersGlyph);
    add(cell.versions > 0, versionsGlyph, cell.versions + 1);
    add(cell.stackSize > 0, stackGlyph, cell.stackSize);
    add(item.latitude && item.longitude, pinGlyph);
    add(fileKind(item.filename) == FileKind::video, playGlyph);
    return badges;
}

/// The badges from the right, on dark plates that read on any photo.
void paintBadges(QPainter& painter, const QRect& place, const std::vector<Badge>& badges)
{
    int right = place.right() - 1;
    const int top = place.bottom() - badge - 4;
    for (const auto& [glyph, number, color] : badges) {
        const QString text = number > 0 ? QString::number(number) : QString();
        const int textWidth = text.isEmpty() ? 0 : painter.fontMetrics().horizontalAdvance(text) + 3;
        const QRect plate(right - badge - textWidth - 3, top, badge + textWidth + 4, badge + 4);
        if (plate.left() < place.left())
            return;
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme::plate);
        painter.drawRoundedRect(plate, 3, 3);
        painter.fillPath(glyph(QRectF(plate.left() + 3.5, top + 3.5, badge - 3, badge - 3)), color);
        if (!text.isEmpty()) {
            painter.setPen(color);
            painter.drawText(plate.adjusted(badge + 1, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, text);
        }
        right = plate.left() - 2;
    }
}

void paintMarks(QPainter& painter, const CellGeometry& geometry, QPoint at, const Cell& cell)
{
    const auto& item = *cell.item;
    const int stars = starsOf(item);
    for (int number = 1; number <= highestRating; ++number) {
        const QRectF place = QRectF(geometry.star(at, number)).adjusted(1, 1, -1, -1);
        if (number <= stars)
            painter.fillPath(starGlyph(place), item.isRejected() ? theme::mutedText : theme::star);
        else if (cell.isHovered || cell.isSelected)
            painter.fillPath(starGlyph(place.adjusted(4, 4, -4, -4)), theme::mutedText);
    }
    if (const auto flag = QRectF(geometry.flag(at)).adjusted(2, 2, -2, -2); item.isRejected())
        painter.fillPath(crossGlyph(flag), theme::warning);
    else if (item.flagged)
        painter.fillPath(flagGlyph(flag), theme::flag);
    else if (cell.isHovered)
        painter.strokePath(flagGlyph(flag), QPen(theme::mutedText, 1));
    if (const QRect label = geometry.label(at).adjusted(1, 1, -1, -1); item.label != PhotoLabel::none) {
        paintLabel(painter, label, item.label);
    } else if (cell.isHovered) {
        painter.setPen(theme::mutedText);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(label.adjusted(2, 2, -2, -2), 3, 3);
    }
}

void paintName(QPainter& painter, const CellGeometry& geometry, QPoint at, const Cell& cell)
{
    const QRect place = geometry.name(at);
    QString text = qt(repairedUtf8(cell.item->filename.view()));
    if (!cell.item->isMaster() && !cell.item->versionName.empty())
        text = qt(cell.item->versionName.view()) + " · " + text;
    painter.setPen(cell.isSelected ? theme::text : theme::mutedText);
    painter.drawText(place, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine,
        painter.fontMetrics().elidedText(text, Qt::ElideMiddle, place.width()));
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

QRect CellGeometry::star(QPoint at, int number) const
{
    const QRect above = picture(at);
    const int side = std::min(18, (size_ - 40) / highestRating);
    return {above.left() + (number - 1) * side, above.bottom() + 3, side, side};
}

QRect CellGeometry::flag(QPoint at) const
{
    const QRect above = picture(at);
    return {above.right() - 17, above.bottom() + 3, 18, 18};
}

QRect CellGeometry::label(QPoint at) const
{
    return flag(at).translated(-20, 0);
}

QRect CellGeometry::name(QPoint at) const
{
    const QRect above = picture(at);
    return {above.left() - 2, above.bottom() + 3 + line_, size_ + 4, line_};
}

CellPart CellGeometry::partAt(QPoint at, QPoint point) const
{
    for (int number = 1; number <= highestRating; ++number)
        if (star(at, number).contains(point))
            return {CellPart::Kind::star, number};
    if (flag(at).contains(point))
        return {CellPart::Kind::flag};
    if (label(at).contains(point))
        return {CellPart::Kind::label};
    return {picture(at).contains(point) ? CellPart::Kind::picture : CellPart::Kind::none};
}

void paintCell(QPainter& painter, const CellGeometry& geometry, QPoint at, const Cell& cell)
{
    const QRectF plate = QRectF(QRect(at, geometry.cell())).adjusted(gap, gap, -gap, -gap);
    painter.setPen(cell.isCurrent ? QPen(theme::accent, 2) : QPen(Qt::NoPen));
    painter.setBrush(cell.isSelected ? theme::selectedCell : theme::cell);
    painter.drawRoundedRect(plate.adjusted(1, 1, -1, -1), 4, 4);
    painter.setFont(geometry.font());
    paintPicture(painter, geometry.picture(at), cell);
    paintBadges(painter, geometry.picture(at), badgesOf(cell));
    paintMarks(painter, geometry, at, cell);
    paintName(painter, geometry, at, cell);
}

QString spokenText(const PhotoItem& item)
{
    QStringList words{qt(repairedUtf8(item.filename.view())), qt(ratingText(item.rating))};
    if (item.flagged)
        words << "flagged";
    if (item.label != PhotoLabel::none)
        words << qt(name(item.label)) + " label";
    if (item.hasEdits())
        words << "edited";
    if (item.dirty)
        words << "not yet written";
    return words.join(", ");
}

} // namespace korvo
