#pragma once

#include "catalog/PhotoItem.h"

#include <cstddef>
#include <vector>

namespace korvo {

/// What a change of the store's state touched.
struct LibraryChange {
    std::vector<PhotoID> photos; // with new values
    bool list = false; // which photos are shown, or in which order
    bool tree = false; // the sidebar: folders, projects, albums, counts
    bool selection = false;
    bool metadata = false; // the user changed descriptive fields
    std::size_t takenOut = 0; // photos that undo took out of the library with what had been added
};

} // namespace korvo
