#pragma once

#include "app/desktop/grid/Cell.h"
#include "app/desktop/grid/GridLayout.h"
#include "app/desktop/photos/Thumbnails.h"
#include "app/desktop/window/MainWindow.h"

#include <QAbstractScrollArea>
#include <QTimer>

class QRubberBand;

namespace korvo {

/// All shown photos as cells. It holds nothing per photo: what it paints it takes from the store's list, and
/// where a cell lies is arithmetic, so that a million photos cost no more than a hundred.
class GridView : public QAbstractScrollArea {
public:
    static constexpr int smallest = 90, largest = 420; ///< longer side of a thumbnail

    explicit GridView(MainWindow& window);

    int thumbnailSize() const { return geometry_.pictureSize(); }
    /// Keeps the current photo, or else what is in the middle, in sight.
    void setThumbnailSize(int size);
    Signal<int> thumbnailSizeChanged;
    /// How many cells in sight have no picture yet.
    std::size_t emptyCells() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    using Index = std::size_t;

    // What is shown (GridView.cpp)
    LibraryStore& store() const { return desktop_.store(); }
    const PhotoItem& itemAt(Index index) const;
    Cell cellAt(Index index) const;
    void layOut();
    void libraryChanged(const LibraryChange& change);
    void selectionChanged();
    void updatePhotos(std::span<const PhotoID> ids);
    void updateCell(Index index);
    std::pair<Index, Index> visible() const;
    QPoint cellPosition(Index index) const;
    void makeVisible(Index index);
    void showCurrent();
    void describeCurrent();
    void wantPictures();
    void paintEmpty();

    // What the user does (GridInput.cpp)
    std::optional<Index> indexAt(QPoint point) const;
    void choose(Index index, Qt::KeyboardModifiers modifiers);
    void chooseRange(Index from, Index to);
    std::optional<MarkPart> markAt(Index index, QPoint point) const;
    void mark(Index index, const MarkPart& part);
    void dragOut();
    // Drops, which arrange an album (GridDrop.cpp)
    /// Where a drop would go: before a cell, or behind the last one; shown in the row that is pointed at.
    struct Gap {
        std::size_t before = 0;
        std::size_t row = 0;
    };
    Gap gapAt(QPoint point) const;
    QRect gapRect(const Gap& gap) const;
    void setGap(std::optional<Gap> gap);
    void hover(std::optional<Index> index);
    void sweep(QPoint to);
    void scrollAt(QPoint point);
    int scrollAtEdge(QPoint at) const;
    void endSweep();
    std::optional<Index> currentIndex() const;
    std::optional<PhotoID> cursor() const;
    std::optional<Index> cursorIndex() const;
    void setCursorPhoto(std::optional<PhotoID> photo);
    void moveTo(Index index, Qt::KeyboardModifiers modifiers);

    MainWindow& window_;
    Desktop& desktop_;
    CellGeometry geometry_;
    GridLayout layout_;
    Thumbnails thumbnails_;
    std::vector<PhotoID> selected_; // ascending
    QTimer wantTimer_; // pictures are asked for once a frame, not for each step of scrolling
    std::optional<LibrarySource> source_; // that was shown last
    int direction_ = 1; // of the last scrolling
    std::optional<Index> hovered_;
    std::optional<PhotoID> anchor_; // of a range
    std::optional<PhotoID> cursor_; // where the keys are, when it was moved without selecting
    std::optional<Gap> gap_; // while something is dragged
    std::optional<QPoint> pressed_; // moves with what it is on
    QPoint sweptTo_;
    QTimer sweepTimer_; // runs while a sweep is at an edge
    bool chooseOnRelease_ = false;
    QRubberBand* band_ = nullptr;
    std::vector<PhotoID> beforeSweep_;
    Connection storeChanged_;
    Connection browserChanged_;
};

} // namespace korvo
