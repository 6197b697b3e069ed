#pragma once

#include "app/desktop/Ask.h"
#include "app/desktop/Labels.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "base/Text.h"
#include "base/UserError.h"

#include <QDialog>
#include <QPointer>
#include <QVBoxLayout>

#include <utility>

namespace korvo {

/// The open sheet of a kind, brought forward, or a new one. It goes when it is closed, and with the window.
template <typename Sheet, typename... Arguments>
Sheet* showOne(MainWindow& window, Arguments&&... arguments)
{
    static QPointer<Sheet> open;
    if (!open) {
        open = new Sheet(window, std::forward<Arguments>(arguments)...);
        open->setAttribute(Qt::WA_DeleteOnClose);
    }
    open->show();
    open->raise();
    open->activateWindow();
    return open;
}

/// Does something that the user asked for in a sheet, and shows there what goes wrong with it.
template <typename Action>
void attemptIn(QDialog& sheet, Action action)
{
    try {
        action();
    } catch (const std::exception& error) {
        warn(qt(asSentence(textForUser(error))), &sheet);
    }
}

} // namespace korvo
