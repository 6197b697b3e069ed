#include "catalog/SmartAlbumMatcher.h"

#include <algorithm>

namespace korvo {

SmartAlbumMatcher::SmartAlbumMatcher(const SmartAlbumRules& rules)
    : matchAll_(rules.matchAll || rules.rules.empty())
{
    for (const auto& rule : rules.rules)
        if (auto test = ruleTest(rule))
            tests_.push_back(*std::move(test));
        else
            allFail_ = matchAll_;
    // In which order the rules are tried changes nothing but the time it takes.
    std::stable_sort(tests_.begin(), tests_.end(),
        [](const RuleTest& a, const RuleTest& b) { return a.test.index() < b.test.index(); });
}

bool SmartAlbumMatcher::matches(const PhotoItem& item)
{
    if (allFail_)
        return false;
    for (auto& test : tests_)
        if (test.holds(item, folder_) != matchAll_)
            return !matchAll_;
    return matchAll_;
}

} // namespace korvo
