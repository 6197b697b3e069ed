#include "tests/catalog/RandomActions.h"

#include "catalog/RenameKeyword.h"
#include "catalog/Stacks.h"
#include "catalog/Versions.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryActions.h"
#include "tests/support/StoreActions.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace korvo {

namespace {

using Kind = LibrarySource::Kind;

SmartAlbumRules rated(int least)
{
    return {{{SmartAlbumRule::Field::rating, SmartAlbumRule::Op::atLeast, std::to_string(least)}}};
}

std::optional<std::int64_t> unlessNone(std::int64_t id)
{
    return id ? std::optional(id) : std::nullopt;
}

} // namespace

void RandomActions::chooseSource()
{
    const std::vector<std::optional<LibrarySource>> sources{std::nullopt, LibrarySource{Kind::flagged, 0, {}},
        LibrarySource{Kind::recentlyAdded, 0, {}}, LibrarySource{Kind::noAltText, 0, {}},
        LibrarySource{Kind::folder, 1, {}}, LibrarySource{Kind::album, anyOf(model_.albums), {}},
        LibrarySource{Kind::project, anyOf(model_.projects), {}},
        LibrarySource{Kind::smartAlbum, anyOf(model_.smartAlbums), {}}};
    const auto& source = sources[upTo(sources.size())];
    const bool isOfOne = source
        && (source->kind == Kind::album || source->kind == Kind::project || source->kind == Kind::smartAlbum);
    if (!isOfOne || source->id)
        store_->chooseSource(source);
    store_->select(somePhotos());
}

void RandomActions::arrange()
{
    std::optional<SortKey> key;
    if (upTo(2))
        key = static_cast<SortKey>(upTo(5));
    std::optional<GridFilter> filter;
    if (upTo(2))
        filter = static_cast<GridFilter>(upTo(3));
    store_->arrange(key, filter);
}

std::vector<PhotoID> RandomActions::somePhotos()
{
    std::vector<PhotoID> ids;
    const auto oneIn = 1 + upTo(10);
    for (const auto& item : store_->list().items())
        if (upTo(oneIn) == 0)
            ids.push_back(item.id);
    return ids;
}

template <typename Value>
void RandomActions::change(
    Value ModelPhoto::*member, Value value, const std::function<void(std::span<const PhotoID>)>& set)
{
    const auto ids = somePhotos();
    set(ids);
    for (const auto id : ids)
        model_.photos.at(id).*member = value;
}

void RandomActions::changeAlbum(const std::function<void(std::int64_t, const std::vector<PhotoID>&)>& change)
{
    if (const auto album = anyOf(model_.albums))
        change(album, somePhotos());
}

void RandomActions::remove()
{
    auto ids = somePhotos();
    ids.resize(std::min(ids.size(), upTo(3)));
    if (model_.photos.size() < 20)
        return;
    removePhotos(*store_, ids);
    for (const auto id : ids)
        model_.remove(id);
}

void RandomActions::removeFolder()
{
    if (!model_.hasFolder || upTo(8) > 0)
        return;
    korvo::removeFolder(*store_, 1);
    model_.hasFolder = false;
    for (PhotoID id = 1; id <= lastInFolder; ++id)
        model_.remove(id);
}

