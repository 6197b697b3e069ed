#pragma once

#include "catalog/CatalogErrors.h"
#include "catalog/CatalogRecords.h"
#include "catalog/FileRecord.h"
#include "catalog/LibrarySource.h"
#include "catalog/MetadataChange.h"
#include "catalog/SmartAlbumRules.h"
#include "catalog/Tree.h"
#include "catalog/sql/Database.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvo {

/// Whether a change of metadata still has to be written into the file.
enum class WriteBack { done, pending };

/// The open library: its folder, its database, and what is read and changed of its photos, of their files and
/// of the sidebar's tree. What one feature adds to them stands beside it, as functions over a catalog in a
/// header of their own (Stacks.h, Versions.h, UnreadPhotos.h…). Calls may come from any thread.
/// Each throws DatabaseError, those that change one row of an id NotFoundError when there is none, and those
/// that are given a name or a path std::invalid_argument for a blank name and a path that is not absolute.
/// Changes of several statements happen as a whole or not at all.
class Catalog {
public:
    /// Opens the library in `folder`, making what is missing, backing the catalog up once a day, bringing it
    /// to the current schema and following a move of the folder. A catalog that cannot be opened is left as
    /// it was.
    Catalog(const std::filesystem::path& folder, const Clock& clock);

    /// The library folder: absolute, with links resolved.
    const std::filesystem::path& libraryURL() const { return folder_; }
    std::filesystem::path previewsFolder() const { return folder_ / "Previews"; }
    std::filesystem::path backupsFolder() const { return folder_ / "Backups"; }
    Database& database() { return database_; }
    /// A further connection, for long reading beside everything else. Throws DatabaseError.
    Database lookingConnection() const { return Database::openForALook(folder_ / "catalog.sqlite"); }
    /// The same library by a further connection, for a long change in the background: through database()
    /// everything else would wait for it. Throws DatabaseError.
    Catalog beside() const;

    // Photos (CatalogPhotos.cpp)
    AddedRow addPhoto(const NewPhoto& photo);
    std::vector<AddedRow> addPhotos(std::span<const NewPhoto> photos);
    void setRating(std::span<const PhotoID> ids, int rating);
    void setFlagged(std::span<const PhotoID> ids, bool flagged);
    void setLabel(std::span<const PhotoID> ids, PhotoLabel label);
    void saveEdits(std::span<const PhotoID> ids, const PhotoEdits& edits);
    void saveComposition(PhotoID id, std::string_view json);
    void setReferencePath(PhotoID id, std::string_view path);
    void deletePhotos(std::span<const PhotoID> ids);
    /// Takes out again what was added: the photos with their versions, and those folders and projects that
    /// nothing else is in by now.
    void takeOut(const AddedRows& added);
    bool contains(PhotoID id);
    std::optional<PhotoID> masterAt(std::string_view path);
    /// Whether a file, by its absolute path, is one of the library's originals, under whatever name. Reads
    /// all photos' sizes where the file is there and the library does not have its name.
    bool isOriginal(const std::filesystem::path& file);
    /// File name and size of every master.
    std::vector<std::pair<std::string, std::int64_t>> knownFiles() const;
    /// The photo's master, itself for a master; 0 for an unknown id.
    PhotoID masterOf(PhotoID id);
    /// Throws NotFoundError instead.
    PhotoID existingMasterOf(PhotoID id);
    /// The masters of the photos, each once; unknown ids are left out.
    std::vector<PhotoID> mastersOf(std::span<const PhotoID> photos);
    /// The masters and all their versions.
    std::vector<PhotoID> withVersions(std::span<const PhotoID> masters);

    // Files and the metadata in them (CatalogMetadata.cpp)
    /// Changes the whole set of the photo's master and of all its versions.
    void setMetadata(PhotoID id, const PhotoMetadata& metadata, WriteBack writeBack);
    /// Changes the named fields of each photo's set.
    void changeMetadata(std::span<const PhotoID> ids, const MetadataChange& change, WriteBack writeBack);
    void clearDirty(PhotoID id);
    /// Marks those of the photos that are masters as not yet written into their files.
    void markDirty(std::span<const PhotoID> ids);
    void storeCameraData(PhotoID id, const CameraData& data);
    /// The position the file holds, if any; one that the catalog has already stays.
    void storeReadPosition(PhotoID id, std::optional<double> latitude, std::optional<double> longitude);
    void shiftCaptureDate(PhotoID id, double seconds);
    void fileChanged(PhotoID id, UnixTime fileDate, std::int64_t fileSize);
    /// In ascending order.
    std::vector<PhotoID> dirtyPhotos();
    /// Id and path of up to `limit` masters behind the id `after` whose camera data has not been read yet.
    std::vector<std::pair<PhotoID, std::string>> photosToRead(std::int64_t limit, PhotoID after = 0);
    /// The same of those whose position has not been read.
    std::vector<std::pair<PhotoID, std::string>> photosToLocate(std::int64_t limit, PhotoID after = 0);
    bool isCaptureDateRead(PhotoID id);
    bool isPositionRead(PhotoID id);
    /// The position that the user gives a photo, for its versions too; none takes it away. The file's own
    /// does not come back.
    void setUserPosition(PhotoID id, std::optional<double> latitude, std::optional<double> longitude);
    std::int64_t dirtyCount();
    bool anyDirty(std::span<const PhotoID> ids);
    /// Nothing for an unknown id and for a version.
    std::optional<FileRecord> fileRecord(PhotoID id);
    /// A file that was changed elsewhere holds these values and has this date and size.
    void metadataSeen(PhotoID id, const PhotoMetadata& inFile, UnixTime fileDate, std::int64_t fileSize);
    /// Keeps what a file held when it was found. What is kept already stays.
    void storeMetadataBackup(PhotoID id, std::string_view backup);
    /// The file now holds these values and has this date and size. The photo waits no longer to be written,
    /// unless its metadata has changed meanwhile.
    void metadataWritten(PhotoID id, const PhotoMetadata& written, UnixTime fileDate, std::int64_t fileSize);

