#include "app/desktop/photos/PhotoSigns.h"

#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/desktop/photos/Glyphs.h"
#include "base/Text.h"
#include "catalog/FileTypes.h"

#include <QPainter>
#include <QPixmap>
#include <QStringList>

namespace korvo {

namespace {

struct Badge {
    QPainterPath (*glyph)(const QRectF&);
    int number; // 0: none
    QColor color;
    const char* words; // with a place for the number, if there is one
};

/// From the right.
std::vector<Badge> badgesOf(const PhotoItem& item, const PhotoSigns& signs)
{
    std::vector<Badge> badges;
    const auto add = [&](bool shown, const Badge& badge) {
        if (shown)
            badges.push_back(badge);
    };
    const auto versions = signs.versions + 1;
    add(signs.isBroken, {warningGlyph, 0, theme::warning, "the file is missing or cannot be read"});
    add(signs.isUnsaved, {warningGlyph, 0, theme::star, "could not be written into the file"});
    add(item.dirty, {pencilGlyph, 0, theme::text, "not yet written"});
    add(item.hasEdits(), {slidersGlyph, 0, theme::text, "edited"});
    add(versions > 1, {versionsGlyph, versions, theme::text, "%1 versions"});
    add(signs.stackSize > 0, {stackGlyph, signs.stackSize, theme::text, "stack of %1"});
    add(item.latitude && item.longitude, {pinGlyph, 0, theme::text, "with a position"});
    add(isVideo(item.filename), {playGlyph, 0, theme::text, "video"});
    return badges;
}

/// At its own pixels; shrunk while it is one of a larger size.
QRect fittedRect(const QPixmap& picture, const QRect& place)
{
    QSizeF size = picture.deviceIndependentSize();
    if (size.width() > place.width() + 1 || size.height() > place.height() + 1)
        size.scale(place.size(), Qt::KeepAspectRatio);
    const QSizeF space = QSizeF(place.size()) - size;
    return {place.topLeft() + QPointF(space.width() / 2, space.height() / 2).toPoint(), size.toSize()};
}

/// On dark plates that read on any photo.
void paintBadges(QPainter& painter, const QRect& picture, const std::vector<Badge>& badges)
{
    const int side = std::max(14, painter.fontMetrics().ascent() + 1);
    const int top = picture.bottom() - side - 4;
    int right = picture.right() - 1;
    for (const auto& [glyph, number, color, words] : badges) {
        const QString text = number > 0 ? QString::number(number) : QString();
        const int textWidth = text.isEmpty() ? 0 : painter.fontMetrics().horizontalAdvance(text) + 3;
        const QRect plate(right - side - textWidth - 3, top, side + textWidth + 4, side + 4);
        if (plate.left() < picture.left())
            return;
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme::plate);
        painter.drawRoundedRect(plate, 3, 3);
        painter.fillPath(glyph(QRectF(plate.left() + 3.5, top + 3.5, side - 3, side - 3)), color);
        if (!text.isEmpty()) {
            painter.setPen(color);
            painter.drawText(plate.adjusted(side + 1, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, text);
        }
        right = plate.left() - 2;
    }
}

} // namespace

PhotoSigns signsOf(Desktop& desktop, const PhotoItem& item, PictureState picture)
{
    return {.isBroken = picture == PictureState::broken,
        .isUnsaved = desktop.session().writeBack().failureOf(item.id) != nullptr,
        .versions = static_cast<int>(desktop.store().versionCount(item.id)),
        .stackSize = static_cast<int>(desktop.store().list().stackSize(item))};
}

void paintPicture(QPainter& painter, const QRect& place, const QPixmap& picture, const PhotoItem& item,
    const PhotoSigns& signs)
{
    if (!picture.isNull()) {
        painter.setOpacity(item.isRejected() ? 0.35 : 1);
        painter.drawPixmap(fittedRect(picture, place), picture);
        painter.setOpacity(1);
    } else if (signs.isBroken) {
        const int side = std::min(48, place.width() / 3);
        QRect middle(0, 0, side, side);
        middle.moveCenter(place.center());
        painter.fillPath(warningGlyph(middle), theme::warning);
    } else {
        painter.fillRect(
            place.adjusted(0, place.height() / 6, 0, -place.height() / 6), theme::selectedCell.darker(130));
    }
    paintBadges(painter, place, badgesOf(item, signs));
}

QString warningText(Desktop& desktop, const PhotoItem& item, const PhotoSigns& signs)
{
    QStringList lines;
    if (signs.isBroken)
        lines << "The file is missing or cannot be read: " + qt(item.path().native());
    if (const auto* const why = desktop.session().writeBack().failureOf(item.id))
        lines << qt(*why);
    return lines.join("\n");
}

QString spokenText(const PhotoItem& item, const PhotoSigns& signs)
{
    QStringList words{titleOf(item), qt(ratingText(item.rating))};
    if (item.flagged)
        words << "flagged";
    if (item.label != PhotoLabel::none)
        words << qt(name(item.label)) + " label";
    for (const auto& badge : badgesOf(item, signs))
        words << (badge.number > 0 ? QString(badge.words).arg(badge.number) : QString(badge.words));
    return words.join(", ");
}

QString titleOf(const PhotoItem& item)
{
    const QString file = qt(repairedUtf8(item.filename.view()));
    return item.isMaster() || item.versionName.empty() ? file : qt(item.versionName.view()) + " · " + file;
}

} // namespace korvo
