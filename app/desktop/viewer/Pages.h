#pragma once

#include "app/desktop/viewer/MarksBar.h"
#include "app/desktop/viewer/PhotoView.h"

#include <array>

namespace korvo {

/// A photo with its line of marks below it.
class PhotoPane : public QWidget {
public:
    PhotoPane(MainWindow& window, int viewer, PhotoFeed::Neighbours neighbours);

    PhotoView& view() { return *view_; }
    const PhotoView& view() const { return *view_; }
    std::optional<PhotoID> photo() { return view_->feed().photo(); }
    void setPhoto(std::optional<PhotoID> photo);
    /// Shows a file that is no photo of the library, or only the title where there is none.
    void setFile(const std::filesystem::path& file, const QString& title);
    void setLook(Look look);

private:
    void showNote();
    void describe();

    Desktop& desktop_;
    PhotoView* view_;
    MarksBar* bar_;
    Look look_ = Look::after;
    Connection feedChanged_, zoomed_, storeChanged_;
};

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
    SinglePage(MainWindow& window, ViewMode mode, int viewer);

    PhotoPane* active() override { return pane_; }
    std::vector<PhotoPane*> panes() override { return {pane_}; }

private:
    void follow(bool isOn) override;

    PhotoPane* pane_;
};

/// Two photos beside each other at one zoom: the left one stays, the right one is the current one, but as
/// long as the left one has its menu.
class ComparePage : public PhotoPage {
public:
    ComparePage(MainWindow& window, int viewer);

    PhotoPane* active() override { return steps_; }
    std::vector<PhotoPane*> panes() override { return {left_, right_}; }

private:
    void follow(bool isOn) override;
    void showMenu(PhotoPane& pane, QPoint at) override;
    void swapRoles();
    void begin();
    void showReference();
    void passOverStaying();
    void listChanged();

    PhotoPane *left_, *right_;
    PhotoPane *stays_ = left_, *steps_ = right_;
    bool wasOn_ = false;
    bool showsReference_ = false; // on the left
    Connection storeChanged_;
    Connection drawn_;
    std::array<Connection, 4> followed_; // the views follow each other
};

/// The selected photos beside each other, as large as they can be.
class SurveyPage : public PhotoPage {
public:
    SurveyPage(MainWindow& window, int viewer);

    PhotoPane* active() override;
    std::vector<PhotoPane*> panes() override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Place {
        std::unique_ptr<PhotoPane> pane;
        Connection clicked;
    };
    void follow(bool isOn) override;
    void step(std::ptrdiff_t places) override;
    void arrange();
    void addPane();

    int viewer_;
    std::vector<Place> places_;
    Connection storeChanged_;
};

} // namespace korvo
