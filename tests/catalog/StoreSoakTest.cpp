// Random actions of a user beside a model that is plain enough to be right: maps of what each photo, album
// and project holds, and undo as whole copies of them.
#include "base/Json.h"
#include "catalog/LibraryStore.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/Soak.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>
#include <set>

namespace korvo {

namespace {

using Kind = LibrarySource::Kind;

struct ModelPhoto {
    int rating = 0;
    bool flagged = false;
    int label = 0;
    std::string title;
    std::string keywords;
    double exposure = 0;
    std::int64_t project = 0; // 0: none
    bool operator==(const ModelPhoto&) const = default;
};

struct Model {
    std::map<PhotoID, ModelPhoto> photos;
    std::map<std::int64_t, std::set<PhotoID>> albums;
    std::map<std::int64_t, std::string> projects;
    bool operator==(const Model&) const = default;

    std::set<PhotoID> in(const std::optional<LibrarySource>& source) const
    {
        if (source && source->kind == Kind::album)
            return albums.contains(source->id) ? albums.at(source->id) : std::set<PhotoID>();
        std::set<PhotoID> ids;
        for (const auto& [id, photo] : photos)
            if (!source || (source->kind == Kind::flagged ? photo.flagged : photo.project == source->id))
                ids.insert(id);
        return ids;
    }
};

/// A store and its model, which live through the same actions.
class Soak {
public:
    explicit Soak(unsigned seed) : random_(seed)
    {
        for (int i = 0; i < 40; ++i)
            now_.photos[library_.photo(std::to_string(i) + ".jpg")];
        for (int i = 0; i < 3; ++i) {
            now_.albums[library_.catalog->createAlbum("album", std::nullopt)];
            now_.projects[library_.catalog->createProject("project", "project", std::nullopt)] = "project";
        }
        open();
    }

    void act()
    {
        const auto before = now_;
        const auto kind = upTo(100);
        if (kind < 12) {
            travel(past_, future_, [&] { store_->undo(); });
        } else if (kind < 22) {
            travel(future_, past_, [&] { store_->redo(); });
        } else if (kind == 22) {
            open();
        } else if (kind < 32) {
            chooseSource();
        } else {
            actions_[upTo(actions_.size())]();
            if (now_ != before) {
                past_.push_back(before);
                future_.clear();
            }
        }
    }

    std::string difference()
    {
        if (store_->undoTitle().has_value() != !past_.empty()
            || store_->redoTitle().has_value() != !future_.empty())
            return "steps to undo or redo";
        const auto& items = store_->list().items();
        const auto source = store_->source();
        std::set<PhotoID> listed;
        for (const auto& item : items) {
            listed.insert(item.id);
            if (!now_.photos.contains(item.id) || read(item) != now_.photos.at(item.id))
                return "photo " + std::to_string(item.id);
        }
        if (listed != now_.in(source) || listed.size() != items.size())
            return "the photos of " + sourceText(source);
        for (const auto id : store_->selection())
            if (!listed.contains(id))
                return "a selected photo that is not shown";
        return inCatalog() == now_ ? "" : "the catalog";
    }

private:
    static ModelPhoto read(const PhotoItem& item)
    {
        return {item.rating, item.flagged, static_cast<int>(item.label), item.metadata.title.string(),
            item.metadata.keywords.string(),
            item.editsJSON.empty() ? 0 : fromJson<PhotoEdits>(item.editsJSON.string()).exposure,
            item.projectID.value_or(0)};
    }

    /// What a reader without a history finds.
    Model inCatalog()
    {
        Model found;
        auto& catalog = store_->catalog();
        for (const auto& item : catalog.photos(std::nullopt))
            found.photos[item.id] = read(item);
        const auto tree = catalog.tree();
        for (const auto& album : tree.albums) {
            auto& members = found.albums[album.id];
            for (const auto& item : catalog.photos(LibrarySource{Kind::album, album.id, {}}))
                members.insert(item.id);
        }
        for (const auto& project : tree.projects)
            found.projects[project.id] = project.name;
        return found;
    }

    void open()
    {
        const auto folder = library_.folder / "Library";
        store_.reset();
        library_.catalog.reset();
        store_ = std::make_unique<LibraryStore>(main_, std::make_unique<Catalog>(folder, library_.clock));
        past_.clear();
        future_.clear();
    }

    void travel(std::vector<Model>& from, std::vector<Model>& to, const std::function<void()>& step)
    {
        for (auto steps = 1 + upTo(4); steps > 0; --steps) {
            step();
            if (from.empty())
                return;
            to.push_back(std::exchange(now_, from.back()));
            from.pop_back();
        }
    }

    void chooseSource()
    {
        const std::optional<LibrarySource> sources[] = {std::nullopt, LibrarySource{Kind::flagged, 0, {}},
            LibrarySource{Kind::album, anyOf(now_.albums), {}},
            LibrarySource{Kind::project, anyOf(now_.projects), {}}};
        const auto& source = sources[upTo(4)];
        if (!source || source->kind == Kind::flagged || source->id)
            store_->chooseSource(source);
        store_->select(somePhotos());
    }

