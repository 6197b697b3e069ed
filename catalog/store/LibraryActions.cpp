#include "catalog/store/LibraryActions.h"

#include "base/Json.h"
#include "catalog/KeywordList.h"

#include <map>

namespace korvo {

namespace {

/// For changes that may run after the call.
std::vector<PhotoID> owned(std::span<const PhotoID> ids)
{
    return {ids.begin(), ids.end()};
}

} // namespace

void setRating(LibraryStore& store, std::span<const PhotoID> ids, int rating)
{
    store.perform(
        rating < 0 ? "Reject" : "Set Rating",
        [ids = owned(ids), rating](Catalog& catalog) { catalog.setRating(ids, rating); }, ids.size());
}

void setLabel(LibraryStore& store, std::span<const PhotoID> ids, PhotoLabel label)
{
    store.perform(
        "Set Label", [ids = owned(ids), label](Catalog& catalog) { catalog.setLabel(ids, label); },
        ids.size());
}

void setMetadataField(
    LibraryStore& store, std::span<const PhotoID> ids, std::size_t field, std::string_view text)
{
    const auto& [title, value, member, undoTitle] = metadataFields()[field];
    MetadataChange change;
    change.*member = text;
    store.perform(
        std::string(undoTitle),
        [ids = owned(ids), change](
            Catalog& catalog) { catalog.changeMetadata(ids, change, WriteBack::pending); },
        ids.size());
}

void editKeywords(LibraryStore& store, std::span<const PhotoID> ids, const KeywordEdit& edit)
{
    const auto change = [ids = owned(ids), edit](Catalog& catalog) {
        // As they are stored: the list may wait for what background work has changed.
        std::unordered_map<SharedText, std::vector<PhotoID>> byKeywords;
        for (const auto& item : catalog.photosByID(ids))
            byKeywords[item.metadata.keywords].push_back(item.id);
        for (const auto& [keywords, photos] : byKeywords)
            catalog.changeMetadata(
                photos, {.keywords = SharedText(edit.appliedTo(keywords))}, WriteBack::pending);
    };
    store.perform(std::string(metadataFields()[keywordsField].undoTitle), change, ids.size());
}

void changeEdits(LibraryStore& store, std::string title, std::span<const PhotoID> ids,
    const std::function<void(PhotoEdits&)>& change)
{
    const auto changeAll = [ids = owned(ids), change](Catalog& catalog) {
        std::map<std::string, std::vector<PhotoID>, std::less<>> byEdits; // most photos have none
        for (const auto& item : catalog.photosByID(ids))
            byEdits[item.editsJSON.string()].push_back(item.id);
        for (const auto& [json, photos] : byEdits) {
            auto edits = json.empty() ? PhotoEdits() : fromJson<PhotoEdits>(json);
            change(edits);
            catalog.saveEdits(photos, edits);
        }
    };
    store.perform(std::move(title), changeAll, ids.size());
}

void removePhotos(LibraryStore& store, std::span<const PhotoID> ids)
{
    store.perform(
        "Remove from Library", [ids = owned(ids)](Catalog& catalog) { catalog.deletePhotos(ids); },
        ids.size());
}

void removeFolder(LibraryStore& store, std::int64_t id)
{
    const auto photos
        = store.catalog().database().scalar("SELECT COUNT(*) FROM photos WHERE folder_id = ?", id);
    store.perform(
        "Remove Folder from Library", [id](Catalog& catalog) { catalog.removeFolder(id); },
        static_cast<std::size_t>(photos));
}

std::int64_t createProject(
    LibraryStore& store, std::string_view name, std::string_view kind, std::optional<std::int64_t> parent)
{
    std::int64_t id = 0;
    store.perform("New Project", [&](Catalog& catalog) { id = catalog.createProject(name, kind, parent); });
    return id;
}

void renameProject(LibraryStore& store, std::int64_t id, std::string_view name)
{
    store.perform("Rename Project", [&](Catalog& catalog) { catalog.renameProject(id, name); });
}

void placeProject(LibraryStore& store, std::int64_t id, std::optional<std::int64_t> parent,
    std::optional<std::int64_t> before)
{
    store.perform("Move Project", [&](Catalog& catalog) { catalog.placeProject(id, parent, before); });
}

void deleteProject(LibraryStore& store, std::int64_t id)
{
    const auto photos = store.catalog().database().scalar(
        "WITH RECURSIVE inside(id) AS (VALUES(?) UNION "
        "SELECT projects.id FROM projects JOIN inside ON parent_id = inside.id) "
        "SELECT COUNT(*) FROM photos WHERE project_id IN inside",
        id);
    store.perform(
        "Delete Project", [id](Catalog& catalog) { catalog.deleteProject(id); },
        static_cast<std::size_t>(photos));
}

void assignToProject(LibraryStore& store, std::span<const PhotoID> ids, std::optional<std::int64_t> project)
{
    store.perform(
        "Move to Project",
        [ids = owned(ids), project](Catalog& catalog) { catalog.assignToProject(ids, project); }, ids.size());
}

std::int64_t createAlbum(LibraryStore& store, std::string_view name,
    std::optional<std::int64_t> parentProject, std::span<const PhotoID> photos)
{
    std::int64_t id = 0;
    store.perform("New Album", [&](Catalog& catalog) {
        id = catalog.createAlbum(name, parentProject);
        catalog.addToAlbum(id, photos);
    });
    return id;
}

void renameAlbum(LibraryStore& store, std::int64_t id, std::string_view name)
{
    store.perform("Rename Album", [&](Catalog& catalog) { catalog.renameAlbum(id, name); });
}

void placeAlbum(LibraryStore& store, std::int64_t id, std::optional<std::int64_t> parentProject,
    std::optional<std::int64_t> before)
{
    store.perform("Move Album", [&](Catalog& catalog) { catalog.placeAlbum(id, parentProject, before); });
}

void deleteAlbum(LibraryStore& store, std::int64_t id)
{
    store.perform("Delete Album", [&](Catalog& catalog) { catalog.deleteAlbum(id); });
}

void addToAlbum(LibraryStore& store, std::int64_t album, std::span<const PhotoID> photos)
{
    store.perform(
        "Add to Album", [album, ids = owned(photos)](Catalog& catalog) { catalog.addToAlbum(album, ids); },
        photos.size());
}

void moveInAlbum(
    LibraryStore& store, std::int64_t album, std::span<const PhotoID> photos, std::optional<PhotoID> before)
{
    store.perform(
        "Move in Album",
        [album, ids = owned(photos), before](Catalog& catalog) { catalog.moveInAlbum(album, ids, before); },
        photos.size());
}

void removeFromAlbum(LibraryStore& store, std::int64_t album, std::span<const PhotoID> photos)
{
    store.perform(
        "Remove from Album",
        [album, ids = owned(photos)](Catalog& catalog) { catalog.removeFromAlbum(album, ids); },
        photos.size());
}

std::int64_t createKeyword(LibraryStore& store, std::string_view name, std::optional<std::int64_t> parent)
{
    std::int64_t id = 0;
    store.perform("New Keyword", [&](Catalog& catalog) { id = catalog.createKeyword(name, parent); });
    return id;
}

void moveKeyword(LibraryStore& store, std::int64_t id, std::optional<std::int64_t> parent)
{
    store.perform("Move Keyword", [&](Catalog& catalog) { catalog.moveKeyword(id, parent); });
}

void deleteKeyword(LibraryStore& store, std::int64_t id)
{
    store.perform("Delete Keyword", [&](Catalog& catalog) { catalog.deleteKeyword(id); });
}

} // namespace korvo
