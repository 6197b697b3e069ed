#include "app/desktop/viewer/MarksBar.h"

#include "app/Marking.h"
#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"
#include "app/desktop/photos/Glyphs.h"
#include "catalog/store/LibraryActions.h"

#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace korvo {

namespace {

constexpr int margin = 10;

} // namespace

MarksBar::MarksBar(Desktop& desktop)
    : desktop_(desktop), storeChanged_(desktop.store().changed.connect([this](const LibraryChange& change) {
          if (photo_ && (change.list || std::ranges::find(change.photos, *photo_) != change.photos.end()))
              update(); // another process's changes are told as a new list
      }))
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setAccessibleName("Marks of the photo");
}

const PhotoItem* MarksBar::item() const
{
    return photo_ ? desktop_.store().list().find(*photo_) : nullptr;
}

void MarksBar::setPhoto(std::optional<PhotoID> photo)
{
    photo_ = photo;
    update();
}

void MarksBar::setNote(const QString& note)
{
    if (std::exchange(note_, note) != note)
        update();
}

int MarksBar::lineHeight() const
{
    return fontMetrics().height() + margin;
}

QSize MarksBar::sizeHint() const
{
    return {200, lineHeight()};
}

QRect MarksBar::starRect(int star) const
{
    const int side = fontMetrics().height();
    return {margin + (star - 1) * side, 0, side, height()};
}

QRect MarksBar::flagRect() const
{
    return starRect(6).translated(margin / 2, 0);
}

QRect MarksBar::labelRect() const
{
    const int side = fontMetrics().height();
    return {flagRect().right() + margin, (height() - side) / 2, side, side};
}

void MarksBar::paintMarks(QPainter& painter, const PhotoItem& photo)
{
    const auto glyphPlace = [](const QRect& place) {
        QRectF square(0, 0, place.width() - 3, place.width() - 3);
        square.moveCenter(QRectF(place).center());
        return square;
    };
    painter.setRenderHint(QPainter::Antialiasing);
    for (int star = 1; star <= highestRating; ++star)
        if (const auto path = starGlyph(glyphPlace(starRect(star))); star <= starsOf(photo))
            painter.fillPath(path, photo.isRejected() ? theme::mutedText : theme::star);
        else
            painter.strokePath(path, QPen(theme::mutedText, 1));
    const auto place = glyphPlace(flagRect());
    if (photo.isRejected())
        painter.fillPath(crossGlyph(place), theme::warning);
    else if (photo.flagged)
        painter.fillPath(flagGlyph(place), theme::flag);
    else
        painter.strokePath(flagGlyph(place), QPen(theme::mutedText, 1));
}

void MarksBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const auto* const photo = item();
    if (!photo)
        return;
    paintMarks(painter, *photo);
    const QRect box = labelRect();
    paintLabel(painter, box, photo->label);
    if (photo->label == PhotoLabel::none) {
        painter.setPen(theme::mutedText);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(box).adjusted(2.5, 2.5, -2.5, -2.5), 3, 3);
    }
    const int left = box.right() + margin;
    painter.setPen(theme::mutedText);
    const int noteWidth = fontMetrics().horizontalAdvance(note_);
    painter.drawText(rect().adjusted(0, 0, -margin, 0), Qt::AlignRight | Qt::AlignVCenter, note_);
    painter.setPen(theme::text);
    const QRect room(left, 0, std::max(0, width() - left - noteWidth - 2 * margin), height());
    const auto name = qt(photo->filename.view())
        + (photo->versionName.empty() ? QString() : " · " + qt(photo->versionName.view()));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
        fontMetrics().elidedText(name, Qt::ElideMiddle, room.width()));
}

/// The label may take the photo out of what is shown, and this line with it while the menu is still there.
void MarksBar::chooseLabel(const std::vector<PhotoID>& ids)
{
    auto* const menu = new QMenu(window());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (int number = 0; number <= static_cast<int>(PhotoLabel::gray); ++number) {
        const auto label = static_cast<PhotoLabel>(number);
        menu->addAction(qt(name(label)), [&desktop = desktop_, ids, label] {
            desktop.attempt([&] { setLabel(desktop.store(), ids, label); });
        });
    }
    menu->popup(mapToGlobal(labelRect().topLeft()));
}

void MarksBar::mousePressEvent(QMouseEvent* event)
{
    const auto* const photo = item();
    if (!photo || event->button() != Qt::LeftButton)
        return;
    const std::vector ids{photo->id};
    const auto at = event->position().toPoint();
    for (int star = 1; star <= highestRating; ++star)
        if (starRect(star).contains(at)) // a click on the last star that is lit puts all out
            return desktop_.attempt(
                [&] { setRating(desktop_.store(), ids, photo->rating == star ? 0 : star); });
    if (labelRect().contains(at))
        return chooseLabel(ids);
    if (flagRect().contains(at) && !photo->isRejected())
        desktop_.attempt([&] { setFlagged(desktop_.store(), ids, !photo->flagged); });
}

} // namespace korvo