    std::size_t upTo(std::size_t n) { return random_() % n; }

    std::vector<PhotoID> somePhotos()
    {
        std::vector<PhotoID> ids;
        const auto oneIn = 1 + upTo(10);
        for (const auto& item : store_->list().items())
            if (upTo(oneIn) == 0)
                ids.push_back(item.id);
        return ids;
    }

    /// The key of any entry; 0 when there is none.
    template <typename Map>
    std::int64_t anyOf(const Map& map)
    {
        return map.empty() ? 0 : std::next(map.begin(), static_cast<std::ptrdiff_t>(upTo(map.size())))->first;
    }

    /// Sets one thing of some photos in both.
    template <typename Value>
    void change(
        Value ModelPhoto::*member, Value value, const std::function<void(std::span<const PhotoID>)>& set)
    {
        const auto ids = somePhotos();
        set(ids);
        for (const auto id : ids)
            now_.photos.at(id).*member = value;
    }

    void changeAlbum(const std::function<void(std::int64_t, const std::vector<PhotoID>&)>& change)
    {
        if (const auto album = anyOf(now_.albums))
            change(album, somePhotos());
    }

    void remove()
    {
        auto ids = somePhotos();
        ids.resize(std::min(ids.size(), upTo(3)));
        if (now_.photos.size() < 20)
            return;
        store_->removePhotos(ids);
        for (const auto id : ids) {
            now_.photos.erase(id);
            for (auto& [album, photos] : now_.albums)
                photos.erase(id);
        }
    }

    void deleteProject()
    {
        const auto project = anyOf(now_.projects);
        if (!project)
            return;
        store_->deleteProject(project);
        now_.projects.erase(project);
        for (auto& [id, photo] : now_.photos)
            if (photo.project == project)
                photo.project = 0;
    }

    const std::vector<std::function<void()>> actions_ = {
        [&] {
            const auto rating = static_cast<int>(upTo(7)) - 1;
            change(&ModelPhoto::rating, rating, [&](auto ids) { store_->setRating(ids, rating); });
        },
        [&] {
            const bool flagged = upTo(2) == 0;
            change(&ModelPhoto::flagged, flagged, [&](auto ids) { store_->setFlagged(ids, flagged); });
        },
        [&] {
            const auto label = static_cast<int>(upTo(8));
            change(&ModelPhoto::label, label,
                [&](auto ids) { store_->setLabel(ids, static_cast<PhotoLabel>(label)); });
        },
        [&] {
            const auto title = std::to_string(upTo(4));
            change(&ModelPhoto::title, title,
                [&](auto ids) { store_->setMetadata(ids, {.title = SharedText(title)}); });
        },
        [&] {
            const std::string keywords = upTo(2) ? "sea, night" : "";
            change(&ModelPhoto::keywords, keywords,
                [&](auto ids) { store_->setMetadata(ids, {.keywords = SharedText(keywords)}); });
        },
        [&] {
            const auto exposure = static_cast<double>(upTo(3)) / 2;
            change(&ModelPhoto::exposure, exposure,
                [&](auto ids) { store_->setEdits(ids, {.exposure = exposure}); });
        },
        [&] {
            const auto project = anyOf(now_.projects);
            change(&ModelPhoto::project, project, [&](auto ids) {
                store_->assignToProject(ids, project ? std::optional(project) : std::nullopt);
            });
        },
        [&] { now_.albums[store_->createAlbum("album", std::nullopt)]; },
        [&] { now_.projects[store_->createProject("project", "project", std::nullopt)] = "project"; },
        [&] {
            if (const auto project = anyOf(now_.projects))
                store_->renameProject(project, now_.projects[project] = std::to_string(upTo(3)));
        },
        [&] {
            changeAlbum([&](auto album, const auto& ids) {
                store_->addToAlbum(album, ids);
                now_.albums[album].insert(ids.begin(), ids.end());
            });
        },
        [&] {
            changeAlbum([&](auto album, const auto& ids) {
                store_->removeFromAlbum(album, ids);
                for (const auto id : ids)
                    now_.albums[album].erase(id);
            });
        },
        [&] {
            changeAlbum([&](auto album, const auto&) {
                if (upTo(3) == 0) {
                    store_->deleteAlbum(album);
                    now_.albums.erase(album);
                }
            });
        },
        [&] { remove(); },
        [&] {
            if (upTo(3) == 0)
                deleteProject();
        },
    };

    std::mt19937 random_;
    ManualMainThread main_;
    TestLibrary library_;
    std::unique_ptr<LibraryStore> store_;
    Model now_;
    std::vector<Model> past_;
    std::vector<Model> future_;
};

void liveBesideAModel(unsigned seed)
{
    Soak soak(seed);
    for (int i = 0; i < 400; ++i) {
        soak.act();
        ASSERT_EQ(soak.difference(), "") << "after action " << i;
    }
}

} // namespace

TEST(LibraryStore, doesWhatAPlainModelDoesThroughRandomActionsUndoAndRedo)
{
    forSeeds(liveBesideAModel);
}

} // namespace korvo