    // Lists (CatalogSources.cpp)
    /// The photos of a source in its order. For a smart album throws NotFoundError when there is none and
    /// SmartAlbumError when its rules cannot be read, here and in what follows.
    std::vector<PhotoItem> photos(const std::optional<LibrarySource>& source);
    /// The same one by one, while the catalog is held: for output that need not be in memory at once. `use`
    /// returns whether to go on.
    void forEachPhoto(
        const std::optional<LibrarySource>& source, const std::function<bool(PhotoItem&&)>& use);
    /// Throws NotFoundError when the source is one of a folder, album, smart album, project, person or master
    /// that the library does not hold.
    void requireSource(const LibrarySource& source);
    /// The rows of these ids, in the order of the ids; unknown ids are left out.
    std::vector<PhotoItem> photosByID(std::span<const PhotoID> ids);
    std::optional<PhotoItem> photo(PhotoID id);
    /// Those of the photos that the source lists. For an album and the recently added, whose members are not
    /// decided by a photo's own values, all of them.
    std::vector<PhotoItem> photosOfSource(
        const std::optional<LibrarySource>& source, std::span<const PhotoID> ids);

    // The tree (CatalogTree.cpp)
    LibraryTree tree();
    /// Adding a known folder again yields its id.
    AddedRow addFolder(std::string_view path, UnixTime addedAt);
    /// The added folder that a file lies in, the innermost if there are several.
    std::optional<std::int64_t> folderContaining(std::string_view path);
    std::int64_t photosInFolder(std::int64_t id);
    void removeFolder(std::int64_t id);
    /// A photo's file has another name, or lies elsewhere.
    void fileRenamed(PhotoID id, const std::filesystem::path& path);
    std::int64_t createProject(
        std::string_view name, std::string_view kind, std::optional<std::int64_t> parent);
    /// The project of that name that has no parent, made when there is none.
    AddedRow projectAtRoot(std::string_view name);
    /// Puts every project and album that has no parent under a new project at the root.
    std::int64_t gatherUnderProject(std::string_view name);
    void renameProject(std::int64_t id, std::string_view name);
    /// Puts a project below another, or at the root. Throws std::invalid_argument for one that would lie in
    /// itself.
    void moveProject(std::int64_t id, std::optional<std::int64_t> parent);
    /// The same, standing before another project there, or as the last (CatalogOrder.cpp).
    void placeProject(
        std::int64_t id, std::optional<std::int64_t> parent, std::optional<std::int64_t> before);
    void deleteProject(std::int64_t id);
    /// No project takes the photos out of theirs. Versions follow their master.
    void assignToProject(std::span<const PhotoID> ids, std::optional<std::int64_t> project);
    std::int64_t createAlbum(std::string_view name, std::optional<std::int64_t> parentProject);
    void renameAlbum(std::int64_t id, std::string_view name);
    void moveAlbum(std::int64_t id, std::optional<std::int64_t> parentProject);
    /// The same, standing before another album there, or as the last (CatalogOrder.cpp).
    void placeAlbum(
        std::int64_t id, std::optional<std::int64_t> parentProject, std::optional<std::int64_t> before);
    void deleteAlbum(std::int64_t id);
    void addToAlbum(std::int64_t album, std::span<const PhotoID> photos);
    /// Adds photos, each behind the member named at its place, or at the end (CatalogOrder.cpp).
    void addToAlbumBehind(
        std::int64_t album, std::span<const PhotoID> photos, std::span<const PhotoID> members);
    /// Puts those of the photos that are in the album before another member, in this order, or behind all
    /// (CatalogOrder.cpp).
    void moveInAlbum(std::int64_t album, std::span<const PhotoID> photos, std::optional<PhotoID> before);
    void removeFromAlbum(std::int64_t album, std::span<const PhotoID> photos);
    std::vector<KeywordRow> keywords();
    std::int64_t createKeyword(std::string_view name, std::optional<std::int64_t> parent);
    /// Puts a keyword below another, or at the top. Throws std::invalid_argument for one that would lie in
    /// itself (CatalogOrder.cpp).
    void moveKeyword(std::int64_t id, std::optional<std::int64_t> parent);
    void deleteKeyword(std::int64_t id);

    // Smart albums (CatalogSmartAlbums.cpp)
    std::int64_t createSmartAlbum(std::string_view name, std::string_view rules);
    void changeSmartAlbum(std::int64_t id, std::string_view name, std::string_view rules);
    /// Before another, or as the last (CatalogOrder.cpp).
    void placeSmartAlbum(std::int64_t id, std::optional<std::int64_t> before);
    void deleteSmartAlbum(std::int64_t id);
    SmartAlbumRow smartAlbum(std::int64_t id);
    /// How many masters the rules match, as far as it came at a stop request. On a connection of its own, so
    /// that it keeps nobody waiting; what is not committed does not count.
    std::size_t countMatching(const SmartAlbumRules& rules, const std::stop_token& stop = {}) const;

private:
    Catalog(std::filesystem::path folder, Database database);
    std::filesystem::path folder_;
    Database database_;
};

} // namespace korvo
