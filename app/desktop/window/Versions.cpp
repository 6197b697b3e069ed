#include "app/desktop/window/Versions.h"

#include "app/desktop/AskName.h"
#include "app/desktop/Texts.h"
#include "base/Text.h"
#include "catalog/store/GroupActions.h"

namespace korvo {

namespace {

/// Whether versions are listed as photos are.
bool listsThem(const LibraryStore& store)
{
    const auto& source = store.source();
    return source
        && (source->kind == LibrarySource::Kind::album || source->kind == LibrarySource::Kind::versions);
}

/// Shows the version among the others. Returns what is to be said when it cannot be seen there.
std::string showAmongVersions(Desktop& desktop, PhotoID id)
{
    desktop.browser().showVersions(id);
    const auto& store = desktop.store();
    const bool isHidden = !store.isReading() && !store.isOrdering() && !store.list().shownPosition(id);
    return isHidden ? "The filter hides it." : "";
}

std::string nameOf(Catalog& catalog, PhotoID version)
{
    const auto item = catalog.photo(version);
    return item ? item->versionName.string() : std::string();
}

} // namespace

void newVersions(Desktop& desktop)
{
    auto& store = desktop.store();
    const auto made = createVersions(store, desktop.browser().targets(), desktop.clock().now());
    auto said = made.size() == 1 ? "Made “" + nameOf(store.catalog(), made.front()) + "”."
                                 : "Made " + counted(made.size(), "version") + ".";
    if (listsThem(store)) {
        store.select(made);
        desktop.browser().setCurrent(made.front());
    } else if (made.size() == 1) {
        const auto hidden = showAmongVersions(desktop, made.front());
        said += hidden.empty() ? " Esc in the grid goes back." : " " + hidden;
    } else {
        said += " The Info tab of each photo lists them.";
    }
    desktop.say(said, Offer::undo);
}

void openVersion(Desktop& desktop, PhotoID id)
{
    if (!desktop.store().list().shownPosition(id)) {
        if (const auto hidden = showAmongVersions(desktop, id); !hidden.empty())
            desktop.say(hidden);
        return;
    }
    desktop.store().select({id});
    desktop.browser().setCurrent(id);
}

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
