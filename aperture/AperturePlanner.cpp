#include "aperture/ApertureImporter.h"
#include "aperture/ApertureMaster.h"
#include "aperture/SmartAlbumConversion.h"
#include "base/Json.h"

#include <tbb/parallel_for.h>
#include <tbb/parallel_invoke.h>

#include <algorithm>
#include <atomic>
#include <unordered_set>

namespace korvo {

namespace {

constexpr std::int64_t implicitAlbum = 1;
constexpr std::int64_t smartAlbum = 2;

/// The whole of the bundle's tables, except for the adjustments.
struct Tables {
    std::unordered_map<std::string, ApertureLibrary::Master> masters;
    std::vector<ApertureLibrary::Version> versions;
    ApertureDescriptions descriptions;
    std::vector<ApertureLibrary::Album> albums;
    std::vector<ApertureLibrary::Stack> stacks;
};

Tables readTables(ApertureLibrary& library)
{
    Tables tables;
    tbb::parallel_invoke( // the two databases have a connection each
        [&] {
            tables.masters = library.masters();
            tables.versions = library.versions();
            tables.albums = library.albums();
            tables.stacks = library.stacks();
        },
        [&] {
            tables.descriptions.exif = library.exifValues();
            tables.descriptions.metadata = library.metadata();
        });
    return tables;
}

/// The masters that have a photo to show, in the order in which they came into the library.
std::vector<ApertureSource> importSources(const Tables& tables)
{
    std::vector<ApertureSource> sources;
    for (const auto& version : tables.versions) { // by master
        const auto master = tables.masters.find(version.masterUuid);
        if (master == tables.masters.end())
            continue;
        if (sources.empty() || sources.back().master != &master->second)
            sources.push_back({&master->second, {}});
        sources.back().versions.push_back(&version);
    }
    std::sort(sources.begin(), sources.end(), [](const ApertureSource& a, const ApertureSource& b) {
        return a.master->modelId < b.master->modelId;
    });
    return sources;
}

} // namespace

class AperturePlanner {
public:
    AperturePlanner(ApertureImporter& importer, const MatchRender& match) : importer_(importer), match_(match)
    { }

    ApertureImportPlan run()
    {
        auto& library = importer_.library_;
        importer_.show("Reading the Aperture library…");
        tables_ = readTables(library);
        plan_.identity = library.identity();
        plan_.bundle = library.bundleURL();
        plan_.projects = library.projects();
        plan_.folderPaths = library.folderPaths();
        plan_.keywords = library.keywordEntries();
        sources_ = importSources(tables_);
        readPhotos();
        gather();
        for (const auto& album : tables_.albums)
            addAlbum(album);
        for (const auto& stack : tables_.stacks)
            addStack(stack);
        throwIfStopped();
        return std::move(plan_);
    }

private:
    void throwIfStopped() const { importer_.throwIfStopped(); }

    const char* phase() const
    {
        return match_ ? "Reading photos and matching Aperture's renders…" : "Reading photos…";
    }

    void readPhotos()
    {
        imported_.resize(sources_.size());
        importer_.show(phase(), 0, sources_.size());
        std::atomic<std::size_t> done = 0;
        tbb::parallel_for(std::size_t(0), sources_.size(), [&](std::size_t i) {
            throwIfStopped();
            imported_[i] = importMaster(importer_.library_, sources_[i], tables_.descriptions, match_);
            constexpr std::size_t step = 64;
            if (const auto count = ++done; match_ || count % step == 0 || count == sources_.size())
                importer_.show(phase(), count, sources_.size());
        });
    }

