#include "app/desktop/window/Versions.h"

#include "app/desktop/AskName.h"
#include "app/desktop/Texts.h"
#include "catalog/store/GroupActions.h"

namespace korvo {

namespace {

std::string nameOf(Catalog& catalog, PhotoID version)
{
    const auto item = catalog.photo(version);
    return item ? item->versionName.string() : std::string();
}

} // namespace

std::optional<PhotoID> currentVersion(Desktop& desktop)
{
    const PhotoItem* const item = desktop.browser().currentItem();
    return item && item->versionOf ? std::optional(item->id) : std::nullopt;
}

void renameVersion(MainWindow& window, PhotoID version)
{
    auto& store = window.desktop().store();
    const auto before = qt(nameOf(store.catalog(), version));
    if (const auto name = askName(window, "Rename Version", before))
        renameVersion(store, version, *name);
}

void removeVersion(Desktop& desktop, PhotoID version)
{
    const auto name = nameOf(desktop.store().catalog(), version);
    removeVersion(desktop.store(), version);
    desktop.say("Removed “" + name + "”. Its file stays.", Offer::undo);
}

} // namespace korvo
