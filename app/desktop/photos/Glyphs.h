#pragma once

#include <QPainterPath>
#include <QRectF>

namespace korvo {

/// Small drawn signs, filled, that fit a rectangle. They need no font.
QPainterPath starGlyph(const QRectF& place);
QPainterPath flagGlyph(const QRectF& place);
QPainterPath crossGlyph(const QRectF& place); ///< rejected
QPainterPath pinGlyph(const QRectF& place); ///< a position
QPainterPath slidersGlyph(const QRectF& place); ///< edited
QPainterPath stackGlyph(const QRectF& place);
QPainterPath versionsGlyph(const QRectF& place);
QPainterPath warningGlyph(const QRectF& place); ///< missing, damaged
QPainterPath pencilGlyph(const QRectF& place); ///< not yet written
QPainterPath playGlyph(const QRectF& place); ///< a video

} // namespace korvo
