#pragma once

#include "catalog/RuleTest.h"

#include <vector>

namespace korvo {

/// The rules of a smart album, made ready once to be tried on many photos; allocates nothing for them. For
/// use on one thread at a time.
class SmartAlbumMatcher {
public:
    explicit SmartAlbumMatcher(const SmartAlbumRules& rules);

    bool matches(const PhotoItem& item);

private:
    std::vector<RuleTest> tests_; // the cheapest first
    bool matchAll_;
    bool allFail_ = false; // every rule must match, and one matches nothing
    TextFolder folder_;
};

} // namespace korvo
