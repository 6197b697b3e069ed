#include "catalog/store/KeywordCompletion.h"

#include "base/FoldedText.h"
#include "base/Text.h"
#include "catalog/Catalog.h"
#include "catalog/KeywordList.h"

#include <algorithm>
#include <map>
#include <unordered_set>

namespace korvo {

namespace {

bool laterWordBegins(std::string_view keyword, std::string_view with)
{
    for (auto at = keyword.find(with); at != keyword.npos; at = keyword.find(with, at + 1))
        if (at > 0 && keyword[at - 1] == ' ')
            return true;
    return false;
}

} // namespace

TypedKeyword typedKeyword(std::string_view list, std::size_t cursor)
{
    const auto before = list.substr(0, cursor);
    const auto comma = before.rfind(',');
    auto start = comma == before.npos ? 0 : comma + 1;
    start = std::min(before.find_first_not_of(' ', start), before.size());
    return {start, before.size(), before.substr(start)};
}

CompletedKeywords completed(std::string_view list, std::size_t cursor, std::string_view keyword)
{
    const auto typed = typedKeyword(list, cursor);
    const auto rest = trimmed(list.substr(std::min(list.find(',', typed.end), list.size())));
    auto text = std::string(list.substr(0, typed.start)) + std::string(keyword);
    if (rest.empty())
        text += ", ";
    const auto place = text.size();
    return {text + std::string(rest), place};
}

std::vector<std::string> libraryKeywords(const Catalog& catalog)
{
    auto database = catalog.lookingConnection();
    std::unordered_set<std::string> seen;
    std::map<std::pair<std::string, std::string>, std::string> sorted; // by folded text, then as written
    const auto take = [&](std::string_view list) {
        for (auto& keyword : splitKeywords(list))
            if (seen.insert(keyword).second)
                sorted.try_emplace({folded(keyword), keyword}, keyword);
    };
    for (const auto* sql :
        {"SELECT DISTINCT keywords FROM photos WHERE keywords != ''", "SELECT name FROM keywords"})
        for (auto statement = database.prepare(sql); statement.step();)
            take(statement.text(0));
    std::vector<std::string> keywords;
    for (auto& [key, keyword] : sorted)
        keywords.push_back(std::move(keyword));
    return keywords;
}

std::vector<std::string> suggestions(
    std::span<const std::string> known, std::string_view list, std::size_t cursor, std::size_t most)
{
    const auto typed = folded(typedKeyword(list, cursor).text);
    std::vector<std::string> first, second;
    if (typed.empty())
        return first;
    const auto present = splitKeywords(list);
    for (const auto& keyword : known) {
        const auto text = folded(keyword);
        const bool begins = text.starts_with(typed);
        if ((begins || laterWordBegins(text, typed))
            && std::find(present.begin(), present.end(), keyword) == present.end())
            (begins ? first : second).push_back(keyword);
    }
    first.insert(first.end(), second.begin(), second.end());
    first.resize(std::min(first.size(), most));
    return first;
}

} // namespace korvo
