#pragma once

#include "catalog/PhotoLabel.h"

#include <QColor>
#include <QPainter>

/// How marks look wherever they are drawn.
namespace korvo::marks {

inline const QColor star(0xf2, 0xc1, 0x4e);
inline const QColor reject(0xe5, 0x6b, 0x5d);

/// The label as its colour with its initial, in a square.
void paintLabel(QPainter& painter, const QRect& box, PhotoLabel label);

} // namespace korvo::marks
