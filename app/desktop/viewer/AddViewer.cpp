#include "app/desktop/viewer/Filmstrip.h"
#include "app/desktop/viewer/FullScreen.h"
#include "app/desktop/viewer/Pages.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"

namespace korvo {

namespace {

// The numbers by which the viewers' wishes are told apart.
constexpr int singleViewer = 0, fullScreenViewer = 1, compareViewer = 2, surveyViewer = 10;

/// The pages of the modes that show photos, and the commands on what they show.
class Viewer : public QObject {
public:
    explicit Viewer(MainWindow& window)
        : QObject(&window), desktop_(window.desktop()), commands_(window.commands()),
          single_(new SinglePage(desktop_, ViewMode::viewer, singleViewer)),
          compare_(new ComparePage(desktop_, compareViewer)), survey_(new SurveyPage(desktop_, surveyViewer)),
          fullScreen_(
              new FullScreen(window, new SinglePage(desktop_, ViewMode::fullScreen, fullScreenViewer)))
    {
        window.setCentre(ViewMode::viewer, single_);
        window.setCentre(ViewMode::compare, compare_);
        window.setCentre(ViewMode::survey, survey_);
        window.setFilmstrip(new Filmstrip(desktop_));
        commands_.handle(Command::actualSize, [this] { toggleZoom(); });
        commands_.handle(Command::loupe, [this] { toggleLoupe(); });
        commands_.handle(Command::beforeAfter, [this] { toggleBefore(); });
        browserChanged_ = desktop_.browser().changed.connect([this] { browserChanged(); });
    }

private:
    std::vector<PhotoPage*> pages() { return {single_, compare_, survey_, &fullScreen_->page()}; }

    PhotoPane* active()
    {
        for (auto* const page : pages())
            if (page->mode() == desktop_.browser().mode())
                return page->active();
        return nullptr;
    }

    void toggleZoom()
    {
        if (desktop_.browser().mode() == ViewMode::grid)
            desktop_.browser().setMode(ViewMode::viewer);
        if (auto* const pane = active())
            pane->view().toggleZoom();
    }

    void toggleLoupe()
    {
        if (auto* const pane = active())
            pane->view().setLoupe(!pane->view().hasLoupe());
    }

    void toggleBefore()
    {
        look_ = look_ == Look::after ? Look::before : Look::after;
        showLook();
    }

    void showLook()
    {
        for (auto* const page : pages())
            page->setLook(look_);
        commands_.setChecked(Command::beforeAfter, look_ == Look::before);
    }

    /// Another photo is shown as it is.
    void browserChanged()
    {
        if (look_ == Look::before)
            toggleBefore();
    }

    Desktop& desktop_;
    Commands& commands_;
    SinglePage* single_;
    ComparePage* compare_;
    SurveyPage* survey_;
    FullScreen* fullScreen_;
    Look look_ = Look::after;
    Connection browserChanged_;
};

} // namespace

void addViewer(MainWindow& window)
{
    new Viewer(window); // a child of the window
}

} // namespace korvo
