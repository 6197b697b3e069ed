#pragma once

// How to add a command: its line stands in CommandTable.cpp and its name in `Command` below; the part that
// carries it out says, once,
//
//     commands.handle(Command::rotateLeft, [this] { rotate(-90); });
//
// and, where the table's condition is not all, names a further one:
//
//     commands.handle(Command::paste, [this] { paste(); }, [this] { return copied_.has_value(); });
//
// The menus, the shortcuts and the list of keys come from the table. A command nobody handles stays disabled.
// Handlers act on `desktop.browser().targets()`; what they throw is shown to the user. For commands that mark
// photos ("advances" in the table), `advance()` tells whether Shift or Caps Lock asks for the next photo, and
// the table adds the keys with Shift by itself. For a context menu take `commands.action(Command::stack)`.
// A command that can be on or off (a shown sidebar) is ticked by `setChecked`.

#include "app/desktop/Desktop.h"

#include <QAction>
#include <QObject>

#include <array>
#include <functional>
#include <span>

class QMenu;
class QMenuBar;

namespace korvo {

// clang-format off
enum class Command {
    // File
    newLibrary, openLibrary, openRecent, addFolder, importPhotos, importAperture, exportPhotos, saveMetadata, revertMetadata,
    newProject, newAlbum, newSmartAlbum, editSmartAlbum, newKeyword, autoStack, namingPresets, settings, quit,
    // Edit
    undo, redo, selectAll, selectNone, remove, removeFromLibrary, rename, find, clearFilters, copyAdjustments, pasteAdjustments,
    // Photo
    rate0, rate1, rate2, rate3, rate4, rate5, rateUp, rateDown, reject, pick, clearMarks, toggleFlag,
    labelRed, labelOrange, labelYellow, labelGreen, labelBlue, labelPurple, labelGray, labelNone,
    newVersion, showVersions, addTo, moveEarlier, moveLater, stack, unstack, toggleStack, setPick, earlierInStack, laterInStack, rotateLeft, rotateRight, autoAdjust, resetAdjustments,
    shiftDates, setPosition, clearPosition, showInFolder,
    // View
    grid, viewer, space, cycle, compare, survey, actualSize, zoomIn, zoomOut, loupe, beforeAfter, nextPhoto, previousPhoto,
    fullScreenPhoto, fullScreenWindow, sidebar, inspector, filmstrip, hideSides, largerThumbnails, smallerThumbnails, escape,
    // Help
    keys, about,
    count
};
// clang-format on

enum class CommandMenu { none, file, edit, photo, view, help };

/// What a command needs to be there.
enum class CommandNeeds {
    nothing,
    shown, ///< any photo in the list
    photos, ///< one or more to act on
    several, ///< two or more to act on
    stacked, ///< one to act on that is in a stack
    undo, ///< something to undo
    redo,
};

/// Where a command's keys count. In a text field, the keys that write belong to it.
enum class CommandKeysIn {
    window,
    centre, ///< only while the grid, the viewer or the like has the focus, so that other controls keep theirs
};

/// Whether Shift with the key, or Caps Lock, marks and goes on to the next photo.
enum class MarksPhotos { no, advances, advancesUnderCapsLock };

struct CommandInfo {
    Command id;
    CommandMenu menu;
    const char* submenu; ///< or nullptr
    const char* text; ///< in menus and the list of keys
    const char*
        keys; ///< in QKeySequence's portable form, separated by blanks; the first one stands in the menu
    CommandNeeds needs = CommandNeeds::nothing;
    CommandKeysIn keysIn = CommandKeysIn::window;
    MarksPhotos marks = MarksPhotos::no;
};

/// All commands in the order of the menus. A line without text is a separator.
std::span<const CommandInfo> commandTable();

/// Text fields in which something was typed that is not stored yet.
struct Typing {
    std::function<bool()> isOpen; ///< whether there is one
    std::function<bool()> keep; ///< stores its text; false when that failed
    std::function<void()> takeBack; ///< shows what was there before
};

/// The window's commands. Used on the main thread.
class Commands : public QObject {
public:
    using Handler = std::function<void()>;
    using Condition = std::function<bool()>;

    Commands(Desktop& desktop, QWidget& window);

    /// Who carries the command out, and when that is possible beside what the table says.
    void handle(Command command, Handler handler, Condition possible = {});
    void run(Command command) { run(command, handlers_[static_cast<std::size_t>(command)]); }
    /// The same carried out otherwise, as from a context menu for what was clicked.
    void run(Command command, const Handler& handler);
    /// Keeps what is still open: the text being typed, and what a slider was moved to by keys. False when a
    /// text could not be kept, which the user was told.
    bool settle();
    /// The same before something is done to the photos that commands act on. False, too, when they are others
    /// by then, which the user was told: a text may take its photo out of the list.
    bool settleForPhotos();
    /// Whether a text was typed that is not stored.
    bool isTyping() const { return typing_.isOpen && typing_.isOpen(); }
    /// The text that is being typed, asked before each command.
    void setTyping(Typing typing) { typing_ = std::move(typing); }
    QAction* action(Command command) const { return actions_[static_cast<std::size_t>(command)]; }
    void setChecked(Command command, bool checked);

    /// Whether the running command was called with Shift or under Caps Lock.
    bool advance() const { return advance_; }

    void fillMenus(QMenuBar& bar);
    void fillMenu(QMenu& menu, CommandMenu which);
    /// Makes the keys that count in the centre work in this widget and what is in it.
    void addCentre(QWidget& widget);
    /// Looks again at which commands are possible; done by itself when the library or the browser changes.
    void refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void makeActions(QWidget& window);

    struct Situation {
        bool shown;
        std::size_t photos;
        bool stacked, undo, redo;
    };
    Situation situation() const;
    bool isPossible(const CommandInfo& info, const Situation& now) const;
    bool takeBackWhatIsOpen();
    std::optional<std::string> undoTitle() const;

    Desktop& desktop_;
    std::array<QAction*, static_cast<std::size_t>(Command::count)> actions_{};
    std::array<Handler, static_cast<std::size_t>(Command::count)> handlers_;
    std::array<Condition, static_cast<std::size_t>(Command::count)> conditions_;
    Typing typing_;
    bool advance_ = false;
    bool shift_ = false; // at the last key
    bool capsLock_ = false;
    Connection storeChanged_;
    Connection browserChanged_;
    Connection draftChanged_;
};

} // namespace korvo
