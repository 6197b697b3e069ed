#pragma once

#include "app/desktop/photos/Marks.h"
#include "app/desktop/photos/Thumbnails.h"
#include "app/desktop/window/MainWindow.h"

#include <QAbstractScrollArea>

namespace korvo {

/// The shown photos in one row, in the grid's order and with its filter, the current one in the middle. It
/// holds nothing per photo.
class Filmstrip : public QAbstractScrollArea {
public:
    explicit Filmstrip(MainWindow& window);

    QSize sizeHint() const override { return {cellWidth(), minimumHeight()}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    using Index = std::size_t;

    const PhotoItem& itemAt(Index index) const;
    Index count() const;
    /// From the first cell that is in sight to one behind the last.
    std::pair<Index, Index> visible() const;
    std::optional<Index> indexAt(QPoint point) const;
    QRect cell(Index index) const;
    QRect pictureIn(const QRect& cell) const;
    MarkPlaces marksIn(const QRect& cell) const;
    PhotoSigns signsAt(Index index) const;
    int cellWidth() const;
    int marksHeight() const;
    void measure();
    void layOut();
    void showCurrent();
    void want();
    void paintCell(QPainter& painter, Index index);
    void hover(std::optional<Index> index);
    bool choose(QPoint at);

    MainWindow& window_;
    Desktop& desktop_;
    Thumbnails thumbnails_;
    std::optional<Index> hovered_;
    std::optional<QPoint> pressed_; // on the current photo, which may be dragged from there
    Connection storeChanged_, browserChanged_;
};

} // namespace korvo
