#pragma once

#include "catalog/store/PhotoList.h"

#include <algorithm>

namespace korvo {

/// What a list shows, in its order.
inline std::vector<PhotoID> shownIDs(const PhotoList& list)
{
    std::vector<PhotoID> ids;
    for (const auto position : list.shown())
        ids.push_back(list.items()[position].id);
    return ids;
}

/// All photos of a list, shown or not, to be compared with those of another.
inline std::vector<PhotoItem> photosByID(const PhotoList& list)
{
    auto items = list.items();
    std::sort(items.begin(), items.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
    return items;
}

/// Whether two lists hold the same photos with the same values and show them alike.
inline bool listTheSame(const PhotoList& a, const PhotoList& b)
{
    return photosByID(a) == photosByID(b) && shownIDs(a) == shownIDs(b);
}

} // namespace korvo
