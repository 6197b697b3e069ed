#pragma once

#include "base/Dates.h"
#include "catalog/sql/Database.h"
#include "edits/PhotoEdits.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace korvo {

/// What a preview shows: a file, with one edit, at one size. Whatever differs gives another key.
using PreviewKey = std::array<std::uint8_t, 16>;

struct PreviewSubject {
    std::filesystem::path file;
    PhotoEdits edits;
    int size = 0; ///< pixels of the longer side
    int variant = 0; ///< whatever else tells two renders apart
};

/// The crop counts to four decimals, the straightening to two. The file may be missing.
PreviewKey previewKey(const PreviewSubject& subject);

/// Tells apart what a file holds at different times, by its size and its time of change. Nothing for a file
/// that is not there.
std::optional<std::string> previewState(const std::filesystem::path& file);

/// An encoded preview, and the state in which its file was when it was made.
struct KeptPreview {
    std::vector<std::uint8_t> image;
    std::string fileState;
};

/// Encoded previews in the library's folder for them, all in one SQLite file, so that a million of them are
/// no million files. Of each subject the newest is kept, also once its file has changed or is missing.
/// Several processes and threads may use it at once. It is only a cache: nothing that is wrong with it is an
/// error. A damaged file is thrown away for a new one, and where none can be made, or the disk is full,
/// nothing is found and nothing kept.
class PreviewCache {
public:
    /// Room for a million thumbnails, but no more than a tenth of the disk.
    static std::int64_t usualBound(const std::filesystem::path& folder);

    /// Keeps at most `mostBytes` of previews; those that were not used for the longest time go first.
    PreviewCache(std::filesystem::path folder, std::int64_t mostBytes, const Clock& clock);
    ~PreviewCache();
    PreviewCache(const PreviewCache&) = delete;
    PreviewCache& operator=(const PreviewCache&) = delete;

    std::optional<KeptPreview> find(const PreviewKey& key);
    void store(const PreviewKey& key, std::string_view fileState, std::span<const std::uint8_t> image);
    /// For an image that proved to be damaged.
    void remove(const PreviewKey& key);

private:
    using Use = std::function<void(Database&)>;

    void use(const Use& use);
    void open(int number);
    void startAnew();
    std::filesystem::path file(int number) const;
    int newestNumber() const;
    void flushUses(Database& database);
    static void drop(Database& database, const PreviewKey& key);
    void makeRoom(Database& database) const;

    std::filesystem::path folder_;
    std::int64_t mostBytes_;
    const Clock& clock_;
    std::mutex mutex_;
    int number_ = 0; ///< of the file: a new one has a new name, since others may still hold the old one
    std::optional<Database> database_;
    std::vector<PreviewKey> used_; ///< whose time of use is yet to be written
};

} // namespace korvo
