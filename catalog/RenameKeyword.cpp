#include "catalog/RenameKeyword.h"

#include "catalog/ChangeRow.h"
#include "catalog/KeywordList.h"

#include <algorithm>
#include <map>

namespace korvo {

namespace {

std::string nameOf(Database& database, std::int64_t id)
{
    auto statement = database.kept("SELECT name FROM keywords WHERE id = ?");
    statement.bind(id);
    if (!statement.step())
        throw NotFoundError("keyword", id);
    return std::string(statement.text(0));
}

/// The photos with this entry, by their lists: many share theirs.
std::map<std::string, std::vector<PhotoID>> photosWith(Database& database, std::string_view keyword)
{
    std::map<std::string, std::vector<PhotoID>> photos;
    auto statement = database.kept(
        "SELECT id, keywords FROM photos WHERE version_of IS NULL AND instr(keywords, ?) > 0");
    statement.bind(keyword);
    while (statement.step()) {
        const auto list = splitKeywords(statement.text(1));
        if (std::find(list.begin(), list.end(), keyword) != list.end())
            photos[std::string(statement.text(1))].push_back(statement.integer(0));
    }
    return photos;
}

} // namespace

void renameKeyword(Catalog& catalog, std::int64_t id, std::string_view name)
{
    requireName(name);
    if (name.find(',') != std::string_view::npos)
        throw std::invalid_argument("a comma stands between keywords, and cannot be in one");
    auto& database = catalog.database();
    Transaction transaction(database);
    const auto before = nameOf(database, id);
    changeRow(database, "keyword", id, "UPDATE keywords SET name = ? WHERE id = ?", name, id);
    for (const auto& [keywords, photos] : photosWith(database, before)) {
        auto list = splitKeywords(keywords);
        std::replace(list.begin(), list.end(), before, std::string(name));
        catalog.changeMetadata(
            photos, {.keywords = SharedText(tidyKeywordText(joinKeywords(list)))}, WriteBack::pending);
    }
    transaction.commit();
}

} // namespace korvo
