#include "catalog/KeywordList.h"

#include "base/Text.h"

#include <algorithm>

namespace korvo {

namespace {

bool holds(const std::vector<std::string>& list, const std::string& entry)
{
    return std::find(list.begin(), list.end(), entry) != list.end();
}

std::vector<std::string> without(std::vector<std::string> list, const std::vector<std::string>& others)
{
    std::erase_if(list, [&](const std::string& entry) { return holds(others, entry); });
    return list;
}

std::vector<std::string> onceEach(std::vector<std::string> list)
{
    std::vector<std::string> once;
    for (auto& entry : list)
        if (!holds(once, entry))
            once.push_back(std::move(entry));
    return once;
}

} // namespace

std::vector<std::string> splitKeywords(std::string_view text)
{
    std::vector<std::string> keywords;
    for (const auto piece : split(text, ','))
        if (const auto keyword = trimmed(piece); !keyword.empty())
            keywords.emplace_back(keyword);
    return keywords;
}

std::string joinKeywords(const std::vector<std::string>& keywords)
{
    std::string joined;
    for (const auto& keyword : keywords)
        joined += (joined.empty() ? "" : ", ") + keyword;
    return joined;
}

std::string KeywordEdit::appliedTo(std::string_view keywords) const
{
    auto list = without(splitKeywords(keywords), removed);
    list.insert(list.end(), added.begin(), added.end());
    return joinKeywords(onceEach(std::move(list)));
}

KeywordEdit keywordEdit(std::string_view before, std::string_view after)
{
    const auto old = splitKeywords(before);
    const auto now = splitKeywords(after);
    return {onceEach(without(now, old)), without(old, now)};
}

std::string tidyKeywordText(std::string_view text)
{
    return joinKeywords(onceEach(splitKeywords(text)));
}

} // namespace korvo
