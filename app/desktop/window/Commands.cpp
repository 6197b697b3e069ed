#include "app/desktop/window/Commands.h"

#include "app/desktop/Texts.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenuBar>
#include <QShortcut>

#include <algorithm>
#include <utility>

namespace korvo {

namespace {

constexpr std::array<std::pair<CommandMenu, const char*>, 5> menus{
    {{CommandMenu::file, "&File"}, {CommandMenu::edit, "&Edit"}, {CommandMenu::photo, "&Photo"},
        {CommandMenu::view, "&View"}, {CommandMenu::help, "&Help"}}};

constexpr std::size_t mostLookedThrough = 1000;

std::size_t indexOf(Command command)
{
    return static_cast<std::size_t>(command);
}

QList<QKeySequence> keysOf(const CommandInfo& info)
{
    QList<QKeySequence> keys;
    for (const QString& key : QString::fromUtf8(info.keys).split(' ', Qt::SkipEmptyParts)) {
        keys << QKeySequence(key, QKeySequence::PortableText);
        if (info.marks == MarksPhotos::advances)
            keys << QKeySequence("Shift+" + key, QKeySequence::PortableText);
    }
    return keys;
}

const CommandInfo& infoOf(Command command)
{
    return *std::ranges::find(commandTable(), command, &CommandInfo::id);
}

/// What no menu would offer without photos, and what takes those with it that are selected.
bool actsOnPhotos(Command command)
{
    const auto needs = infoOf(command).needs;
    return needs == CommandNeeds::photos || needs == CommandNeeds::several || needs == CommandNeeds::stacked
        || command == Command::newAlbum;
}

bool isStacked(const LibraryStore& store, std::span<const PhotoID> ids)
{
    return std::any_of(ids.begin(), ids.end(), [&](PhotoID id) {
        const auto* item = store.list().find(id);
        return item && item->stackID;
    });
}

} // namespace

Commands::Commands(Desktop& desktop, QWidget& window) : desktop_(desktop)
{
    makeActions(window);
    storeChanged_ = desktop_.store().changed.connect([this](const LibraryChange&) { refresh(); });
    browserChanged_ = desktop_.browser().changed.connect([this] { refresh(); });
    draftChanged_ = desktop_.draft().changed.connect([this] { refresh(); });
    qApp->installEventFilter(this);
}

void Commands::makeActions(QWidget& window)
{
    for (const auto& info : commandTable()) {
        if (!info.text)
            continue;
        const auto action = new QAction(QString::fromUtf8(info.text), this);
        actions_[indexOf(info.id)] = action;
        action->setEnabled(false);
        if (info.keysIn == CommandKeysIn::window) {
            action->setShortcuts(keysOf(info));
            window.addAction(action);
        } // else addCentre() gives it its keys
        connect(action, &QAction::triggered, this, [this, id = info.id] { run(id); });
    }
}

void Commands::handle(Command command, Handler handler, Condition possible)
{
    handlers_[indexOf(command)] = std::move(handler);
    conditions_[indexOf(command)] = std::move(possible);
    refresh();
}

void Commands::run(Command command, const Handler& handler)
{
    const auto marks = infoOf(command).marks;
    const bool shift = std::exchange(shift_, false);
    const bool capsLock = std::exchange(capsLock_, false);
    advance_ = (marks != MarksPhotos::no && capsLock) || (marks == MarksPhotos::advances && shift);
    if (command == Command::undo && takeBackWhatIsOpen())
        return refresh();
    if (actsOnPhotos(command) ? !settleForPhotos()
                              : command != Command::quit && !settle() && command != Command::escape)
        return; // quitting does so itself, and Esc only leaves the field
    if (handler)
        desktop_.attempt(handler);
    advance_ = false;
}

bool Commands::settle()
{
    const bool isKept = !isTyping() || typing_.keep();
    desktop_.attempt([&] { desktop_.draft().keep(); });
    return isKept;
}

bool Commands::settleForPhotos()
{
    if (!isTyping() && !desktop_.draft().isOpen())
        return true;
    const auto meant = desktop_.browser().targets();
    if (!settle() || desktop_.draft().isOpen()) // an older slider would be stored over what follows
        return false;
    const bool areMeant = meant == desktop_.browser().targets();
    if (!areMeant)
        desktop_.say(
            "What you typed or adjusted was stored, and took the photo out of this list. Nothing else "
            "was done to it.");
    return areMeant;
}

/// What is not a step yet is what undo takes back first.
bool Commands::takeBackWhatIsOpen()
{
    if (isTyping())
        typing_.takeBack();
    else if (desktop_.draft().isOpen())
        desktop_.draft().drop();
    else
        return false;
    return true;
}

void Commands::setChecked(Command command, bool checked)
{
    action(command)->setCheckable(true);
    action(command)->setChecked(checked);
}

Commands::Situation Commands::situation() const
{
    auto& store = desktop_.store();
    const auto photos = desktop_.browser().targetCount();
    return {.shown = !store.list().shown().empty(),
        .photos = photos,
        // Looking through very many takes longer than a click that does nothing.
        .stacked = photos > mostLookedThrough || isStacked(store, desktop_.browser().targets()),
        .undo = undoTitle().has_value(),
        .redo = store.redoTitle().has_value()};
}

bool Commands::isPossible(const CommandInfo& info, const Situation& now) const
{
    const auto has = [&] {
        switch (info.needs) {
        case CommandNeeds::nothing:
            return true;
        case CommandNeeds::shown:
            return now.shown;
        case CommandNeeds::photos:
            return now.photos > 0;
        case CommandNeeds::several:
            return now.photos > 1;
        case CommandNeeds::stacked:
            return now.stacked;
        case CommandNeeds::undo:
            return now.undo;
        case CommandNeeds::redo:
            return now.redo;
        }
        return false;
    };
    const auto& condition = conditions_[indexOf(info.id)];
    return handlers_[indexOf(info.id)] && has() && (!condition || condition());
}

/// What undo would take back.
std::optional<std::string> Commands::undoTitle() const
{
    if (isTyping())
        return "Typing";
    return desktop_.draft().isOpen() ? desktop_.draft().title() : desktop_.store().undoTitle();
}

void Commands::refresh()
{
    const auto now = situation();
    for (const auto& info : commandTable())
        if (info.text)
            action(info.id)->setEnabled(isPossible(info, now));
    const auto title = [](const char* verb, const std::optional<std::string>& step) {
        return QString(verb) + (step ? " " + qt(*step) : QString());
    };
    action(Command::undo)->setText(title("Undo", undoTitle()));
    action(Command::redo)->setText(title("Redo", desktop_.store().redoTitle()));
}

void Commands::fillMenus(QMenuBar& bar)
{
    for (const auto& [id, title] : menus) {
        auto* const menu = bar.addMenu(QString::fromUtf8(title));
        connect(menu, &QMenu::aboutToShow, this, [this] { refresh(); }); // something may have been typed
        fillMenu(*menu, id);
    }
}

void Commands::fillMenu(QMenu& menu, CommandMenu which)
{
    QMenu* sub = nullptr;
    for (const auto& info : commandTable()) {
        if (info.menu != which)
            continue;
        if (!info.submenu)
            sub = nullptr;
        else if (!sub || sub->title() != QString::fromUtf8(info.submenu))
            sub = menu.addMenu(QString::fromUtf8(info.submenu));
        QMenu& target = sub ? *sub : menu;
        if (info.text)
            target.addAction(action(info.id));
        else
            target.addSeparator();
    }
}

void Commands::addCentre(QWidget& widget)
{
    for (const auto& info : commandTable()) {
        if (info.keysIn != CommandKeysIn::centre)
            continue;
        for (const auto& key : keysOf(info)) {
            const auto shortcut = new QShortcut(key, &widget);
            shortcut->setContext(Qt::WidgetWithChildrenShortcut);
            connect(shortcut, &QShortcut::activated, action(info.id), &QAction::trigger);
        }
    }
}

bool Commands::eventFilter(QObject* watched, QEvent* event)
{
    // The first that is heard of a key, before any shortcut. The lock is the same bit under X11 and Wayland.
    if (event->type() == QEvent::ShortcutOverride) {
        constexpr quint32 capsLock = 2;
        const auto* const key = static_cast<QKeyEvent*>(event);
        shift_ = key->modifiers().testFlag(Qt::ShiftModifier);
        capsLock_ = (key->nativeModifiers() & capsLock) != 0;
    } else if (event->type() == QEvent::MouseButtonPress) {
        shift_ = capsLock_ = false; // what a menu is asked for by the mouse marks without moving on
    }
    return QObject::eventFilter(watched, event);
}

} // namespace korvo
