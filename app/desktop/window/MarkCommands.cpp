#include "app/desktop/window/MarkCommands.h"

#include "app/desktop/photos/Marks.h"
#include "app/desktop/window/MainWindow.h"
#include "app/desktop/window/Parts.h"
#include "catalog/store/LibraryActions.h"

#include <QApplication>
#include <QMenu>

namespace korvo {

namespace {

using Ids = std::span<const PhotoID>;

constexpr std::pair<Command, PhotoLabel> labels[]
    = {{Command::labelRed, PhotoLabel::red}, {Command::labelOrange, PhotoLabel::orange},
        {Command::labelYellow, PhotoLabel::yellow}, {Command::labelGreen, PhotoLabel::green},
        {Command::labelBlue, PhotoLabel::blue}, {Command::labelPurple, PhotoLabel::purple},
        {Command::labelGray, PhotoLabel::gray}, {Command::labelNone, PhotoLabel::none}};

/// Marks what the command acts on, and goes on to the next photo when that is asked for.
void markTargets(MainWindow& window, const std::function<void(LibraryStore&, Ids)>& act)
{
    auto& desktop = window.desktop();
    const auto ids = desktop.browser().targets();
    std::vector<PhotoID> next; // none, or the one to go on to
    if (window.commands().advance())
        if (const auto after = desktop.browser().after(ids))
            next = {*after};
    act(desktop.store(), ids);
    if (next.empty())
        return;
    const bool isGrid = desktop.browser().mode() == ViewMode::grid;
    if (isGrid)
        desktop.store().select(next);
    if (isGrid || desktop.browser().current() == ids.front()) // one that left was gone on from already
        desktop.browser().setCurrent(next.front());
}

void addMark(MainWindow& window, Command command, Mark mark)
{
    window.commands().handle(command, [&window, mark] {
        markTargets(window, [mark](LibraryStore& store, Ids ids) { setMark(store, ids, mark); });
    });
}

void addRating(MainWindow& window, Command command, int rating)
{
    window.commands().handle(command, [&window, rating] {
        markTargets(window, [rating](LibraryStore& store, Ids ids) { setRating(store, ids, rating); });
    });
}

void addLabel(MainWindow& window, Command command, PhotoLabel label)
{
    window.commands().action(command)->setIcon(labelIcon(label));
    window.commands().handle(command, [&window, label] {
        markTargets(window, [label](LibraryStore& store, Ids ids) { setLabel(store, ids, label); });
    });
}

/// What is chosen may take a photo out of what is shown, and the widget that was clicked with it.
void offerLabels(MainWindow& window, const std::vector<PhotoID>& ids, QPoint at)
{
    auto* const menu = new QMenu(QApplication::activeWindow());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const auto& [command, label] : labels) {
        const auto* const action = window.commands().action(command);
        const auto text = action->text() + "\t" + action->shortcut().toString(QKeySequence::NativeText);
        menu->addAction(action->icon(), text, [&window, command, label, ids] {
            window.commands().run(
                command, [&window, label, &ids] { setLabel(window.desktop().store(), ids, label); });
        });
    }
    menu->popup(at);
}

} // namespace

void clickOnMark(MainWindow& window, const std::vector<PhotoID>& ids, const MarkPart& part, QPoint at)
{
    if (part.kind == MarkPart::Kind::label)
        return offerLabels(window, ids, at);
    auto& desktop = window.desktop();
    desktop.attempt([&] { clickMark(desktop.store(), ids, part); });
}

void addMarking(MainWindow& window)
{
    for (int stars = 0; stars <= highestRating; ++stars)
        addRating(window, static_cast<Command>(static_cast<int>(Command::rate0) + stars), stars);
    for (const auto& [command, mark] : {std::pair{Command::pick, Mark::pick}, {Command::reject, Mark::reject},
             {Command::clearMarks, Mark::clear}, {Command::toggleFlag, Mark::toggleFlag},
             {Command::rateUp, Mark::oneStarMore}, {Command::rateDown, Mark::oneStarLess}})
        addMark(window, command, mark);
    for (const auto& [command, label] : labels)
        addLabel(window, command, label);
}

} // namespace korvo
