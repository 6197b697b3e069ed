// What the user does to versions, stacks and smart albums, under the titles of the Edit menu.

#include "base/Json.h"
#include "catalog/LibraryStore.h"
#include "catalog/SmartAlbumEditor.h"

namespace korvo {

PhotoID LibraryStore::createVersion(PhotoID photo, const std::optional<std::string>& name,
    const std::optional<PhotoEdits>& edits, UnixTime addedAt)
{
    PhotoID id = 0;
    perform(
        "New Version", [&](Catalog& catalog) { id = catalog.createVersion(photo, name, edits, addedAt); });
    return id;
}

std::vector<PhotoID> LibraryStore::createVersions(std::span<const PhotoID> photos, UnixTime addedAt)
{
    std::vector<PhotoID> made;
    perform("New Version", [&](Catalog& catalog) {
        for (const PhotoID photo : photos)
            made.push_back(catalog.createVersion(photo, std::nullopt, std::nullopt, addedAt));
        if (source_ && source_->kind == LibrarySource::Kind::album)
            for (std::size_t i = 0; i < made.size(); ++i)
                catalog.addToAlbumBehind(source_->id, made[i], photos[i]);
    });
    return made;
}

void LibraryStore::renameVersion(PhotoID version, std::string_view name)
{
    perform("Rename Version", [&](Catalog& catalog) { catalog.renameVersion(version, name); });
}

void LibraryStore::removeVersion(PhotoID version)
{
    perform("Remove Version", [&](Catalog& catalog) { catalog.deletePhotos(std::span(&version, 1)); });
}

std::int64_t LibraryStore::createStack(std::span<const PhotoID> photos, std::optional<PhotoID> pick)
{
    std::int64_t id = 0;
    perform("Stack", [&](Catalog& catalog) { id = catalog.createStack(photos, pick); });
    return id;
}

void LibraryStore::unstack(std::int64_t id)
{
    perform("Unstack", [&](Catalog& catalog) { catalog.unstack(id); });
}

void LibraryStore::setPick(std::int64_t stack, PhotoID photo)
{
    perform("Set Pick", [&](Catalog& catalog) { catalog.setPick(stack, photo); });
}

void LibraryStore::setStackState(std::int64_t id, StackState state)
{
    perform(state == StackState::collapsed ? "Collapse Stack" : "Expand Stack",
        [&](Catalog& catalog) { catalog.setStackState(id, state); });
}

void LibraryStore::moveInStack(std::int64_t stack, PhotoID photo, std::size_t position)
{
    perform("Move in Stack", [&](Catalog& catalog) { catalog.moveInStack(stack, photo, position); });
}

void LibraryStore::autoStack(double interval)
{
    autoStack(AutoStackPlan(list_.items(), list_.shown(), interval));
}

void LibraryStore::autoStack(const AutoStackPlan& plan)
{
    perform(std::string(autoStackSheet::title), [&](Catalog& catalog) { catalog.createStacks(plan); });
}

std::int64_t LibraryStore::createSmartAlbum(std::string_view name, const SmartAlbumRules& rules)
{
    std::int64_t id = 0;
    perform(std::string(smartAlbumEditor::newTitle),
        [&](Catalog& catalog) { id = catalog.createSmartAlbum(name, toJson(rules)); });
    return id;
}

void LibraryStore::changeSmartAlbum(
    std::int64_t id, std::string_view name, const std::optional<SmartAlbumRules>& rules)
{
    perform(std::string(smartAlbumEditor::editTitle), [&](Catalog& catalog) {
        catalog.changeSmartAlbum(id, name, rules ? toJson(*rules) : catalog.smartAlbum(id).rules);
    });
}

void LibraryStore::deleteSmartAlbum(std::int64_t id)
{
    perform("Delete Smart Album", [&](Catalog& catalog) { catalog.deleteSmartAlbum(id); });
}

} // namespace korvo
