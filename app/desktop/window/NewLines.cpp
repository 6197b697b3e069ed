#include "app/desktop/window/NewLines.h"

#include "app/desktop/AskName.h"
#include "app/desktop/Texts.h"
#include "app/desktop/window/MainWindow.h"
#include "base/Text.h"
#include "catalog/store/LibraryActions.h"

#include <algorithm>

namespace korvo {

void newProject(MainWindow& window, std::optional<std::int64_t> parent)
{
    if (const auto name = askName(window, "New Project"))
        createProject(window.desktop().store(), *name, "project", parent);
}

void newAlbum(MainWindow& window, std::optional<std::int64_t> project)
{
    auto& desktop = window.desktop();
    const auto photos = desktop.browser().targets(); // those of now: the library goes on while one types
    const auto name = askName(window, "New Album");
    if (!name)
        return;
    createAlbum(desktop.store(), *name, project, photos);
    if (!photos.empty())
        desktop.say("Put " + counted(photos.size(), "photo") + " into “" + *name + "”.", Offer::undo);
}

void newKeyword(MainWindow& window, std::optional<std::int64_t> parent)
{
    auto& store = window.desktop().store();
    const auto& keywords = store.tree().keywords;
    const auto above
        = std::ranges::find(keywords, parent, [](const auto& row) { return std::optional(row.id); });
    const QString title
        = above != keywords.end() ? "New Keyword in “" + qt(above->name) + "”" : QString("New Keyword");
    if (const auto name = askName(window, title))
        createKeyword(store, *name, parent);
}

} // namespace korvo
