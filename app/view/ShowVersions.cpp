#include "app/view/ShowVersions.h"

#include "base/Text.h"
#include "catalog/store/GroupActions.h"

namespace korvo {

namespace {

/// Whether versions are listed as photos are.
bool listsVersions(const LibraryStore& store)
{
    using Kind = LibrarySource::Kind;
    const auto& source = store.source();
    return source && (source->kind == Kind::album || source->kind == Kind::versions);
}

std::string showAmongVersions(const LibraryStore& store, Browser& browser, PhotoID id)
{
    browser.showVersions(id);
    const bool isHidden = !store.isReading() && !store.isOrdering() && !store.list().shownPosition(id);
    return isHidden ? "The filter hides it." : "";
}

} // namespace

std::string makeVersions(LibraryStore& store, Browser& browser, double now)
{
    const auto made = createVersions(store, browser.targets(), now);
    if (made.empty())
        return "No version was made.";
    if (made.size() != 1 && !listsVersions(store))
        return "Made " + counted(made.size(), "version") + ". The Info tab of each photo lists them.";
    const auto item = store.catalog().photo(made.front());
    const auto said = made.size() == 1 ? "Made “" + (item ? item->versionName.string() : "") + "”."
                                       : "Made " + counted(made.size(), "version") + ".";
    if (listsVersions(store)) {
        store.select(made);
        browser.setCurrent(made.front());
        return said;
    }
    const auto hidden = showAmongVersions(store, browser, made.front());
    return said + " " + (hidden.empty() ? "Esc in the grid goes back." : hidden);
}

std::string openVersion(LibraryStore& store, Browser& browser, PhotoID id)
{
    if (!store.list().shownPosition(id))
        return showAmongVersions(store, browser, id);
    store.select({id});
    browser.setCurrent(id);
    return {};
}

} // namespace korvo
