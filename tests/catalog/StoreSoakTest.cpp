// Random actions of a user beside a model that is plain enough to be right: maps of what each photo, album
// and project holds, and undo as whole copies of them. What the model does not know of, as stacks and
// versions, is compared by the tables' rows.
#include "base/Json.h"
#include "catalog/GroupActions.h"
#include "catalog/LibraryActions.h"
#include "catalog/LibraryStore.h"
#include "catalog/Stacks.h"
#include "tests/support/ListedPhotos.h"
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

constexpr PhotoID lastInFolder = 5;

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

struct ModelProject {
    std::string name;
    std::int64_t parent = 0;
    bool operator==(const ModelProject&) const = default;
};

struct Model {
    std::map<PhotoID, ModelPhoto> photos;
    std::map<std::int64_t, std::set<PhotoID>> albums;
    std::map<std::int64_t, ModelProject> projects;
    std::map<std::int64_t, int> smartAlbums; // the least rating of each
    bool hasFolder = true; // which holds the first photos
    bool operator==(const Model&) const = default;

    bool liesIn(std::int64_t project, std::int64_t outer) const
    {
        while (project && project != outer)
            project = projects.at(project).parent;
        return project != 0;
    }

    bool lists(const LibrarySource& source, PhotoID id) const
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
        default:
            return true; // all are new, and without an ALT text
        }
    }

    std::set<PhotoID> in(const std::optional<LibrarySource>& source) const
    {
        std::set<PhotoID> ids;
        for (const auto& [id, photo] : photos)
            if (!source || lists(*source, id))
                ids.insert(id);
        return ids;
    }

    void remove(PhotoID id)
    {
        photos.erase(id);
        for (auto& [album, members] : albums)
            members.erase(id);
    }
};

/// What undo brings back.
struct State {
    Model model;
    std::string tables;
};

/// A store and its model, which live through the same actions.
class Soak {
public:
    explicit Soak(unsigned seed) : random_(seed)
    {
        for (int i = 0; i < 40; ++i)
            now().photos[library_.photo(std::to_string(i) + ".jpg")];
        for (int i = 0; i < 3; ++i) {
            now().albums[library_.catalog->createAlbum("album", std::nullopt)];
            now().projects[library_.catalog->createProject("project", "project", std::nullopt)] = {"project"};
        }
        library_.catalog->database().run("UPDATE photos SET folder_id = ? WHERE id <= ?",
            library_.catalog->addFolder("/photos", 1).id, lastInFolder);
        state_.tables = contentOf(*library_.catalog);
        open();
    }

    void act()
    {
        const auto kind = upTo(100);
        if (kind < 12) {
            for (auto steps = 1 + upTo(4); steps > 0 && undo(); --steps) { }
        } else if (kind < 22) {
            for (auto steps = 1 + upTo(4); steps > 0 && redo(); --steps) { }
        } else if (kind == 22) {
            open();
        } else if (kind < 32) {
            chooseSource();
        } else {
            auto before = state_;
            actions_[upTo(actions_.size())]();
            state_.tables = contentOf(store_->catalog());
            if (state_.tables != before.tables) {
                past_.push_back(std::move(before));
                future_.clear();
            }
        }
    }

    /// A step back; false when there is none.
    bool undo()
    {
        store_->undo();
        return travel(past_, future_);
    }

    bool redo()
    {
        store_->redo();
        return travel(future_, past_);
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
            if (!now().photos.contains(item.id) || read(item) != now().photos.at(item.id))
                return "photo " + std::to_string(item.id);
        }
        if (listed != now().in(source) || listed.size() != items.size())
            return "the photos of " + sourceText(source);
        for (const auto id : store_->selection())
            if (!listed.contains(id))
                return "a selected photo that is not shown";
        if (!listsAsWhenReadAnew())
            return "the order of the photos";
        for (const auto& stack : stacksIn(store_->catalog().database()))
            if (stack.members.size() < 2 || stack.members.front() != stack.pick)
                return "stack " + std::to_string(stack.id);
        if (contentOf(store_->catalog()) != state_.tables)
            return "the tables";
        return inCatalog() == now() ? "" : "the catalog";
    }

