#include "app/desktop/photos/Glyphs.h"

#include <QPolygonF>
#include <QTransform>

#include <cmath>
#include <initializer_list>
#include <numbers>

namespace korvo {

namespace {

/// Drawn in a square of 1, and brought into its place.
QPainterPath placed(const QPainterPath& unit, const QRectF& place)
{
    return QTransform::fromTranslate(place.x(), place.y()).scale(place.width(), place.height()).map(unit);
}

QPainterPath polygon(std::initializer_list<QPointF> points)
{
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
    path.closeSubpath();
    return path;
}

QPainterPath starOfOne()
{
    QPolygonF points;
    for (int i = 0; i < 10; ++i) {
        const double radius = i % 2 ? 0.21 : 0.5;
        const double angle = (i * 36 - 90) * std::numbers::pi / 180;
        points << QPointF(0.5 + radius * std::cos(angle), 0.53 + radius * std::sin(angle));
    }
    QPainterPath path;
    path.addPolygon(points);
    path.closeSubpath();
    return path;
}

QPainterPath pinOfOne()
{
    QPainterPath path;
    path.moveTo(0.5, 1);
    path.cubicTo(0.2, 0.65, 0.15, 0.5, 0.15, 0.37);
    path.arcTo(QRectF(0.15, 0.02, 0.7, 0.7), 180, -180);
    path.cubicTo(0.85, 0.5, 0.8, 0.65, 0.5, 1);
    path.addEllipse(QPointF(0.5, 0.37), 0.14, 0.14);
    return path;
}

QPainterPath slidersOfOne()
{
    QPainterPath path;
    const double knobs[] = {0.68, 0.3, 0.55};
    for (int i = 0; i < 3; ++i) {
        const double y = 0.2 + 0.3 * i;
        path.addRect(0.02, y - 0.04, 0.96, 0.08);
        path.addRoundedRect(QRectF(knobs[i] - 0.09, y - 0.13, 0.18, 0.26), 0.05, 0.05);
    }
    path.setFillRule(Qt::WindingFill);
    return path;
}

QPainterPath warningOfOne()
{
    auto path = polygon({{0.5, 0.04}, {1, 0.94}, {0, 0.94}});
    path.addRect(0.44, 0.36, 0.12, 0.28);
    path.addRect(0.44, 0.71, 0.12, 0.12);
    return path;
}

} // namespace

QPainterPath starGlyph(const QRectF& place)
{
    static const auto unit = starOfOne();
    return placed(unit, place);
}

QPainterPath flagGlyph(const QRectF& place)
{
    static const auto unit
        = polygon({{0.16, 0}, {0.28, 0}, {0.28, 0.06}, {0.95, 0.28}, {0.28, 0.55}, {0.28, 1}, {0.16, 1}});
    return placed(unit, place);
}

QPainterPath crossGlyph(const QRectF& place)
{
    static const auto unit = polygon({{0.1, 0.24}, {0.24, 0.1}, {0.5, 0.36}, {0.76, 0.1}, {0.9, 0.24},
        {0.64, 0.5}, {0.9, 0.76}, {0.76, 0.9}, {0.5, 0.64}, {0.24, 0.9}, {0.1, 0.76}, {0.36, 0.5}});
    return placed(unit, place);
}

QPainterPath pinGlyph(const QRectF& place)
{
    static const auto unit = pinOfOne();
    return placed(unit, place);
}

QPainterPath slidersGlyph(const QRectF& place)
{
    static const auto unit = slidersOfOne();
    return placed(unit, place);
}

QPainterPath stackGlyph(const QRectF& place)
{
    static const auto unit = polygon({{0, 0.32}, {0.68, 0.32}, {0.68, 1}, {0, 1}})
        + polygon({{0.16, 0.24}, {0.16, 0.16}, {0.84, 0.16}, {0.84, 0.84}, {0.76, 0.84}, {0.76, 0.24}})
        + polygon({{0.32, 0.08}, {0.32, 0}, {1, 0}, {1, 0.68}, {0.92, 0.68}, {0.92, 0.08}});
    return placed(unit, place);
}

QPainterPath versionsGlyph(const QRectF& place)
{
    static const auto unit = [] {
        QPainterPath path;
        path.addRect(0, 0, 0.62, 0.62);
        path.addRect(0.1, 0.1, 0.42, 0.42); // hollow, by the odd-even rule
        path.addRect(0.38, 0.7, 0.62, 0.3);
        path.addRect(0.7, 0.38, 0.3, 0.32);
        return path;
    }();
    return placed(unit, place);
}

QPainterPath warningGlyph(const QRectF& place)
{
    static const auto unit = warningOfOne();
    return placed(unit, place);
}

QPainterPath pencilGlyph(const QRectF& place)
{
    static const auto unit = polygon({{0, 1}, {0.05, 0.72}, {0.28, 0.95}})
        + polygon({{0.12, 0.65}, {0.66, 0.11}, {0.89, 0.34}, {0.35, 0.88}})
        + polygon({{0.72, 0.05}, {0.78, 0}, {1, 0.22}, {0.95, 0.28}});
    return placed(unit, place);
}

QPainterPath playGlyph(const QRectF& place)
{
    static const auto unit = polygon({{0.12, 0}, {0.95, 0.5}, {0.12, 1}});
    return placed(unit, place);
}

} // namespace korvo
