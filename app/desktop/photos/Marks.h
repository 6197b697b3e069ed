#pragma once

#include "app/view/Marking.h"

#include <QIcon>
#include <QRect>

class QPainter;

namespace korvo {

/// Where a photo's marks lie in a line.
struct MarkPlaces {
    QRect stars; ///< all five, side by side
    QRect flag; ///< or the cross of a rejected photo
    QRect label;

    QRect star(int number) const; ///< 1 to 5
};

/// Stars at the left end of a line, label and flag at the right, as large as the line is high or as its width
/// allows.
MarkPlaces marksAcross(const QRect& line);
/// All of them one after the other, each as wide as `side`.
MarkPlaces marksInRow(const QRect& line, int side);

/// Which marks are hinted at that the photo has not.
enum class MarkHints { none, stars, all };

void paintMarks(QPainter& painter, const MarkPlaces& places, const PhotoItem& item, MarkHints hints);
/// What is there to be clicked.
std::optional<MarkPart> markAt(const MarkPlaces& places, const PhotoItem& item, QPoint point);

/// The label as its colour with its initial; nothing for none.
QIcon labelIcon(PhotoLabel label);

} // namespace korvo
