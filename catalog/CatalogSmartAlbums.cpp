#include "catalog/Catalog.h"

#include "base/JsonError.h"
#include "catalog/LibraryReading.h"
#include "catalog/PhotoRows.h"

namespace korvo {

namespace {

SmartAlbumRow smartAlbumIn(Database& database, std::int64_t id)
{
    auto statement = database.kept("SELECT name, rules FROM smart_albums WHERE id = ?");
    statement.bind(id);
    if (!statement.step())
        throw NotFoundError("smart album", id);
    return {id, std::string(statement.text(0)), std::string(statement.text(1))};
}

} // namespace

SmartAlbumRow Catalog::smartAlbum(std::int64_t id)
{
    return smartAlbumIn(database_, id);
}

SmartAlbumMatcher smartAlbumMatcher(Database& database, std::int64_t id)
{
    const auto album = smartAlbumIn(database, id);
    try {
        return SmartAlbumMatcher(smartAlbumRules(album.rules));
    } catch (const JsonError& error) {
        throw SmartAlbumError(album.name, error.what());
    }
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

} // namespace korvo
