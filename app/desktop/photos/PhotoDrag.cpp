#include "app/desktop/photos/PhotoDrag.h"

#include "app/desktop/Texts.h"
#include "app/desktop/Theme.h"

#include <QDataStream>
#include <QDrag>
#include <QIODevice>
#include <QMimeData>
#include <QPainter>
#include <QUrl>
#include <QUuid>

#include <algorithm>

namespace korvo {

namespace {

constexpr auto photosType = "application/x-korvo-photos";

/// A library is open in one process: the ids of another's mean other photos here.
const QUuid& thisProcess()
{
    static const QUuid id = QUuid::createUuid();
    return id;
}

/// The picture with the number of photos on it.
QPixmap dragPicture(const QWidget& widget, const QPixmap& picture, std::size_t count)
{
    constexpr int side = 96;
    const double ratio = widget.devicePixelRatioF();
    QPixmap shown(QSizeF(side * ratio, side * ratio).toSize());
    shown.setDevicePixelRatio(ratio);
    shown.fill(Qt::transparent);
    QPainter painter(&shown);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!picture.isNull()) {
        QRectF place({}, picture.size().scaled(side, side, Qt::KeepAspectRatio));
        place.moveCenter({side / 2.0, side / 2.0});
        painter.drawPixmap(place, picture, QRectF(picture.rect()));
    }
    if (count > 1) {
        const QString text = number(count);
        const QRect plate(0, 0, painter.fontMetrics().horizontalAdvance(text) + 14, 22);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme::accentFill);
        painter.drawRoundedRect(plate, 11, 11);
        painter.setPen(Qt::white);
        painter.drawText(plate, Qt::AlignCenter, text);
    }
    return shown;
}

} // namespace

QMimeData* dragData(std::span<const PhotoItem* const> items)
{
    QByteArray ids;
    QDataStream stream(&ids, QIODevice::WriteOnly);
    stream << thisProcess();
    QList<QUrl> files;
    for (const PhotoItem* const item : items) {
        stream << static_cast<qint64>(item->id);
        files << urlOf(item->path());
    }
    auto* const data = new QMimeData;
    data->setData(photosType, ids);
    data->setUrls(files);
    return data;
}

void dragPhotos(QWidget& from, std::span<const PhotoItem* const> items, const QPixmap& picture)
{
    if (items.empty())
        return;
    auto* const drag = new QDrag(from.window()); // the drop may take `from` away
    drag->setMimeData(dragData(items));
    drag->setPixmap(dragPicture(from, picture, items.size()));
    // Never a move: whoever takes the files would take the originals away.
    drag->exec(Qt::CopyAction | Qt::LinkAction, Qt::CopyAction);
}

std::vector<PhotoID> draggedPhotos(const QMimeData& data)
{
    QDataStream stream(data.data(photosType));
    QUuid process;
    stream >> process;
    std::vector<PhotoID> ids;
    if (process != thisProcess())
        return ids;
    while (!stream.atEnd()) {
        qint64 id = 0;
        stream >> id;
        ids.push_back(id);
    }
    return ids;
}

bool holdsFiles(const QMimeData& data)
{
    return std::ranges::any_of(data.urls(), [](const QUrl& url) { return url.isLocalFile(); });
}

} // namespace korvo
