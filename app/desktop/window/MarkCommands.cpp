#include "app/Marking.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"
#include "base/Text.h"
#include "catalog/store/LibraryActions.h"

namespace korvo {

namespace {

using Ids = std::span<const PhotoID>;

/// Marks what the command acts on, goes on to the next photo when that is asked for, and offers to take back
/// what changed many photos. `act` returns the name of what was done.
void markTargets(MainWindow& window, const std::function<std::string(LibraryStore&, Ids)>& act)
{
    auto& desktop = window.desktop();
    const auto ids = desktop.browser().targets();
    std::vector<PhotoID> next; // none, or the one to go on to
    if (window.commands().advance())
        if (const auto after = desktop.browser().after(ids))
            next = {*after};
    const auto done = act(desktop.store(), ids);
    if (ids.size() > photosBeforeUndoIsOffered)
        desktop.say(done + ": " + counted(ids.size(), "photo") + ".", Offer::undo);
    if (next.empty())
        return;
    if (desktop.browser().mode() == ViewMode::grid)
        desktop.store().select(next);
    desktop.browser().setCurrent(next.front());
}

void addMark(MainWindow& window, Command command, Mark mark)
{
    window.commands().handle(command, [&window, mark] {
        markTargets(window, [mark](LibraryStore& store, Ids ids) { return setMark(store, ids, mark); });
    });
}

void addRating(MainWindow& window, Command command, int rating)
{
    window.commands().handle(command, [&window, rating] {
        markTargets(window, [rating](LibraryStore& store, Ids ids) {
            setRating(store, ids, rating);
            return std::string("Set Rating");
        });
    });
}

void addLabel(MainWindow& window, Command command, PhotoLabel label)
{
    window.commands().handle(command, [&window, label] {
        markTargets(window, [label](LibraryStore& store, Ids ids) {
            setLabel(store, ids, label);
            return std::string("Set Label");
        });
    });
}

} // namespace

void addMarking(MainWindow& window)
{
    for (int stars = 0; stars <= highestRating; ++stars)
        addRating(window, static_cast<Command>(static_cast<int>(Command::rate0) + stars), stars);
    for (const auto& [command, mark] : {std::pair{Command::pick, Mark::pick}, {Command::reject, Mark::reject},
             {Command::clearMarks, Mark::clear}, {Command::toggleFlag, Mark::toggleFlag},
             {Command::rateUp, Mark::oneStarMore}, {Command::rateDown, Mark::oneStarLess}})
        addMark(window, command, mark);
    for (const auto& [command, label] :
        {std::pair{Command::labelRed, PhotoLabel::red}, {Command::labelOrange, PhotoLabel::orange},
            {Command::labelYellow, PhotoLabel::yellow}, {Command::labelGreen, PhotoLabel::green},
            {Command::labelBlue, PhotoLabel::blue}, {Command::labelPurple, PhotoLabel::purple},
            {Command::labelGray, PhotoLabel::gray}, {Command::labelNone, PhotoLabel::none}})
        addLabel(window, command, label);
}

} // namespace korvo
