#include "catalog/Catalog.h"

#include "base/JsonError.h"

namespace korvo {

SmartAlbumRow Catalog::smartAlbum(std::int64_t id)
{
    auto statement = database_.kept("SELECT name, rules FROM smart_albums WHERE id = ?");
    statement.bind(id);
    if (!statement.step())
        throw NotFoundError("smart album", id);
    return {id, std::string(statement.text(0)), std::string(statement.text(1))};
}

SmartAlbumMatcher Catalog::smartAlbumMatcher(std::int64_t id)
{
    const auto album = smartAlbum(id);
    try {
        return SmartAlbumMatcher(smartAlbumRules(album.rules));
    } catch (const JsonError& error) {
        throw SmartAlbumError(album.name, error.what());
    }
}

std::size_t Catalog::countMatching(const SmartAlbumRules& rules)
{
    SmartAlbumMatcher matcher(rules);
    std::size_t count = 0;
    forEachPhoto(std::nullopt, [&](PhotoItem&& item) {
        count += matcher.matches(item) ? 1 : 0;
        return true;
    });
    return count;
}

} // namespace korvo
