#include "aperture/ApertureImporter.h"
#include "base/Json.h"
#include "base/Text.h"
#include "catalog/ApertureImports.h"
#include "catalog/NewGroups.h"
#include "catalog/Stacks.h"
#include "catalog/Versions.h"

#include <unordered_map>

namespace korvo {

namespace {

using FolderPath = std::vector<std::string>;

/// Aperture takes blank names, the catalog does not.
std::string named(const std::string& name)
{
    return isBlank(name) ? "Untitled" : name;
}

/// Finds and makes keywords. Those of the catalog are read once: it has no index of their names.
class KeywordTree {
public:
    explicit KeywordTree(Catalog& catalog) : catalog_(catalog)
    {
        for (const auto& keyword : catalog.keywords())
            ids_.emplace(Place(keyword.parentID.value_or(0), keyword.name), keyword.id);
    }

    std::int64_t keyword(const std::string& name, std::optional<std::int64_t> parent)
    {
        const auto [place, isNew] = ids_.try_emplace(Place(parent.value_or(0), name), 0);
        if (isNew)
            place->second = catalog_.createKeyword(name, parent);
        return place->second;
    }

private:
    using Place = std::pair<std::int64_t, std::string>; // the parent, 0 for none, and the name

    Catalog& catalog_;
    std::map<Place, std::int64_t> ids_;
};

} // namespace

class ApertureWriter {
public:
    ApertureWriter(
        ApertureImporter& importer, const ApertureImportPlan& plan, Catalog& catalog, const Clock& clock)
        : importer_(importer), plan_(plan), catalog_(catalog), now_(clock.now())
    { }

    ApertureImporter::Summary run()
    {
        Transaction transaction(catalog_.database());
        const LongWrite mayBe;
        if (hasImported(catalog_.database(), plan_.identity))
            throw ImportError::alreadyImported(plan_.bundle.filename().string());
        writeProjects();
        writePhotos();
        writeKeywords();
        importer_.show("Stacks and albums…", 0, plan_.albums.size() + plan_.stacks.size());
        writeAlbums();
        writeStacks();
        noteImport(catalog_.database(), plan_.identity, plan_.bundle);
        throwIfStopped();
        transaction.commit();
        importer_.show("Done");
        return std::move(summary_);
    }

private:
    void throwIfStopped() const { importer_.throwIfStopped(); }

    /// The folder of these names.
    std::optional<std::int64_t> folder(const FolderPath& path) const
    {
        return path.empty() ? std::nullopt : std::optional(folders_.at(path));
    }

    /// Adds the path that Aperture's uuid stands for, if it is a folder's.
    void addFolderPath(const std::optional<std::string>& uuid, std::vector<FolderPath>& paths) const
    {
        const auto path = uuid ? plan_.folderPaths.find(*uuid) : plan_.folderPaths.end();
        if (path != plan_.folderPaths.end())
            paths.push_back(path->second);
    }

    /// Makes the folders of these paths that are not there yet: all those at the top at once, then all those
    /// in them, and so on.
    void makeFolders(const std::vector<FolderPath>& paths)
    {
        std::size_t deepest = 0;
        for (const auto& path : paths)
            deepest = std::max(deepest, path.size());
        for (std::size_t depth = 1; depth <= deepest; ++depth) {
            std::vector<NewProject> made;
            std::vector<std::int64_t*> ids;
            for (const auto& path : paths) {
                throwIfStopped();
                if (path.size() < depth)
                    continue;
                const auto end = path.begin() + static_cast<std::ptrdiff_t>(depth);
                const auto [entry, isNew] = folders_.try_emplace(FolderPath(path.begin(), end), 0);
                if (!isNew)
                    continue;
                ids.push_back(&entry->second);
                made.push_back({named(*(end - 1)), "folder", folder(FolderPath(path.begin(), end - 1))});
            }
            const auto created = createProjects(catalog_.database(), made);
            for (std::size_t i = 0; i < ids.size(); ++i)
                *ids[i] = created[i];
        }
    }

