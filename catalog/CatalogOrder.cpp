// What stands in an order that the user makes: photos in an album, projects and albums among their siblings.

#include "catalog/ChangeRow.h"

#include <algorithm>
#include <unordered_set>

namespace korvo {

namespace {

using IDs = std::vector<std::int64_t>;

template <typename... Args>
IDs idsInOrder(Database& database, std::string_view sql, const Args&... args)
{
    IDs ids;
    auto statement = database.kept(sql);
    statement.bind(args...);
    while (statement.step())
        ids.push_back(statement.integer(0));
    return ids;
}

/// The ids with those of `moved` that are among them standing together before another one, or at the end.
IDs rearranged(const IDs& ids, std::span<const std::int64_t> moved, std::optional<std::int64_t> before)
{
    const std::unordered_set<std::int64_t> known(ids.begin(), ids.end());
    const std::unordered_set<std::int64_t> leaving(moved.begin(), moved.end());
    IDs result, tail;
    bool isBehind = false;
    for (const auto id : ids) {
        isBehind = isBehind || id == before;
        if (!leaving.contains(id))
            (isBehind ? tail : result).push_back(id);
    }
    std::copy_if(moved.begin(), moved.end(), std::back_inserter(result),
        [&](std::int64_t id) { return known.contains(id); });
    result.insert(result.end(), tail.begin(), tail.end());
    return result;
}

IDs photosInAlbum(Database& database, std::int64_t album)
{
    return idsInOrder(database,
        "SELECT ai.photo_id FROM album_items ai JOIN photos p ON p.id = ai.photo_id "
        "WHERE ai.album_id = ? ORDER BY ai.position, p.filename COLLATE NOCASE",
        album);
}

} // namespace

void Catalog::addToAlbumBehind(std::int64_t album, PhotoID photo, PhotoID member)
{
    Transaction transaction(database_);
    addToAlbum(album, std::span(&photo, 1));
    const auto members = photosInAlbum(database_, album);
    const auto at = std::find(members.begin(), members.end(), member);
    const auto next = at == members.end() ? at : at + 1;
    moveInAlbum(album, std::span(&photo, 1), next == members.end() ? std::nullopt : std::optional(*next));
    transaction.commit();
}

void Catalog::moveInAlbum(std::int64_t album, std::span<const PhotoID> photos, std::optional<PhotoID> before)
{
    Transaction transaction(database_);
    std::int64_t position = 0;
    for (const auto photo : rearranged(photosInAlbum(database_, album), photos, before))
        database_.run("UPDATE album_items SET position = ?1 "
                      "WHERE album_id = ?2 AND photo_id = ?3 AND position != ?1",
            ++position, album, photo);
    transaction.commit();
}

void Catalog::placeProject(
    std::int64_t id, std::optional<std::int64_t> parent, std::optional<std::int64_t> before)
{
    Transaction transaction(database_);
    moveProject(id, parent);
    const auto siblings = idsInOrder(database_,
        "SELECT id FROM projects WHERE parent_id IS ? ORDER BY position, name COLLATE NOCASE", parent);
    std::int64_t position = 0;
    for (const auto project : rearranged(siblings, std::span(&id, 1), before))
        database_.run(
            "UPDATE projects SET position = ?1 WHERE id = ?2 AND position != ?1", ++position, project);
    transaction.commit();
}

void Catalog::placeAlbum(
    std::int64_t id, std::optional<std::int64_t> parentProject, std::optional<std::int64_t> before)
{
    Transaction transaction(database_);
    moveAlbum(id, parentProject);
    // One sequence over all albums, in which those of a project keep their order.
    const auto all = idsInOrder(database_, "SELECT id FROM albums ORDER BY position, name COLLATE NOCASE");
    std::int64_t position = 0;
    for (const auto album : rearranged(all, std::span(&id, 1), before))
        database_.run("UPDATE albums SET position = ?1 WHERE id = ?2 AND position != ?1", ++position, album);
    transaction.commit();
}

void Catalog::moveKeyword(std::int64_t id, std::optional<std::int64_t> parent)
{
    Transaction transaction(database_);
    if (parent
        && database_.scalar("WITH RECURSIVE above(id) AS (SELECT ?1 UNION SELECT k.parent_id FROM keywords k "
                            "JOIN above a ON k.id = a.id WHERE k.parent_id IS NOT NULL) "
                            "SELECT COUNT(*) FROM above WHERE id = ?2",
            *parent, id))
        throw std::invalid_argument("a keyword cannot be put into itself");
    if (parent && database_.scalar("SELECT COUNT(*) FROM keywords WHERE id = ?", *parent) == 0)
        throw NotFoundError("keyword", *parent);
    changeRow(database_, "keyword", id, "UPDATE keywords SET parent_id = ? WHERE id = ?", parent, id);
    transaction.commit();
}

} // namespace korvo
