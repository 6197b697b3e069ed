#include "app/desktop/adjust/HistogramView.h"

#include <QPainter>

namespace korvo {

namespace {

constexpr int viewHeight = 110;

QPolygonF area(const HistogramData::Heights& heights, const QRectF& place)
{
    QPolygonF polygon;
    polygon << place.bottomLeft();
    const double step = place.width() / (HistogramData::bins - 1);
    for (std::size_t i = 0; i < heights.size(); ++i)
        polygon << QPointF(
            place.left() + static_cast<double>(i) * step, place.bottom() - heights[i] * place.height());
    polygon << place.bottomRight();
    return polygon;
}

} // namespace

HistogramView::HistogramView()
{
    setFixedHeight(viewHeight);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setToolTip("RGB histogram of the adjusted photo — shadows left, highlights right");
    setAccessibleName("RGB tone histogram of the adjusted photo");
}

void HistogramView::show(const HistogramData& tones)
{
    if (tones == data_)
        return;
    data_ = tones;
    update();
}

void HistogramView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0x14, 0x14, 0x14));
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF place = QRectF(rect()).adjusted(0, 6, 0, 0);
    painter.setPen(QColor(255, 255, 255, 24));
    for (int quarter = 1; quarter < 4; ++quarter) {
        const double x = place.left() + place.width() * quarter / 4;
        painter.drawLine(QPointF(x, rect().top()), QPointF(x, rect().bottom()));
    }
    painter.setPen(Qt::NoPen);
    painter.setCompositionMode(QPainter::CompositionMode_Screen);
    const std::pair<const HistogramData::Heights&, QColor> channels[]{
        {data_.red, {0xb8, 0x32, 0x32}}, {data_.green, {0x2e, 0x96, 0x3c}}, {data_.blue, {0x36, 0x58, 0xc8}}};
    for (const auto& [heights, color] : channels) {
        painter.setBrush(color);
        painter.drawPolygon(area(heights, place));
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, 150), 1));
    painter.drawPolyline(area(data_.luminance, place));
}

} // namespace korvo
