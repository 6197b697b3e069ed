#include "catalog/ChangeRow.h"
#include "catalog/LibraryReading.h"
#include "catalog/PhotoRows.h"

namespace korvo {

SmartAlbumRow Catalog::smartAlbum(std::int64_t id)
{
    return smartAlbumIn(database_, id);
}

std::size_t Catalog::countMatching(const SmartAlbumRules& rules, const std::stop_token& stop) const
{
    auto database = lookingConnection();
    auto statement = database.prepare("SELECT * FROM photos WHERE version_of IS NULL");
    PhotoRows photos(statement);
    SmartAlbumMatcher matcher(rules);
    std::size_t count = 0;
    while (!stop.stop_requested() && statement.step())
        count += matcher.matches(photos.item()) ? 1 : 0;
    return count;
}

std::int64_t Catalog::createSmartAlbum(std::string_view name, std::string_view rules)
{
    requireName(name);
    Transaction transaction(database_);
    const auto id = database_.insert("INSERT INTO smart_albums (name, rules) VALUES (?, ?)", name, rules);
    constexpr auto isArranged = "SELECT COUNT(*) FROM smart_albums WHERE position > 0"; // else by name
    if (database_.scalar(isArranged) > 0)
        database_.run(
            "UPDATE smart_albums SET position = (SELECT MAX(position) + 1 FROM smart_albums) WHERE id = ?",
            id);
    transaction.commit();
    return id;
}

void Catalog::changeSmartAlbum(std::int64_t id, std::string_view name, std::string_view rules)
{
    requireName(name);
    changeRow(database_, "smart album", id, "UPDATE smart_albums SET name = ?, rules = ? WHERE id = ?", name,
        rules, id);
}

void Catalog::deleteSmartAlbum(std::int64_t id)
{
    changeRow(database_, "smart album", id, "DELETE FROM smart_albums WHERE id = ?", id);
}

} // namespace korvo