    void writeProjects()
    {
        std::vector<FolderPath> paths;
        for (const auto& project : plan_.projects)
            paths.push_back(project.folderPath);
        for (const auto& photo : plan_.photos)
            addFolderPath(photo.projectUuid, paths);
        makeFolders(paths);
        std::vector<NewProject> made;
        for (const auto& project : plan_.projects) {
            throwIfStopped();
            made.push_back({named(project.name), "project", folder(project.folderPath)});
        }
        const auto projects = createProjects(catalog_.database(), made);
        for (std::size_t i = 0; i < projects.size(); ++i)
            projects_[plan_.projects[i].uuid] = projects[i];
        summary_.projects = plan_.projects.size();
    }

    /// The project or folder that Aperture's uuid stands for.
    std::optional<std::int64_t> projectOf(const std::optional<std::string>& uuid)
    {
        if (!uuid)
            return std::nullopt;
        if (const auto project = projects_.find(*uuid); project != projects_.end())
            return project->second;
        const auto path = plan_.folderPaths.find(*uuid);
        return path == plan_.folderPaths.end() ? std::nullopt : folder(path->second);
    }

    void writePhotos()
    {
        const bool hadPhotos = catalog_.database().scalar("SELECT EXISTS (SELECT 1 FROM photos)") != 0;
        for (const auto& photo : plan_.photos) {
            if (ids_.size() % 1024 == 0)
                throwIfStopped();
            auto row = photo.row;
            row.addedAt = now_;
            row.projectID = projectOf(photo.projectUuid);
            auto master = photo.versionOf ? std::optional(masterIDs_[*photo.versionOf]) : std::nullopt;
            const auto known
                = !master && hadPhotos ? catalog_.masterAt(row.path) : knownMasterOf(photo.versionOf);
            row.versionOf = master;
            ids_.push_back(known ? addToKnown(*known, row) : catalog_.addPhoto(row).id);
            if (known)
                master = known;
            masterIDs_.push_back(master.value_or(ids_.back()));
            isKnown_.push_back(known.has_value());
            ++(master ? summary_.versions : summary_.masters);
        }
    }

    /// Of a planned photo that was held before the import.
    std::optional<PhotoID> knownMasterOf(const std::optional<std::size_t>& planned) const
    {
        return planned && isKnown_[*planned] ? std::optional(masterIDs_[*planned]) : std::nullopt;
    }

    /// A file that the library holds already gets Aperture's photo as a version, which shares the library's
    /// own description of the file.
    PhotoID addToKnown(PhotoID master, const NewPhoto& row)
    {
        const auto name = isBlank(row.versionName) ? std::nullopt : std::optional(row.versionName);
        const auto edits = row.edits.empty() ? PhotoEdits() : fromJson<PhotoEdits>(row.edits);
        const auto id = createVersion(catalog_, master, name, edits, now_);
        const std::span only(&id, 1);
        catalog_.setRating(only, row.rating);
        catalog_.setFlagged(only, row.flagged);
        catalog_.setLabel(only, row.label);
        catalog_.setReferencePath(id, row.referencePath);
        return id;
    }

    /// The keyword tree. A parent may come after its children; a keyword that lies below itself loses its
    /// parent.
    void writeKeywords()
    {
        std::unordered_map<std::int64_t, const ApertureLibrary::KeywordEntry*> waiting;
        for (const auto& entry : plan_.keywords)
            waiting.emplace(entry.modelId, &entry);
        std::unordered_map<std::int64_t, std::int64_t> written;
        KeywordTree tree(catalog_);
        for (const auto& entry : plan_.keywords) {
            std::vector<const ApertureLibrary::KeywordEntry*> missing; // this one and those above it
            for (auto at = waiting.find(entry.modelId); at != waiting.end();) {
                const auto parent = missing.emplace_back(at->second)->parentId;
                waiting.erase(at); // each is walked once, also in a circle
                at = parent ? waiting.find(*parent) : waiting.end();
            }
            for (; !missing.empty(); missing.pop_back()) {
                throwIfStopped();
                const auto& keyword = *missing.back();
                const auto parent = keyword.parentId ? written.find(*keyword.parentId) : written.end();
                written[keyword.modelId] = tree.keyword(named(keyword.name),
                    parent == written.end() ? std::nullopt : std::optional(parent->second));
            }
        }
    }

