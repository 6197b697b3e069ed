// The user's actions, each the catalog's statement under the title it has in the Edit menu.

#include "catalog/LibraryStore.h"

#include "base/Json.h"

#include <map>

namespace korvo {

void LibraryStore::setRating(std::span<const PhotoID> ids, int rating)
{
    perform(rating < 0 ? "Reject" : "Set Rating", [&](Catalog& catalog) { catalog.setRating(ids, rating); });
}

void LibraryStore::setFlagged(std::span<const PhotoID> ids, bool flagged)
{
    perform(flagged ? "Flag" : "Remove Flag", [&](Catalog& catalog) { catalog.setFlagged(ids, flagged); });
}

void LibraryStore::setLabel(std::span<const PhotoID> ids, PhotoLabel label)
{
    perform("Set Label", [&](Catalog& catalog) { catalog.setLabel(ids, label); });
}

void LibraryStore::setMetadata(std::span<const PhotoID> ids, const MetadataChange& change)
{
    perform("Change Metadata",
        [&](Catalog& catalog) { catalog.changeMetadata(ids, change, WriteBack::pending); });
}

void LibraryStore::setMetadataField(std::span<const PhotoID> ids, std::size_t field, std::string_view text)
{
    const auto& [title, value, member, undoTitle] = metadataFields()[field];
    MetadataChange change;
    change.*member = text;
    perform(std::string(undoTitle),
        [&](Catalog& catalog) { catalog.changeMetadata(ids, change, WriteBack::pending); });
}

void LibraryStore::editKeywords(std::span<const PhotoID> ids, const KeywordEdit& edit)
{
    std::unordered_map<SharedText, std::vector<PhotoID>> byKeywords;
    for (const auto id : ids)
        if (const PhotoItem* const item = list_.find(id))
            byKeywords[item->metadata.keywords].push_back(id);
    perform(std::string(metadataFields()[keywordsField].undoTitle), [&](Catalog& catalog) {
        for (const auto& [keywords, photos] : byKeywords)
            catalog.changeMetadata(
                photos, {.keywords = SharedText(edit.appliedTo(keywords))}, WriteBack::pending);
    });
}

void LibraryStore::setEdits(std::span<const PhotoID> ids, const PhotoEdits& edits)
{
    perform("Adjust", [&](Catalog& catalog) { catalog.saveEdits(ids, edits); });
}

void LibraryStore::changeEdits(
    std::string title, std::span<const PhotoID> ids, const std::function<void(PhotoEdits&)>& change)
{
    perform(std::move(title), [&](Catalog& catalog) {
        std::map<std::string, std::vector<PhotoID>, std::less<>> byEdits; // most photos have none
        for (const PhotoID id : ids) {
            const auto* const listed = list_.find(id);
            const auto item = listed ? std::nullopt : catalog.photo(id);
            if (listed || item)
                byEdits[(listed ? *listed : *item).editsJSON.string()].push_back(id);
        }
        for (const auto& [json, photos] : byEdits) {
            auto edits = json.empty() ? PhotoEdits() : fromJson<PhotoEdits>(json);
            change(edits);
            catalog.saveEdits(photos, edits);
        }
    });
}

void LibraryStore::saveComposition(PhotoID id, std::string_view json)
{
    perform("Change Composition", [&](Catalog& catalog) { catalog.saveComposition(id, json); });
}

void LibraryStore::removePhotos(std::span<const PhotoID> ids)
{
    perform("Remove from Library", [&](Catalog& catalog) { catalog.deletePhotos(ids); });
}

void LibraryStore::removeFolder(std::int64_t id)
{
    perform("Remove Folder from Library", [&](Catalog& catalog) { catalog.removeFolder(id); });
}

std::int64_t LibraryStore::createProject(
    std::string_view name, std::string_view kind, std::optional<std::int64_t> parent)
{
    std::int64_t id = 0;
    perform("New Project", [&](Catalog& catalog) { id = catalog.createProject(name, kind, parent); });
    return id;
}

std::int64_t LibraryStore::gatherUnderProject(std::string_view name)
{
    std::int64_t id = 0;
    perform("Gather under New Project", [&](Catalog& catalog) { id = catalog.gatherUnderProject(name); });
    return id;
}

void LibraryStore::renameProject(std::int64_t id, std::string_view name)
{
    perform("Rename Project", [&](Catalog& catalog) { catalog.renameProject(id, name); });
}

void LibraryStore::moveProject(std::int64_t id, std::optional<std::int64_t> parent)
{
    perform("Move Project", [&](Catalog& catalog) { catalog.moveProject(id, parent); });
}

void LibraryStore::placeProject(
    std::int64_t id, std::optional<std::int64_t> parent, std::optional<std::int64_t> before)
{
    perform("Move Project", [&](Catalog& catalog) { catalog.placeProject(id, parent, before); });
}

void LibraryStore::deleteProject(std::int64_t id)
{
    perform("Delete Project", [&](Catalog& catalog) { catalog.deleteProject(id); });
}

void LibraryStore::assignToProject(std::span<const PhotoID> ids, std::optional<std::int64_t> project)
{
    perform("Move to Project", [&](Catalog& catalog) { catalog.assignToProject(ids, project); });
}

std::int64_t LibraryStore::createAlbum(std::string_view name, std::optional<std::int64_t> parentProject)
{
    std::int64_t id = 0;
    perform("New Album", [&](Catalog& catalog) { id = catalog.createAlbum(name, parentProject); });
    return id;
}

void LibraryStore::renameAlbum(std::int64_t id, std::string_view name)
{
    perform("Rename Album", [&](Catalog& catalog) { catalog.renameAlbum(id, name); });
}

void LibraryStore::moveAlbum(std::int64_t id, std::optional<std::int64_t> parentProject)
{
    perform("Move Album", [&](Catalog& catalog) { catalog.moveAlbum(id, parentProject); });
}

void LibraryStore::placeAlbum(
    std::int64_t id, std::optional<std::int64_t> parentProject, std::optional<std::int64_t> before)
{
    perform("Move Album", [&](Catalog& catalog) { catalog.placeAlbum(id, parentProject, before); });
}

void LibraryStore::deleteAlbum(std::int64_t id)
{
    perform("Delete Album", [&](Catalog& catalog) { catalog.deleteAlbum(id); });
}

void LibraryStore::addToAlbum(std::int64_t album, std::span<const PhotoID> photos)
{
    perform("Add to Album", [&](Catalog& catalog) { catalog.addToAlbum(album, photos); });
}

void LibraryStore::moveInAlbum(
    std::int64_t album, std::span<const PhotoID> photos, std::optional<PhotoID> before)
{
    perform("Move in Album", [&](Catalog& catalog) { catalog.moveInAlbum(album, photos, before); });
}

void LibraryStore::removeFromAlbum(std::int64_t album, std::span<const PhotoID> photos)
{
    perform("Remove from Album", [&](Catalog& catalog) { catalog.removeFromAlbum(album, photos); });
}

std::int64_t LibraryStore::createKeyword(std::string_view name, std::optional<std::int64_t> parent)
{
    std::int64_t id = 0;
    perform("New Keyword", [&](Catalog& catalog) { id = catalog.createKeyword(name, parent); });
    return id;
}

void LibraryStore::moveKeyword(std::int64_t id, std::optional<std::int64_t> parent)
{
    perform("Move Keyword", [&](Catalog& catalog) { catalog.moveKeyword(id, parent); });
}

void LibraryStore::deleteKeyword(std::int64_t id)
{
    perform("Delete Keyword", [&](Catalog& catalog) { catalog.deleteKeyword(id); });
}

} // namespace korvo
