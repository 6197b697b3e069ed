#pragma once

#include "app/desktop/Desktop.h"

#include <QString>

class QPainter;
class QPixmap;
class QRect;

namespace korvo {

/// What a photo's picture says beside its marks, and the photo's row does not tell.
struct PhotoSigns {
    bool isBroken = false; ///< the file is missing or cannot be read
    bool isUnsaved = false; ///< its metadata could not be written into the file
    int versions = 0; ///< of the photo, itself left out
    int stackSize = 0;
};

enum class PictureState { fine, broken };

PhotoSigns signsOf(Desktop& desktop, const PhotoItem& item, PictureState picture);

/// A photo's picture in the middle of its place, or what stands for one that is null, with badges in the
/// lower right corner, as large as the painter's font.
void paintPicture(QPainter& painter, const QRect& place, const QPixmap& picture, const PhotoItem& item,
    const PhotoSigns& signs);

/// What the warning signs among them mean, a line each; empty when there are none.
QString warningText(Desktop& desktop, const PhotoItem& item, const PhotoSigns& signs);

/// Marks and badges in words, for those who do not see them: "IMG_1.jpg, 3 stars, flagged, stack of 4".
QString spokenText(const PhotoItem& item, const PhotoSigns& signs);

/// The file's name, before it that of a version: "Version 2 · IMG_1.jpg".
QString titleOf(const PhotoItem& item);

} // namespace korvo
