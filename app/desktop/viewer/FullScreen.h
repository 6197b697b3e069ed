#pragma once

#include "app/desktop/viewer/PhotoPage.h"
#include "app/desktop/window/MainWindow.h"

namespace korvo {

/// The photo on the whole screen, on black: a window of its own while the browser is in that mode. It has the
/// commands' keys too.
class FullScreen : public QWidget {
public:
    /// Takes ownership of the page.
    FullScreen(MainWindow& window, PhotoPage* page);

    PhotoPage& page() { return *page_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void follow();
    void placeNotice();

    Desktop& desktop_;
    PhotoPage* page_;
    NoticeLine* notice_; // over the photo's lower edge
    Connection noticesChanged_;
    Connection browserChanged_;
};

} // namespace korvo
