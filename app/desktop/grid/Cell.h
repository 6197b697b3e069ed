#pragma once

#include "app/desktop/photos/Marks.h"
#include "app/desktop/photos/PhotoSigns.h"

#include <QFont>
#include <QPixmap>
#include <QRect>

class QPainter;

namespace korvo {

/// What a cell of the grid shows.
struct Cell {
    const PhotoItem* item = nullptr;
    QPixmap picture; // null while it is not there yet
    PhotoSigns signs;
    bool isSelected = false;
    bool isCurrent = false; // and the grid has the focus
    bool isHovered = false;
};

/// The places in a cell: the picture, below it a line with its marks, and the name.
class CellGeometry {
public:
    /// `size` is the longer side of the picture.
    CellGeometry(int size, const QFont& font);

    int pictureSize() const { return size_; }
    QSize cell() const;
    QRect picture(QPoint at) const;
    MarkPlaces marks(QPoint at) const;
    QRect name(QPoint at) const;
    const QFont& font() const { return font_; }

private:
    int size_;
    QFont font_;
    int line_; // height of a line of text
};

/// Paints a cell whose upper left corner is there.
void paintCell(QPainter& painter, const CellGeometry& geometry, QPoint at, const Cell& cell);

} // namespace korvo
