#include "app/desktop/viewer/MarkColors.h"

#include "app/desktop/Texts.h"

namespace korvo::marks {

namespace {

// All light enough for black letters.
constexpr std::array<QRgb, photoLabelNames.size()> labelColors
    = {0, 0xffe5756b, 0xffeb9b4b, 0xffe8cf55, 0xff77c27a, 0xff74a9e6, 0xffb795e0, 0xffa6a6a6};

} // namespace

void paintLabel(QPainter& painter, const QRect& box, PhotoLabel label)
{
    if (label == PhotoLabel::none)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgba(labelColors[static_cast<std::size_t>(label)]));
    painter.drawRoundedRect(box, 3, 3);
    painter.setPen(Qt::black);
    painter.drawText(box, Qt::AlignCenter, qt(name(label)).left(1));
    painter.restore();
}

} // namespace korvo::marks
