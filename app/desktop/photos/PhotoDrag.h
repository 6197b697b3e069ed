#pragma once

#include "catalog/PhotoItem.h"

#include <QPixmap>
#include <QWidget>

#include <span>
#include <vector>

class QMimeData;

namespace korvo {

/// Drags photos: within the window as photos, out of it as their files. Returns when they were dropped.
void dragPhotos(QWidget& from, std::span<const PhotoItem* const> items, const QPixmap& picture);

/// What is dragged, for the one who takes it over.
QMimeData* dragData(std::span<const PhotoItem* const> items);

/// The photos of this library that are being dragged; none for anything else.
std::vector<PhotoID> draggedPhotos(const QMimeData& data);

/// Whether files or folders of this computer are dragged or pasted; links into the web are none.
bool holdsFiles(const QMimeData& data);

} // namespace korvo
