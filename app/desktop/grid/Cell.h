#pragma once

#include "catalog/PhotoItem.h"

#include <QFont>
#include <QPixmap>
#include <QRect>

#include <array>

class QPainter;

namespace korvo {

/// What a cell of the grid shows.
struct Cell {
    const PhotoItem* item = nullptr;
    QPixmap picture; // null while it is not there yet
    bool isBroken = false; // the file is missing or cannot be read
    bool isUnsaved = false; // its metadata could not be written into the file
    bool isSelected = false;
    bool isCurrent = false; // and the grid has the focus
    bool isHovered = false;
    int versions = 0; // of the photo, itself left out
    int stackSize = 0;
};

/// What the mouse may be over.
struct CellPart {
    enum class Kind { none, picture, star, flag, label };
    Kind kind = Kind::none;
    int stars = 0; // for a star, 1 to 5

    bool operator==(const CellPart&) const = default;
};

/// The places in a cell: the picture, below it a line with stars, label and flag, and the name.
class CellGeometry {
public:
    /// `size` is the longer side of the picture.
    CellGeometry(int size, const QFont& font);

    int pictureSize() const { return size_; }
    QSize cell() const;
    QRect picture(QPoint at) const;
    QRect star(QPoint at, int number) const; ///< 1 to 5
    QRect label(QPoint at) const;
    QRect flag(QPoint at) const;
    QRect name(QPoint at) const;
    CellPart partAt(QPoint at, QPoint point) const;
    const QFont& font() const { return font_; }

private:
    int size_;
    QFont font_;
    int line_; // height of a line of text
};

/// Paints a cell whose upper left corner is there.
void paintCell(QPainter& painter, const CellGeometry& geometry, QPoint at, const Cell& cell);

/// The cell in words, for those who do not see it: "IMG_1.jpg, 3 stars, flagged".
QString spokenText(const PhotoItem& item);

} // namespace korvo
