#pragma once

#include "app/desktop/Desktop.h"

#include <QWidget>

namespace korvo {

/// The line below a photo: its stars, flag and label, which can be clicked, its name, and a note at the end.
class MarksBar : public QWidget {
public:
    explicit MarksBar(Desktop& desktop);

    void setPhoto(std::optional<PhotoID> photo);
    void setNote(const QString& note);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    const PhotoItem* item() const;
    QRect starRect(int star) const; ///< 1 to 5
    QRect flagRect() const;
    QRect labelRect() const;
    void chooseLabel(const std::vector<PhotoID>& ids);
    int lineHeight() const;
    void paintMarks(QPainter& painter, const PhotoItem& photo);

    Desktop& desktop_;
    std::optional<PhotoID> photo_;
    QString note_;
    Connection storeChanged_;
};

} // namespace korvo
