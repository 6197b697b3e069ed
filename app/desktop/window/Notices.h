#pragma once

#include "app/desktop/window/Commands.h"

#include <QTimer>
#include <QWidget>

class QToolButton;

namespace korvo {

class ElidedLabel;

/// The line that is said to the user: notes pass, errors stay until each was closed, and come back after a
/// note.
class Notices : public QObject {
public:
    /// Both must outlive it.
    Notices(Desktop& desktop, Commands& commands);

    Signal<> changed; ///< the line, or what it offers

    const std::optional<Notice>& shown() const { return shown_; }
    /// Errors that come after the one that is shown.
    std::size_t furtherErrors() const { return errors_.empty() ? 0 : errors_.size() - 1; }
    /// Whether the step that the line offers to take back, or to do again, is still the one that comes next.
    bool isOffered() const;
    void takeOffer();
    /// The error that is shown has been read.
    void close();

private:
    void say(const Notice& notice);
    void show(const Notice& notice);
    void pass();

    Desktop& desktop_;
    Commands& commands_;
    std::optional<Notice> shown_;
    std::optional<Notice> waiting_; // news that came while something was offered
    std::vector<Notice> errors_; // that were not closed yet; the last one is shown
    QTimer timer_;
    Connection noticed_, storeChanged_;
};

/// Shows them; hidden while there is nothing to say.
class NoticeLine : public QWidget {
public:
    /// `notices` must outlive it.
    explicit NoticeLine(Notices& notices, QWidget* parent = nullptr);

private:
    void look();
    void announce(const QString& text);

    Notices& notices_;
    ElidedLabel* text_;
    QToolButton* offer_;
    QToolButton* close_;
    Connection changed_;
};

} // namespace korvo
