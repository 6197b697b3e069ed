#pragma once

#include "app/desktop/photos/Thumbnails.h"

#include <QAbstractScrollArea>

namespace korvo {

/// The shown photos in one row, in the grid's order and with its filter, the current one in the middle. It
/// holds nothing per photo.
class Filmstrip : public QAbstractScrollArea {
public:
    explicit Filmstrip(Desktop& desktop);

    QSize sizeHint() const override { return {cellWidth(), minimumHeight()}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    const PhotoItem& itemAt(std::size_t index) const;
    std::size_t count() const;
    /// From the first cell that is in sight to one behind the last.
    std::pair<std::size_t, std::size_t> visible() const;
    QRect cell(std::size_t index) const;
    int cellWidth() const;
    void layOut();
    void showCurrent();
    void want();
    void paintCell(QPainter& painter, std::size_t index);
    void paintMarks(QPainter& painter, const QRect& line, const PhotoItem& item);

    Desktop& desktop_;
    Thumbnails thumbnails_;
    Connection storeChanged_, browserChanged_;
};

} // namespace korvo
