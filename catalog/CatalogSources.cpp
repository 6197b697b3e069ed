#include "catalog/Catalog.h"

#include "catalog/LibraryReading.h"
#include "catalog/PhotoRows.h"
#include "catalog/SourceQuery.h"

namespace korvo {

void Catalog::requireSource(const LibrarySource& source)
{
    using Kind = LibrarySource::Kind;
    struct Table {
        Kind kind;
        const char* noun;
        const char* count;
    };
    constexpr Table tables[] = {{Kind::folder, "folder", "SELECT COUNT(*) FROM folders WHERE id = ?"},
        {Kind::album, "album", "SELECT COUNT(*) FROM albums WHERE id = ?"},
        {Kind::smartAlbum, "smart album", "SELECT COUNT(*) FROM smart_albums WHERE id = ?"},
        {Kind::project, "project", "SELECT COUNT(*) FROM projects WHERE id = ?"},
        {Kind::person, "person", "SELECT COUNT(*) FROM people WHERE id = ?"},
        {Kind::versions, "photo", "SELECT COUNT(*) FROM photos WHERE id = ? AND version_of IS NULL"}};
    for (const auto& [kind, noun, count] : tables)
        if (kind == source.kind && database_.scalar(count, source.id) == 0)
            throw NotFoundError(noun, source.id);
}

void Catalog::forEachPhoto(const std::optional<LibrarySource>& source, const PhotoUse& use)
{
    korvo::forEachPhoto(database_, source, " ORDER BY p.filename COLLATE NOCASE, p.id", use);
}

std::vector<PhotoItem> Catalog::photos(const std::optional<LibrarySource>& source)
{
    auto items = photosIn(database_, source);
    putInOrder(items, listed(items, listedBy(source)));
    return items;
}

std::vector<PhotoItem> Catalog::photosByID(std::span<const PhotoID> ids)
{
    std::vector<PhotoItem> items;
    items.reserve(ids.size());
    auto statement = database_.kept("SELECT * FROM photos WHERE id = ?");
    PhotoRows rows(statement);
    for (const PhotoID id : ids) {
        statement.bind(id);
        if (statement.step())
            items.push_back(rows.item());
    }
    return items;
}

std::vector<PhotoItem> Catalog::photosOfSource(
    const std::optional<LibrarySource>& source, std::span<const PhotoID> ids)
{
    if (listedBy(source) == ListedBy::hand)
        return photosByID(ids);
    if (source && source->kind == LibrarySource::Kind::smartAlbum) {
        auto matcher = smartAlbumMatcher(database_, source->id);
        auto items = photosOfSource(std::nullopt, ids);
        std::erase_if(items, [&](const PhotoItem& item) { return !matcher.matches(item); });
        return items;
    }
    auto statement = database_.prepare(queryOfOne(source));
    PhotoRows rows(statement);
    std::vector<PhotoItem> items;
    for (const PhotoID id : ids) {
        statement.bind(source ? source->id : 0, id);
        if (statement.step())
            items.push_back(rows.item());
    }
    return items;
}

std::optional<PhotoItem> Catalog::photo(PhotoID id)
{
    auto items = photosByID(std::span(&id, 1));
    return items.empty() ? std::nullopt : std::optional(std::move(items.front()));
}

} // namespace korvo
