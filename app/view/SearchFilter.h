#pragma once

#include "catalog/PhotoLabel.h"
#include "catalog/SmartAlbumRules.h"

#include <set>
#include <string>
#include <vector>

namespace korvo {

/// What the search field and the filter bar ask for; nothing by default.
struct SearchFilter {
    enum class Kind { any, photos, videos };

    std::string words; ///< each must be in a text, a name, a person, a camera or a lens
    int leastStars = 0;
    bool flaggedOnly = false;
    std::set<PhotoLabel> labels; ///< any of these; none: whatever label
    Kind kind = Kind::any;

    bool operator==(const SearchFilter&) const = default;
};

/// The rules that a photo must match, all of them, to be shown.
std::vector<SmartAlbumRules> rulesOf(const SearchFilter& filter);

} // namespace korvo
