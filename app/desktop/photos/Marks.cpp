#include "app/desktop/photos/Marks.h"

#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/desktop/photos/Glyphs.h"

#include <QPainter>

namespace korvo {

namespace {

/// The square in the middle of a place, so much smaller on each side.
QRectF squareIn(const QRect& place, double inset)
{
    const double side = std::min(place.width(), place.height()) - 2 * inset;
    QRectF square(0, 0, side, side);
    square.moveCenter(QRectF(place).center());
    return square;
}

void paintLabel(QPainter& painter, const QRectF& box, PhotoLabel label)
{
    if (label == PhotoLabel::none)
        return;
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(labelColor(label));
    painter.drawRoundedRect(box, 3, 3);
    auto font = painter.font();
    const QString letters = label == PhotoLabel::gray ? "Gy" : qt(name(label)).left(1); // green has the G
    font.setPixelSize(std::max(1, static_cast<int>(box.height() * (letters.size() > 1 ? 0.6 : 0.75))));
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(box, Qt::AlignCenter, letters);
    painter.restore();
}

void paintStars(QPainter& painter, const MarkPlaces& places, const PhotoItem& item, MarkHints hints)
{
    const int stars = starsOf(item);
    for (int number = 1; number <= highestRating; ++number) {
        const QRect place = places.star(number);
        if (number <= stars)
            painter.fillPath(
                starGlyph(squareIn(place, 1)), item.isRejected() ? theme::mutedText : theme::star);
        else if (hints != MarkHints::none)
            painter.fillPath(starGlyph(squareIn(place, place.width() * 0.28)), theme::mutedText);
    }
}

} // namespace

QRect MarkPlaces::star(int number) const
{
    const int side = stars.width() / highestRating;
    return {stars.left() + (number - 1) * side, stars.top(), side, stars.height()};
}

MarkPlaces marksAcross(const QRect& line)
{
    constexpr int gap = 2;
    const int side = std::min(line.height(), line.width() / highestRating);
    const int star = std::min(side, (line.width() - 2 * (side + gap)) / highestRating);
    const QRect flag(line.right() + 1 - side, line.top(), side, line.height());
    return {{line.left(), line.top(), star * highestRating, line.height()}, flag,
        flag.translated(-side - gap, 0)};
}

MarkPlaces marksInRow(const QRect& line, int side)
{
    const QRect stars(line.left(), line.top(), side * highestRating, line.height());
    const QRect flag(stars.right() + 1 + side / 3, line.top(), side, line.height());
    return {stars, flag, flag.translated(side + side / 3, 0)};
}

void paintMarks(QPainter& painter, const MarkPlaces& places, const PhotoItem& item, MarkHints hints)
{
    painter.setRenderHint(QPainter::Antialiasing);
    paintStars(painter, places, item, hints);
    if (const auto flag = squareIn(places.flag, 2); item.isRejected())
        painter.fillPath(crossGlyph(flag), theme::warning);
    else if (item.flagged)
        painter.fillPath(flagGlyph(flag), theme::flag);
    else if (hints == MarkHints::all)
        painter.strokePath(flagGlyph(flag), QPen(theme::mutedText, 1));
    paintLabel(painter, squareIn(places.label, 1), item.label);
    if (item.label == PhotoLabel::none && hints == MarkHints::all) {
        painter.setPen(theme::mutedText);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(squareIn(places.label, 2.5), 2, 2);
    }
}

std::optional<MarkPart> markAt(const MarkPlaces& places, const PhotoItem& item, QPoint point)
{
    using Kind = MarkPart::Kind;
    for (int number = 1; number <= highestRating; ++number)
        if (places.star(number).contains(point))
            return MarkPart{Kind::star, number};
    if (places.flag.contains(point))
        return MarkPart{item.isRejected() ? Kind::cross : Kind::flag};
    if (places.label.contains(point))
        return MarkPart{Kind::label};
    return std::nullopt;
}

QIcon labelIcon(PhotoLabel label)
{
    if (label == PhotoLabel::none)
        return {};
    QPixmap picture(32, 32);
    picture.setDevicePixelRatio(2);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    paintLabel(painter, {1, 1, 14, 14}, label);
    return picture;
}

} // namespace korvo
