#include "metadata/Keywords.h"

#include "base/Text.h"
#include "catalog/KeywordList.h"

namespace korvo {

std::vector<std::string> tidyKeywords(std::vector<std::string> entries)
{
    if (entries.size() == 1)
        return splitKeywords(entries.front());
    std::vector<std::string> keywords;
    for (const auto& entry : entries)
        if (const auto keyword = trimmed(entry); !keyword.empty())
            keywords.emplace_back(keyword);
    return keywords;
}

} // namespace korvo