/// As a job does, whose photos undo takes out of the library.
void RandomActions::add()
{
    AddedRows added;
    for (auto count = upTo(3); count > 0; --count) {
        const NewPhoto photo{.path = "/new/" + std::to_string(random_()) + ".jpg", .addedAt = 1'700'000'000};
        added.photos.push_back(store_->catalog().addPhotos(std::span(&photo, 1)).front().id);
        model_.photos[added.photos.back()];
    }
    store_->adopt("Add", added, store_->newestStep());
}

void RandomActions::deleteProject()
{
    const auto project = anyOf(model_.projects);
    if (!project)
        return;
    korvo::deleteProject(*store_, project);
    for (auto& [id, photo] : model_.photos)
        if (model_.liesIn(photo.project, project))
            photo.project = 0;
    const auto before = model_;
    std::erase_if(model_.projects, [&](const auto& entry) { return before.liesIn(entry.first, project); });
}

void RandomActions::gather()
{
    std::int64_t outer = 0;
    store_->perform("Gather", [&](Catalog& catalog) { outer = catalog.gatherUnderProject("all"); });
    for (auto& [id, project] : model_.projects)
        if (project.parent == 0)
            project.parent = outer;
    model_.projects[outer] = {"all"};
}

void RandomActions::moveProject()
{
    const auto project = anyOf(model_.projects), to = upTo(2) ? anyOf(model_.projects) : 0;
    if (!project || model_.liesIn(to, project))
        return;
    placeProject(*store_, project, unlessNone(to), unlessNone(anyOf(model_.projects)));
    model_.projects[project].parent = to;
}

void RandomActions::changeStack()
{
    const auto stacks = stacksIn(store_->catalog().database());
    if (stacks.empty())
        return;
    const auto& stack = stacks[upTo(stacks.size())];
    switch (upTo(4)) {
    case 0:
        return store_->perform("Unstack", [&](Catalog& catalog) { unstack(catalog, stack.id); });
    case 1:
        return setStackState(*store_, stack.id, static_cast<StackState>(upTo(2)));
    case 2:
        return moveInStack(*store_, stack.id, stack.members.back(), 0);
    default:
        return setPick(*store_, stack.id, stack.members.back());
    }
}

void RandomActions::changeKeywords()
{
    const auto keywords = store_->catalog().keywords();
    if (keywords.empty() || upTo(2) > 0) {
        createKeyword(*store_, "k",
            keywords.empty() ? std::nullopt : std::optional(keywords[upTo(keywords.size())].id));
        return;
    }
    const auto& keyword = keywords[upTo(keywords.size())];
    switch (upTo(3)) {
    case 0:
        return deleteKeyword(*store_, keyword.id);
    case 1:
        return moveKeyword(*store_, keyword.id, std::nullopt);
    default:
        store_->perform("Rename Keyword",
            [&](Catalog& catalog) { renameKeyword(catalog, keyword.id, keyword.name + "k"); });
        for (auto& [id, photo] : model_.photos)
            if (const auto at = (", " + photo.keywords + ",").find(", " + keyword.name + ",");
                at != std::string::npos)
                photo.keywords.insert(at + keyword.name.size(), "k");
    }
}

/// One of those that are plain, and lie in the photo's file.
void RandomActions::changeText()
{
    constexpr std::array texts{std::pair(&MetadataChange::altText, &ModelPhoto::altText),
        std::pair(&MetadataChange::title, &ModelPhoto::title),
        std::pair(&MetadataChange::caption, &ModelPhoto::caption),
        std::pair(&MetadataChange::creator, &ModelPhoto::creator),
        std::pair(&MetadataChange::copyright, &ModelPhoto::copyright)};
    const auto [field, inModel] = texts[upTo(texts.size())];
    const auto text = upTo(4) ? std::to_string(upTo(4)) : "";
    MetadataChange changed;
    changed.*field = SharedText(text);
    change(inModel, text, [&](auto ids) { setMetadata(*store_, ids, changed); });
}

void RandomActions::moveInAlbum()
{
    changeAlbum([&](auto album, auto ids) {
        const auto& members = model_.albums[album];
        std::erase_if(ids, [&](PhotoID id) { return !members.contains(id); });
        const auto before = upTo(2) ? anyOf(model_.photos) : 0;
        if (!ids.empty())
            korvo::moveInAlbum(
                *store_, album, ids, members.contains(before) ? std::optional(before) : std::nullopt);
    });
}

/// What a photo has by itself.
std::vector<std::function<void()>> RandomActions::marks()
{
    return {
        [&] {
            const auto rating = static_cast<int>(upTo(7)) - 1;
            change(&ModelPhoto::rating, rating, [&](auto ids) { setRating(*store_, ids, rating); });
        },
        [&] {
            const bool flagged = upTo(2) == 0;
            change(&ModelPhoto::flagged, flagged, [&](auto ids) { setFlagged(*store_, ids, flagged); });
        },
        [&] {
            const auto label = static_cast<int>(upTo(8));
            change(&ModelPhoto::label, label,
                [&](auto ids) { setLabel(*store_, ids, static_cast<PhotoLabel>(label)); });
        },
        [&] { changeText(); },
        [&] {
            const std::string keywords = upTo(2) ? "sea, k" : "";
            change(&ModelPhoto::keywords, keywords,
                [&](auto ids) { setMetadata(*store_, ids, {.keywords = SharedText(keywords)}); });
        },
        [&] {
            const auto exposure = static_cast<double>(upTo(3)) / 2;
            change(&ModelPhoto::exposure, exposure,
                [&](auto ids) { setEdits(*store_, ids, {.exposure = exposure}); });
        },
        [&] {
            const auto project = anyOf(model_.projects);
            change(&ModelPhoto::project, project,
                [&](auto ids) { assignToProject(*store_, ids, unlessNone(project)); });
        },
    };
}

/// What photos come into and leave.
std::vector<std::function<void()>> RandomActions::groups()
{
    return {
        [&] {
            const auto project = anyOf(model_.projects);
            model_.albums[createAlbum(*store_, "album", unlessNone(project))];
        },
        [&] { model_.projects[createProject(*store_, "project", "project", std::nullopt)] = {"project"}; },
        [&] {
            if (const auto project = anyOf(model_.projects))
                renameProject(*store_, project, model_.projects[project].name = std::to_string(upTo(3)));
        },
        [&] { moveProject(); },
        [&] {
            if (const auto album = anyOf(model_.albums))
                placeAlbum(
                    *store_, album, unlessNone(anyOf(model_.projects)), unlessNone(anyOf(model_.albums)));
        },
        [&] {
            if (const auto album = anyOf(model_.smartAlbums))
                placeSmartAlbum(*store_, album, unlessNone(anyOf(model_.smartAlbums)));
        },
        [&] {
            if (upTo(4) == 0)
                gather();
        },
        [&] {
            changeAlbum([&](auto album, const auto& ids) {
                addToAlbum(*store_, album, ids);
                model_.albums[album].insert(ids.begin(), ids.end());
            });
        },
        [&] {
            changeAlbum([&](auto album, const auto& ids) {
                removeFromAlbum(*store_, album, ids);
                for (const auto id : ids)
                    model_.albums[album].erase(id);
            });
        },
        [&] {
            changeAlbum([&](auto album, const auto&) {
                if (upTo(3) == 0) {
                    deleteAlbum(*store_, album);
                    model_.albums.erase(album);
                }
            });
        },
        [&] {
            const auto least = 1 + static_cast<int>(upTo(3));
            model_.smartAlbums[createSmartAlbum(*store_, "smart", rated(least))] = least;
        },
        [&] {
            store_->perform("Version", [&](Catalog& catalog) {
                createVersion(catalog, anyOf(model_.photos), std::nullopt, std::nullopt, 1);
            });
        },
        [&] {
            if (const auto ids = somePhotos(); ids.size() > 1)
                createStack(*store_, ids, ids.back());
        },
        [&] { changeStack(); },
        [&] { changeKeywords(); },
        [&] {
            store_->perform("Rename", [&](Catalog& catalog) {
                catalog.database().run("UPDATE photos SET path = ? WHERE id = ?",
                    "/photos/" + std::to_string(random_()) + ".jpg", anyOf(model_.photos));
            });
        },
        [&] { removeFolder(); },
        [&] { remove(); },
        [&] {
            if (upTo(3) == 0)
                deleteProject();
        },
        [&] { add(); },
    };
}

/// How what the sidebar shows is called, kept and ordered.
std::vector<std::function<void()>> RandomActions::sidebar()
{
    const auto oneOrNone = [this](const auto& map) {
        const auto id = upTo(2) ? anyOf(map) : 0;
        return id ? std::optional(id) : std::nullopt;
    };
    return {
        [&] { moveInAlbum(); },
        [&] { changeAlbum([&](auto album, const auto&) { renameAlbum(*store_, album, "x"); }); },
        [&, oneOrNone] {
            changeAlbum([&](auto album, const auto&) {
                placeAlbum(*store_, album, oneOrNone(model_.projects), std::nullopt);
            });
        },
        [&, oneOrNone] {
            if (const auto album = anyOf(model_.smartAlbums))
                placeSmartAlbum(*store_, album, oneOrNone(model_.smartAlbums));
        },
        [&] {
            if (const auto album = anyOf(model_.smartAlbums)) {
                const auto least = 1 + static_cast<int>(upTo(3));
                changeSmartAlbum(*store_, album, "changed", rated(least));
                model_.smartAlbums[album] = least;
            }
        },
        [&] {
            if (const auto album = anyOf(model_.smartAlbums); album && upTo(3) == 0) {
                deleteSmartAlbum(*store_, album);
                model_.smartAlbums.erase(album);
            }
        },
    };
}

std::vector<std::function<void()>> RandomActions::all()
{
    auto actions = marks();
    std::ranges::move(groups(), std::back_inserter(actions));
    std::ranges::move(sidebar(), std::back_inserter(actions));
    return actions;
}

} // namespace korvo