private:
    Model& now() { return state_.model; }

    bool listsAsWhenReadAnew()
    {
        PhotoList fresh;
        fresh.setStacks(stacksIn(store_->catalog().database()));
        if (!store_->sourceFault())
            fresh.assign(store_->catalog().photos(store_->source()), listedBy(store_->source()));
        return listTheSame(store_->list(), fresh);
    }

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
        readProjects(tree.projects, found);
        for (const auto& album : tree.smartAlbums)
            found.smartAlbums[album.id] = std::stoi(smartAlbumRules(album.rules).rules[0].value);
        found.hasFolder = !tree.folders.empty();
        return found;
    }

    static void readProjects(const std::vector<ProjectNode>& nodes, Model& found)
    {
        for (const auto& node : nodes) {
            found.projects[node.id] = {node.name, node.parentID.value_or(0)};
            readProjects(node.children, found);
        }
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

    bool travel(std::vector<State>& from, std::vector<State>& to)
    {
        if (from.empty())
            return false;
        to.push_back(std::exchange(state_, std::move(from.back())));
        from.pop_back();
        return true;
    }

    void chooseSource()
    {
        const std::vector<std::optional<LibrarySource>> sources{std::nullopt,
            LibrarySource{Kind::flagged, 0, {}}, LibrarySource{Kind::recentlyAdded, 0, {}},
            LibrarySource{Kind::noAltText, 0, {}}, LibrarySource{Kind::folder, 1, {}},
            LibrarySource{Kind::album, anyOf(now().albums), {}},
            LibrarySource{Kind::project, anyOf(now().projects), {}},
            LibrarySource{Kind::smartAlbum, anyOf(now().smartAlbums), {}}};
        const auto& source = sources[upTo(sources.size())];
        const bool isOfOne = source
            && (source->kind == Kind::album || source->kind == Kind::project
                || source->kind == Kind::smartAlbum);
        if (!isOfOne || source->id)
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
            now().photos.at(id).*member = value;
    }

    void changeAlbum(const std::function<void(std::int64_t, const std::vector<PhotoID>&)>& change)
    {
        if (const auto album = anyOf(now().albums))
            change(album, somePhotos());
    }

    void remove()
    {
        auto ids = somePhotos();
        ids.resize(std::min(ids.size(), upTo(3)));
        if (now().photos.size() < 20)
            return;
        removePhotos(*store_, ids);
        for (const auto id : ids)
            now().remove(id);
    }

    void removeFolder()
    {
        if (!now().hasFolder || upTo(8) > 0)
            return;
        korvo::removeFolder(*store_, 1);
        now().hasFolder = false;
        for (PhotoID id = 1; id <= lastInFolder; ++id)
            now().remove(id);
    }

    void deleteProject()
    {
        const auto project = anyOf(now().projects);
        if (!project)
            return;
        korvo::deleteProject(*store_, project);
        for (auto& [id, photo] : now().photos)
            if (now().liesIn(photo.project, project))
                photo.project = 0;
        const auto before = now();
        std::erase_if(now().projects, [&](const auto& entry) { return before.liesIn(entry.first, project); });
    }

    void gather()
    {
        const auto outer = gatherUnderProject(*store_, "all");
        for (auto& [id, project] : now().projects)
            if (project.parent == 0)
                project.parent = outer;
        now().projects[outer] = {"all"};
    }

    void moveProject()
    {
        const auto project = anyOf(now().projects), to = upTo(2) ? anyOf(now().projects) : 0;
        if (!project || now().liesIn(to, project))
            return;
        korvo::moveProject(*store_, project, to ? std::optional(to) : std::nullopt);
        now().projects[project].parent = to;
    }

    void changeStack()
    {
        const auto stacks = stacksIn(store_->catalog().database());
        if (stacks.empty())
            return;
        const auto& stack = stacks[upTo(stacks.size())];
        switch (upTo(4)) {
        case 0:
            return unstack(*store_, stack.id);
        case 1:
            return setStackState(*store_, stack.id, static_cast<StackState>(upTo(2)));
        case 2:
            return moveInStack(*store_, stack.id, stack.members.back(), 0);
        default:
            return setPick(*store_, stack.id, stack.members.back());
        }
    }

    void changeKeywords()
    {
        const auto keywords = store_->catalog().keywords();
        if (keywords.empty() || upTo(3) > 0)
            createKeyword(*store_, "k",
                keywords.empty() ? std::nullopt : std::optional(keywords[upTo(keywords.size())].id));
        else
            deleteKeyword(*store_, keywords[upTo(keywords.size())].id);
    }

    const std::vector<std::function<void()>> actions_ = {
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
        [&] {
            const auto title = std::to_string(upTo(4));
            change(&ModelPhoto::title, title,
                [&](auto ids) { setMetadata(*store_, ids, {.title = SharedText(title)}); });
        },
        [&] {
            const std::string keywords = upTo(2) ? "sea, night" : "";
            change(&ModelPhoto::keywords, keywords,
                [&](auto ids) { setMetadata(*store_, ids, {.keywords = SharedText(keywords)}); });
        },
        [&] {
            const auto exposure = static_cast<double>(upTo(3)) / 2;
            change(&ModelPhoto::exposure, exposure,
                [&](auto ids) { setEdits(*store_, ids, {.exposure = exposure}); });
        },
        [&] {
            const auto project = anyOf(now().projects);
            change(&ModelPhoto::project, project, [&](auto ids) {
                assignToProject(*store_, ids, project ? std::optional(project) : std::nullopt);
            });
        },
        [&] {
            const auto project = anyOf(now().projects);
            now().albums[createAlbum(*store_, "album", project ? std::optional(project) : std::nullopt)];
        },
        [&] { now().projects[createProject(*store_, "project", "project", std::nullopt)] = {"project"}; },
        [&] {
            if (const auto project = anyOf(now().projects))
                renameProject(*store_, project, now().projects[project].name = std::to_string(upTo(3)));
        },
        [&] { moveProject(); },
        [&] {
            if (upTo(4) == 0)
                gather();
        },
        [&] {
            changeAlbum([&](auto album, const auto& ids) {
                addToAlbum(*store_, album, ids);
                now().albums[album].insert(ids.begin(), ids.end());
            });
        },
        [&] {
            changeAlbum([&](auto album, const auto& ids) {
                removeFromAlbum(*store_, album, ids);
                for (const auto id : ids)
                    now().albums[album].erase(id);
            });
        },
        [&] {
            changeAlbum([&](auto album, const auto&) {
                if (upTo(3) == 0) {
                    deleteAlbum(*store_, album);
                    now().albums.erase(album);
                }
            });
        },
        [&] {
            const auto least = 1 + static_cast<int>(upTo(3));
            now().smartAlbums[createSmartAlbum(*store_, "smart",
                {{{SmartAlbumRule::Field::rating, SmartAlbumRule::Op::atLeast, std::to_string(least)}}})]
                = least;
        },
        [&] { createVersion(*store_, anyOf(now().photos), std::nullopt, std::nullopt, 1); },
        [&] {
            if (const auto ids = somePhotos(); ids.size() > 1)
                createStack(*store_, ids, ids.back());
        },
        [&] { changeStack(); },
        [&] { changeKeywords(); },
        [&] {
            store_->perform("Rename", [&](Catalog& catalog) {
                catalog.fileRenamed(anyOf(now().photos), "/photos/" + std::to_string(random_()) + ".jpg");
            });
        },
        [&] { removeFolder(); },
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
    State state_;
    std::vector<State> past_;
    std::vector<State> future_;
};

void liveBesideAModel(unsigned seed)
{
    Soak soak(seed);
    for (int i = 0; i < 400; ++i) {
        soak.act();
        ASSERT_EQ(soak.difference(), "") << "after action " << i;
    }
    while (soak.undo())
        ASSERT_EQ(soak.difference(), "") << "on the way back";
    while (soak.redo())
        ASSERT_EQ(soak.difference(), "") << "on the way forth";
}

} // namespace

TEST(LibraryStore, doesWhatAPlainModelDoesThroughRandomActionsUndoAndRedo)
{
    forSeeds(liveBesideAModel);
}

} // namespace korvo
