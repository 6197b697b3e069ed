#include "app/view/ViewMemory.h"

#include "base/Json.h"
#include "base/JsonKept.h"

#include <algorithm>

namespace korvo {

namespace {

constexpr std::size_t mostSelected = 10'000;

} // namespace

ViewMemory viewMemory(const LibraryStore& store)
{
    const auto& list = store.list();
    ViewMemory memory{.source = sourceText(store.source()),
        .order = {},
        .filter = {},
        .selection = store.wishedSelection()};
    memory.selection.resize(std::min(memory.selection.size(), mostSelected));
    if (list.sortKey())
        memory.order = nameOf(*list.sortKey());
    if (list.filter())
        memory.filter = nameOf(*list.filter());
    return memory;
}

void restoreView(LibraryStore& store, const ViewMemory& memory)
{
    store.arrange(caseNamed<SortKey>(memory.order), caseNamed<GridFilter>(memory.filter));
    try {
        if (const auto source = parseSource(memory.source)) {
            store.catalog().requireSource(*source);
            store.chooseSource(source);
        }
    } catch (const std::invalid_argument&) { // of a later version: the whole library is shown
    } catch (const NotFoundError&) { // deleted meanwhile by another program: the same
    }
    auto selection = memory.selection;
    if (!store.isReading() && !store.isOrdering())
        std::erase_if(selection, [&](PhotoID id) { return !store.list().shownFor(id); });
    store.select(std::move(selection));
}

std::string textOf(const ViewMemory& memory)
{
    return toJson(memory);
}

ViewMemory viewMemoryOf(const std::string& text)
{
    const ViewMemory nothing{.source = "all", .order = {}, .filter = "unratedOrBetter", .selection = {}};
    return fromKeptJson(text, nothing);
}

} // namespace korvo
