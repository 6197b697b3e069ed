#include "tests/catalog/StoreModel.h"

#include "base/Json.h"

namespace korvo {

namespace {

using Kind = LibrarySource::Kind;

void readProjects(const std::vector<ProjectNode>& nodes, Model& found)
{
    for (const auto& node : nodes) {
        found.projects[node.id] = {node.name, node.parentID.value_or(0)};
        readProjects(node.children, found);
    }
}

} // namespace

bool Model::liesIn(std::int64_t project, std::int64_t outer) const
{
    while (project && project != outer)
        project = projects.at(project).parent;
    return project != 0;
}

bool Model::lists(const LibrarySource& source, PhotoID id) const
{
    const auto& photo = photos.at(id);
    switch (source.kind) {
    case Kind::flagged:
        return photo.flagged;
    case Kind::project:
        return liesIn(photo.project, source.id);
    case Kind::album:
        return albums.contains(source.id) && albums.at(source.id).contains(id);
    case Kind::smartAlbum:
        return smartAlbums.contains(source.id) && photo.rating >= smartAlbums.at(source.id);
    case Kind::folder:
        return hasFolder && id <= lastInFolder;
    case Kind::noAltText:
        return photo.altText.empty();
    default:
        return true; // all are new
    }
}

std::set<PhotoID> Model::in(const std::optional<LibrarySource>& source) const
{
    std::set<PhotoID> ids;
    for (const auto& [id, photo] : photos)
        if (!source || lists(*source, id))
            ids.insert(id);
    return ids;
}

void Model::remove(PhotoID id)
{
    photos.erase(id);
    for (auto& [album, members] : albums)
        members.erase(id);
}

ModelPhoto modelOf(const PhotoItem& item)
{
    return {item.rating, item.flagged, static_cast<int>(item.label), item.metadata.title.string(),
        item.metadata.caption.string(), item.metadata.altText.string(), item.metadata.creator.string(),
        item.metadata.copyright.string(), item.metadata.keywords.string(),
        item.editsJSON.empty() ? 0 : fromJson<PhotoEdits>(item.editsJSON.string()).exposure,
        item.projectID.value_or(0)};
}

Model modelOf(Catalog& catalog)
{
    Model found;
    for (const auto& item : catalog.photos(std::nullopt))
        found.photos[item.id] = modelOf(item);
    const auto tree = catalog.tree();
    for (const auto& album : tree.albums) {
        auto& members = found.albums[album.id];
        for (const auto& item : catalog.photos(LibrarySource{Kind::album, album.id, {}}))
            members.insert(item.id);
    }
    readProjects(tree.projects, found);
    for (const auto& album : tree.smartAlbums)
        found.smartAlbums[album.id] = std::stoi(smartAlbumRules(album.rules).rules[0].value);
    found.hasFolder = !tree.folders.empty();
    return found;
}

} // namespace korvo