    std::vector<PhotoID> idsOf(const std::vector<std::size_t>& photos) const
    {
        std::vector<PhotoID> ids;
        for (const auto photo : photos)
            ids.push_back(ids_[photo]);
        return ids;
    }

    void writeAlbums()
    {
        std::vector<FolderPath> paths; // those that hold albums alone
        for (const auto& album : plan_.albums)
            addFolderPath(album.folderUuid, paths);
        makeFolders(paths);
        std::vector<NewAlbum> made;
        for (const auto& album : plan_.albums)
            made.push_back({named(album.name), projectOf(album.folderUuid)});
        const auto albums = createAlbums(catalog_.database(), made);
        for (std::size_t i = 0; i < albums.size(); ++i) {
            throwIfStopped();
            catalog_.addToAlbum(albums[i], idsOf(plan_.albums[i].photos));
            showGroup();
        }
        for (const auto& album : plan_.smartAlbums) {
            throwIfStopped();
            catalog_.createSmartAlbum(named(album.name), album.rules);
        }
        summary_.albums = plan_.albums.size();
        summary_.smartAlbums = plan_.smartAlbums.size();
        summary_.smartAlbumsAsPlain = plan_.smartAlbumsAsPlain;
    }

    /// Whether the library had put the photo into a stack of its own, where it stays.
    bool isStacked(std::size_t photo) const
    {
        return isKnown_[photo] && catalog_.photo(masterIDs_[photo])->stackID;
    }

    void writeStack(const ApertureImportPlan::Stack& stack)
    {
        auto photos = stack.photos;
        std::erase_if(photos, [&](std::size_t photo) { return isStacked(photo); });
        if (photos.size() < 2)
            return;
        const bool hasPick = stack.pick && !isStacked(*stack.pick);
        createStack(catalog_, idsOf(photos), hasPick ? std::optional(ids_[*stack.pick]) : std::nullopt);
        ++summary_.stacks;
    }

    void writeStacks()
    {
        for (const auto& stack : plan_.stacks) {
            throwIfStopped();
            writeStack(stack);
            showGroup();
        }
        summary_.missingFiles = plan_.missingFiles;
        summary_.adjustedVersions = plan_.adjustedVersions;
        summary_.matchedToPreview = plan_.matchedToPreview;
        summary_.report = plan_.report;
    }

    void showGroup()
    {
        constexpr std::size_t step = 64;
        const auto total = plan_.albums.size() + plan_.stacks.size();
        if (++groups_ % step == 0 || groups_ == total)
            importer_.show("Stacks and albums…", groups_, total);
    }

    ApertureImporter& importer_;
    const ApertureImportPlan& plan_;
    Catalog& catalog_;
    UnixTime now_;
    std::map<FolderPath, std::int64_t> folders_;
    std::unordered_map<std::string, std::int64_t> projects_;
    std::vector<PhotoID> ids_; // of each planned photo
    std::vector<PhotoID> masterIDs_; // likewise: itself for a master
    std::vector<bool> isKnown_; // likewise: its master was held before
    std::size_t groups_ = 0;
    ApertureImporter::Summary summary_;
};

std::optional<ApertureImporter::Summary> ApertureImporter::write(
    const ApertureImportPlan& plan, Catalog& catalog, const Clock& clock)
{
    try {
        return ApertureWriter(*this, plan, catalog, clock).run();
    } catch (const ImportStopped&) {
        return std::nullopt;
    }
}

} // namespace korvo
