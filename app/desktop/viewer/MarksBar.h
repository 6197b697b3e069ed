#pragma once

#include "app/desktop/photos/Marks.h"
#include "app/desktop/window/MainWindow.h"

#include <QWidget>

namespace korvo {

/// The line below a photo: its stars, flag and label, which can be clicked, its name, and a note at the end;
/// or a title below something else.
class MarksBar : public QWidget {
public:
    explicit MarksBar(MainWindow& window);

    void setPhoto(std::optional<PhotoID> photo);
    void setTitle(const QString& title);
    void setNote(const QString& note);
    const QString& note() const { return note_; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    const PhotoItem* item() const;
    MarkPlaces places() const;
    int lineHeight() const;

    MainWindow& window_;
    Desktop& desktop_;
    std::optional<PhotoID> photo_;
    QString title_; // in place of a photo
    QString note_;
    Connection storeChanged_;
};

} // namespace korvo
