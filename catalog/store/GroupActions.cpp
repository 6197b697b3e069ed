#include "catalog/store/GroupActions.h"

#include "base/Json.h"
#include "catalog/Stacks.h"
#include "catalog/Versions.h"
#include "catalog/store/SmartAlbumEditor.h"

namespace korvo {

std::vector<PhotoID> createVersions(LibraryStore& store, std::span<const PhotoID> photos, UnixTime addedAt)
{
    std::vector<PhotoID> made;
    store.perform("New Version", [&](Catalog& catalog) {
        for (const PhotoID photo : photos)
            made.push_back(createVersion(catalog, photo, std::nullopt, std::nullopt, addedAt));
        if (store.source() && store.source()->kind == LibrarySource::Kind::album)
            catalog.addToAlbumBehind(store.source()->id, made, photos);
    });
    return made;
}

void renameVersion(LibraryStore& store, PhotoID version, std::string_view name)
{
    store.perform("Rename Version", [&](Catalog& catalog) { renameVersion(catalog, version, name); });
}

void removeVersion(LibraryStore& store, PhotoID version)
{
    store.perform("Remove Version", [&](Catalog& catalog) { catalog.deletePhotos(std::span(&version, 1)); });
}

std::int64_t createStack(LibraryStore& store, std::span<const PhotoID> photos, std::optional<PhotoID> pick)
{
    std::int64_t id = 0;
    store.perform("Stack", [&](Catalog& catalog) { id = createStack(catalog, photos, pick); });
    return id;
}

void setPick(LibraryStore& store, std::int64_t stack, PhotoID photo)
{
    store.perform("Set Pick", [&](Catalog& catalog) { setPick(catalog, stack, photo); });
}

void moveInStack(LibraryStore& store, std::int64_t stack, PhotoID photo, std::size_t position)
{
    store.perform("Move in Stack", [&](Catalog& catalog) { moveInStack(catalog, stack, photo, position); });
}

void autoStack(LibraryStore& store, double interval)
{
    autoStack(store, AutoStackPlan(store.list().items(), store.list().shown(), interval));
}

void autoStack(LibraryStore& store, const AutoStackPlan& plan)
{
    store.perform(
        std::string(autoStackSheet::title), [plan](Catalog& catalog) { createStacks(catalog, plan); },
        plan.photoCount());
}

std::int64_t createSmartAlbum(LibraryStore& store, std::string_view name, const SmartAlbumRules& rules)
{
    std::int64_t id = 0;
    store.perform(std::string(smartAlbumEditor::newTitle),
        [&](Catalog& catalog) { id = catalog.createSmartAlbum(name, toJson(rules)); });
    return id;
}

void changeSmartAlbum(
    LibraryStore& store, std::int64_t id, std::string_view name, const std::optional<SmartAlbumRules>& rules)
{
    store.perform(std::string(smartAlbumEditor::editTitle), [&](Catalog& catalog) {
        catalog.changeSmartAlbum(id, name, rules ? toJson(*rules) : catalog.smartAlbum(id).rules);
    });
}

void placeSmartAlbum(LibraryStore& store, std::int64_t id, std::optional<std::int64_t> before)
{
    store.perform("Move Smart Album", [&](Catalog& catalog) { catalog.placeSmartAlbum(id, before); });
}

void deleteSmartAlbum(LibraryStore& store, std::int64_t id)
{
    store.perform("Delete Smart Album", [&](Catalog& catalog) { catalog.deleteSmartAlbum(id); });
}

} // namespace korvo
