#include "app/desktop/viewer/ComparePage.h"
#include "app/desktop/viewer/Filmstrip.h"
#include "app/desktop/viewer/FullScreen.h"
#include "app/desktop/viewer/SurveyPage.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"

namespace korvo {

namespace {

/// The pages of the modes that show photos, and the commands on what they show.
class Viewer : public QObject {
public:
    explicit Viewer(MainWindow& window)
        : QObject(&window), desktop_(window.desktop()), commands_(window.commands()),
          single_(new SinglePage(window, ViewMode::viewer)), compare_(new ComparePage(window)),
          survey_(new SurveyPage(window)),
          fullScreen_(new FullScreen(window, new SinglePage(window, ViewMode::fullScreen)))
    {
        window.setCentre(ViewMode::viewer, single_);
        window.setCentre(ViewMode::compare, compare_);
        window.setCentre(ViewMode::survey, survey_);
        window.setFilmstrip(new Filmstrip(window));
        commands_.handle(Command::actualSize, [this] { toggleZoom(); });
        const auto isLarge = [this] { return desktop_.browser().mode() != ViewMode::grid; };
        for (const auto& [command, steps] : {std::pair{Command::zoomIn, 1}, {Command::zoomOut, -1}})
            commands_.handle(
                command,
                [this, steps = steps] {
                    if (auto* const pane = active())
                        pane->view().zoomBy(steps);
                },
                isLarge);
        commands_.handle(
            Command::loupe, [this] { toggleLoupe(); }, isLarge);
        commands_.handle(
            Command::beforeAfter, [this] { toggleBefore(); }, isLarge);
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
        loupe_ = loupe_ == Loupe::off ? Loupe::on : Loupe::off;
        for (auto* const page : pages())
            page->setLoupe(loupe_);
        commands_.setChecked(Command::loupe, loupe_ == Loupe::on);
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

    /// Another photo is shown as it is, and the grid has neither.
    void browserChanged()
    {
        if (look_ == Look::before)
            toggleBefore();
        if (loupe_ == Loupe::on && desktop_.browser().mode() == ViewMode::grid)
            toggleLoupe();
    }

    Desktop& desktop_;
    Commands& commands_;
    SinglePage* single_;
    ComparePage* compare_;
    SurveyPage* survey_;
    FullScreen* fullScreen_;
    Look look_ = Look::after;
    Loupe loupe_ = Loupe::off;
    Connection browserChanged_;
};

} // namespace

void addViewer(MainWindow& window)
{
    new Viewer(window); // a child of the window
}

} // namespace korvo
