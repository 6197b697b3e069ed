// What stands in an order that the user makes: photos in an album; projects, albums and smart albums among
// their siblings.

#include "catalog/ChangeRow.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace korvo {

namespace {

using IDs = std::vector<std::int64_t>;

/// What stands in an order, and the number by which it does.
struct Placed {
    std::int64_t id, position;
};

/// The ids and positions that a statement selects.
template <typename... Args>
std::vector<Placed> inOrder(Database& database, std::string_view sql, const Args&... args)
{
    std::vector<Placed> all;
    auto statement = database.kept(sql);
    statement.bind(args...);
    while (statement.step())
        all.push_back({statement.integer(0), statement.integer(1)});
    return all;
}

/// The ids with those of `moved` that are among them standing together before another one, or at the end.
IDs rearranged(
    const std::vector<Placed>& all, std::span<const std::int64_t> moved, std::optional<std::int64_t> before)
{
    std::unordered_set<std::int64_t> known;
    const std::unordered_set<std::int64_t> leaving(moved.begin(), moved.end());
    IDs result, tail;
    bool isBehind = false;
    for (const auto [id, position] : all) {
        known.insert(id);
        isBehind = isBehind || id == before;
        if (!leaving.contains(id))
            (isBehind ? tail : result).push_back(id);
    }
    std::copy_if(moved.begin(), moved.end(), std::back_inserter(result),
        [&](std::int64_t id) { return known.erase(id) > 0; }); // each once
    result.insert(result.end(), tail.begin(), tail.end());
    return result;
}

/// Calls `place` with the id and the new position of each that gets another. The positions that there are
/// stay in use, so that few change: none before the first that stands elsewhere or shares its position, and
/// where nothing came or went none behind the last.
template <typename Place>
void renumber(const std::vector<Placed>& before, const IDs& now, Place place)
{
    std::unordered_map<std::int64_t, std::int64_t> positions;
    for (const auto [id, position] : before)
        positions.emplace(id, position);
    std::size_t at = 0;
    const auto hasItsOwn
        = [&](std::size_t i) { return i == 0 || before[i].position > before[i - 1].position; };
    while (at < now.size() && now[at] == before[at].id && hasItsOwn(at))
        ++at;
    std::int64_t last = at > 0 ? before[at - 1].position : 0;
    for (; at < now.size(); ++at) {
        last = std::max(last + 1, before[at].position);
        if (positions.at(now[at]) != last)
            place(now[at], last);
    }
}

/// Puts one of these before another, or at the end, by a statement that sets the position of an id.
void placeAmong(Database& database, const std::vector<Placed>& siblings, std::int64_t id,
    std::optional<std::int64_t> before, std::string_view setPosition)
{
    renumber(siblings, rearranged(siblings, std::span(&id, 1), before),
        [&](std::int64_t moved, std::int64_t position) { database.run(setPosition, position, moved); });
}

/// The ids with what comes late in them standing behind those that `behind` has it under.
IDs withEachBehind(const std::vector<Placed>& all, const std::unordered_map<std::int64_t, IDs>& behind)
{
    IDs result;
    std::unordered_set<std::int64_t> standing;
    const auto put = [&](std::int64_t id) {
        if (standing.insert(id).second)
            result.push_back(id);
    };
    for (const auto [id, position] : all) {
        put(id);
        if (const auto late = behind.find(id); late != behind.end())
            std::for_each(late->second.begin(), late->second.end(), put);
    }
    return result;
}

std::vector<Placed> photosInAlbum(Database& database, std::int64_t album)
{
    return inOrder(database,
        "SELECT ai.photo_id, ai.position FROM album_items ai JOIN photos p ON p.id = ai.photo_id "
        "WHERE ai.album_id = ? ORDER BY ai.position, p.filename COLLATE NOCASE",
        album);
}

void placeInAlbum(Database& database, std::int64_t album, const std::vector<Placed>& before, const IDs& now)
{
    auto update = database.kept("UPDATE album_items SET position = ? WHERE album_id = ? AND photo_id = ?");
    renumber(before, now, [&](PhotoID photo, std::int64_t position) {
        update.bind(position, album, photo);
        update.run();
    });
}

} // namespace

void Catalog::addToAlbumBehind(
    std::int64_t album, std::span<const PhotoID> photos, std::span<const PhotoID> members)
{
    Transaction transaction(database_);
    addToAlbum(album, photos);
    std::unordered_map<PhotoID, IDs> behind;
    for (std::size_t i = 0; i < photos.size(); ++i)
        behind[members[i]].push_back(photos[i]);
    const auto before = photosInAlbum(database_, album);
    placeInAlbum(database_, album, before, withEachBehind(before, behind));
    transaction.commit();
}

void Catalog::moveInAlbum(std::int64_t album, std::span<const PhotoID> photos, std::optional<PhotoID> before)
{
    Transaction transaction(database_);
    const auto members = photosInAlbum(database_, album);
    placeInAlbum(database_, album, members, rearranged(members, photos, before));
    transaction.commit();
}

void Catalog::placeProject(
    std::int64_t id, std::optional<std::int64_t> parent, std::optional<std::int64_t> before)
{
    Transaction transaction(database_);
    moveProject(id, parent);
    const auto siblings = inOrder(database_,
        "SELECT id, position FROM projects WHERE parent_id IS ? ORDER BY position, name COLLATE NOCASE",
        parent);
    placeAmong(database_, siblings, id, before, "UPDATE projects SET position = ? WHERE id = ?");
    transaction.commit();
}

void Catalog::placeAlbum(
    std::int64_t id, std::optional<std::int64_t> parentProject, std::optional<std::int64_t> before)
{
    Transaction transaction(database_);
    moveAlbum(id, parentProject);
    // One sequence over all albums, in which those of a project keep their order.
    const auto all
        = inOrder(database_, "SELECT id, position FROM albums ORDER BY position, name COLLATE NOCASE");
    placeAmong(database_, all, id, before, "UPDATE albums SET position = ? WHERE id = ?");
    transaction.commit();
}

void Catalog::placeSmartAlbum(std::int64_t id, std::optional<std::int64_t> before)
{
    Transaction transaction(database_);
    requireSource({LibrarySource::Kind::smartAlbum, id, {}});
    const auto all
        = inOrder(database_, "SELECT id, position FROM smart_albums ORDER BY position, name COLLATE NOCASE");
    placeAmong(database_, all, id, before, "UPDATE smart_albums SET position = ? WHERE id = ?");
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
