#pragma once

#include "app/view/Browser.h"
#include "base/Record.h"

#include <string>
#include <vector>

namespace korvo {

/// What a view of a library showed, to be shown again at the next start.
struct ViewMemory {
    std::string source; // as parseSource reads it
    std::string order; // the raw values; empty: none
    std::string filter;
    std::vector<PhotoID> selection; // the first ones of very many
};
KORVO_RECORD(ViewMemory, source, order, filter, selection)

ViewMemory viewMemory(const LibraryStore& store);

/// Shows it again; what the library no longer holds is passed over.
void restoreView(LibraryStore& store, const ViewMemory& memory);

/// The same as text. A text that cannot be read is nothing remembered.
std::string textOf(const ViewMemory& memory);
ViewMemory viewMemoryOf(const std::string& text);

} // namespace korvo
