#pragma once

#include "app/desktop/viewer/PhotoPane.h"

namespace korvo {

/// What the centre shows in a mode that shows photos. Keys and the wheel go to other photos.
class PhotoPage : public QWidget {
public:
    PhotoPage(MainWindow& window, ViewMode mode);

    ViewMode mode() const { return mode_; }
    /// The one that commands act on; null when none is shown.
    virtual PhotoPane* active() = 0;
    virtual std::vector<PhotoPane*> panes() = 0;
    void setLook(Look look);
    void setLoupe(Loupe loupe);

protected:
    /// Gives a new pane what the others have.
    void dress(PhotoPane& pane);
    /// Brings the panes in line with the browser; those of a mode that is not on show nothing.
    virtual void follow(bool isOn) = 0;
    virtual void step(std::ptrdiff_t places) { desktop_.browser().step(places); }
    void keyPressEvent(QKeyEvent* event) override;
    /// Shows what lies that way of a photo that is not shown whole, or moves the loupe over one that is;
    /// returns whether the key means that.
    bool moveAbout(const QKeyEvent& event);
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    /// A menu for the photo of a pane, on which its commands act.
    virtual void showMenu(PhotoPane& pane, QPoint at);
    void start(); ///< at the end of each constructor

    MainWindow& window_;
    Desktop& desktop_;

private:
    ViewMode mode_;
    Look look_ = Look::after;
    Loupe loupe_ = Loupe::off;
    int wheel_ = 0; // what is left of a notch
    Connection browserChanged_;
};

/// One photo, in the window or on the whole screen.
class SinglePage : public PhotoPage {
public:
    SinglePage(MainWindow& window, ViewMode mode);

    PhotoPane* active() override { return pane_; }
    std::vector<PhotoPane*> panes() override { return {pane_}; }

private:
    void follow(bool isOn) override;

    PhotoPane* pane_;
};

} // namespace korvo
