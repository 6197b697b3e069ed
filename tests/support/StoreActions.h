#pragma once

#include "catalog/Stacks.h"
#include "catalog/store/LibraryStore.h"

namespace korvo {

// Changes that tests make as one step of undo; the window makes them in other ways.

inline void setFlagged(LibraryStore& store, std::span<const PhotoID> ids, bool flagged)
{
    store.perform("Flag", [&](Catalog& catalog) { catalog.setFlagged(ids, flagged); });
}

inline void setMetadata(LibraryStore& store, std::span<const PhotoID> ids, const MetadataChange& change)
{
    store.perform("Change Metadata",
        [&](Catalog& catalog) { catalog.changeMetadata(ids, change, WriteBack::pending); });
}

inline void setEdits(LibraryStore& store, std::span<const PhotoID> ids, const PhotoEdits& edits)
{
    store.perform("Adjust", [&](Catalog& catalog) { catalog.saveEdits(ids, edits); });
}

inline void setStackState(LibraryStore& store, std::int64_t stack, StackState state)
{
    store.perform("Change Stack", [&](Catalog& catalog) { setStackState(catalog, stack, state); });
}

} // namespace korvo