    /// Puts the photos of all masters into one list. Two masters may point at one file: the photos of the
    /// second become versions of the first, with what all versions of a photo share.
    void gather()
    {
        std::unordered_map<std::string, std::size_t> masterAt;
        for (std::size_t i = 0; i < sources_.size(); ++i) {
            throwIfStopped();
            auto& imported = imported_[i];
            plan_.missingFiles += imported.photos.empty();
            plan_.adjustedVersions += imported.adjusted;
            plan_.matchedToPreview += imported.matched;
            plan_.report.add(imported.report);
            for (std::size_t n = 0; n < imported.photos.size(); ++n) {
                auto& photo = imported.photos[n];
                const auto at = plan_.photos.size();
                const auto master = masterAt.try_emplace(photo.row.path, at).first->second;
                photo.versionOf = master == at ? std::nullopt : std::optional(master);
                if (photo.versionOf)
                    share(plan_.photos[master], photo);
                placeOf_.emplace(sources_[i].versions[n]->uuid, at);
                placeOfModel_.emplace(sources_[i].versions[n]->modelId, at);
                plan_.photos.push_back(std::move(photo));
            }
        }
    }

    /// Gives a version what belongs to its file: all but its marks, name, edits and render.
    static void share(const ApertureImportPlan::Photo& master, ApertureImportPlan::Photo& version)
    {
        auto row = master.row;
        row.rating = version.row.rating;
        row.flagged = version.row.flagged;
        row.label = version.row.label;
        row.edits = std::move(version.row.edits);
        row.versionName = std::move(version.row.versionName);
        row.referencePath = std::move(version.row.referencePath);
        version.row = std::move(row);
        version.projectUuid = master.projectUuid;
    }

    std::vector<std::size_t> members(const ApertureLibrary::Album& album) const
    {
        std::vector<std::size_t> photos;
        for (const auto id : album.versionIds)
            if (const auto place = placeOfModel_.find(id); place != placeOfModel_.end())
                photos.push_back(place->second);
        return photos;
    }

    void addAlbum(const ApertureLibrary::Album& album)
    {
        throwIfStopped();
        if (album.subclass == implicitAlbum)
            return;
        const bool isSmart = album.subclass == smartAlbum;
        const auto rules
            = isSmart && album.smartQuery ? convertSmartAlbum(album.smartQuery->root()) : std::nullopt;
        if (rules) {
            plan_.smartAlbums.push_back({album.name, toJson(*rules)});
            return;
        }
        plan_.smartAlbumsAsPlain += isSmart;
        plan_.albums.push_back({isSmart ? album.name + " (from Aperture smart album)" : album.name,
            album.folderUuid, members(album)});
    }

    std::optional<std::size_t> masterOf(const std::string& versionUuid) const
    {
        const auto place = placeOf_.find(versionUuid);
        if (place == placeOf_.end())
            return std::nullopt;
        return plan_.photos[place->second].versionOf.value_or(place->second);
    }

    /// The catalog's stacks hold masters: one of versions of one master is none.
    void addStack(const ApertureLibrary::Stack& stack)
    {
        ApertureImportPlan::Stack planned;
        for (const auto& uuid : stack.versionUuids)
            if (const auto master = masterOf(uuid); master && inStack_.insert(*master).second)
                planned.photos.push_back(*master);
        if (planned.photos.size() < 2)
            return;
        if (const auto pick = stack.pickVersionUuid ? masterOf(*stack.pickVersionUuid) : std::nullopt;
            pick && std::find(planned.photos.begin(), planned.photos.end(), *pick) != planned.photos.end())
            planned.pick = pick;
        plan_.stacks.push_back(std::move(planned));
    }

    ApertureImporter& importer_;
    const MatchRender& match_;
    Tables tables_;
    std::vector<ApertureSource> sources_;
    std::vector<PreparedMaster> imported_; // of each source
    std::unordered_map<std::string, std::size_t> placeOf_; // of a photo, by its version's uuid
    std::unordered_map<std::int64_t, std::size_t> placeOfModel_; // by its modelId
    std::unordered_set<std::size_t> inStack_; // a photo is in one stack at most
    ApertureImportPlan plan_;
};

std::optional<ApertureImportPlan> ApertureImporter::plan(const MatchRender& match)
{
    try {
        return AperturePlanner(*this, match).run();
    } catch (const ImportStopped&) {
        return std::nullopt;
    }
}

void ApertureImporter::throwIfStopped() const
{
    if (stop_.stop_requested())
        throw ImportStopped();
}

void ApertureImporter::show(const char* phase, std::size_t done, std::size_t total)
{
    const std::lock_guard lock(progressMutex_);
    progress_({phase, done, total});
}

} // namespace korvo
