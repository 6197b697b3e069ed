#include "app/desktop/viewer/MarksBar.h"

#include "app/desktop/Theme.h"
#include "app/desktop/photos/PhotoSigns.h"
#include "app/desktop/window/MarkCommands.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace korvo {

namespace {

constexpr int margin = 10;

} // namespace

MarksBar::MarksBar(MainWindow& window)
    : window_(window), desktop_(window.desktop()),
      storeChanged_(desktop_.store().changed.connect([this](const LibraryChange& change) {
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
    title_.clear();
    update();
}

void MarksBar::setTitle(const QString& title)
{
    photo_.reset();
    title_ = title;
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

MarkPlaces MarksBar::places() const
{
    return marksInRow({margin, 0, width() - margin, height()}, fontMetrics().height());
}

void MarksBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const auto* const photo = item();
    if (photo)
        paintMarks(painter, places(), *photo, MarkHints::all);
    const int left = (photo ? places().label.right() : 0) + margin;
    painter.setPen(theme::mutedText);
    const int noteWidth = fontMetrics().horizontalAdvance(note_);
    painter.drawText(rect().adjusted(0, 0, -margin, 0), Qt::AlignRight | Qt::AlignVCenter, note_);
    painter.setPen(theme::text);
    const QRect room(left, 0, std::max(0, width() - left - noteWidth - 2 * margin), height());
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
        fontMetrics().elidedText(photo ? titleOf(*photo) : title_, Qt::ElideMiddle, room.width()));
}

void MarksBar::mousePressEvent(QMouseEvent* event)
{
    const auto* const photo = item();
    if (!photo || event->button() != Qt::LeftButton)
        return;
    if (const auto part = markAt(places(), *photo, event->position().toPoint()))
        clickOnMark(window_, {photo->id}, *part, mapToGlobal(places().label.topLeft()));
}

} // namespace korvo
