#include "catalog/FolderScan.h"

#include <algorithm>

namespace korvo {

namespace fs = std::filesystem;

namespace {

bool isHidden(const fs::path& path)
{
    return path.filename().native().starts_with('.');
}

/// Whether the entry is what a library keeps for itself: previews and backups are no photos.
bool isLibraryOwn(const fs::path& path)
{
    const auto name = path.filename();
    std::error_code ignored; // what cannot be looked at is no library
    return (name == "Previews" || name == "Backups")
        && fs::exists(path.parent_path() / "catalog.sqlite", ignored);
}

/// The path without links in its folders. A link that is the file itself stays: its name is the photo's.
fs::path resolved(const fs::path& path)
{
    if (fs::is_directory(path))
        return fs::canonical(path);
    const auto absolute = fs::absolute(path);
    return fs::canonical(absolute.parent_path()) / absolute.filename();
}

std::string reason(const std::error_code& error)
{
    return error.message();
}

} // namespace

FolderScan::FolderScan(std::span<const fs::path> paths, Admits admits)
    : admits_(admits), roots_(paths.rbegin(), paths.rend())
{ }

std::optional<ScannedFile> FolderScan::next()
{
    for (;;) {
        std::optional<ScannedFile> found;
        if (levels_.empty()) {
            if (roots_.empty())
                return std::nullopt;
            found = startNextRoot();
        } else if (levels_.back().entries.empty()) {
            levels_.pop_back();
        } else {
            const auto entry = std::move(levels_.back().entries.back());
            levels_.back().entries.pop_back();
            found = examine(entry);
        }
        if (found)
            return found;
    }
}

std::optional<ScannedFile> FolderScan::startNextRoot()
{
    const auto named = std::move(roots_.back());
    roots_.pop_back();
    root_.clear();
    try {
        if (!fs::exists(fs::symlink_status(named)))
            return ScannedFile{named, {}, reason(std::make_error_code(std::errc::no_such_file_or_directory))};
        const auto path = resolved(named);
        if (!fs::is_directory(path))
            return examine(fs::directory_entry(path));
        root_ = path;
        return enter(path);
    } catch (const fs::filesystem_error& error) {
        return ScannedFile{named, {}, reason(error.code())};
    }
}

std::optional<ScannedFile> FolderScan::enter(const fs::path& folder)
{
    std::error_code error;
    Level level;
    for (fs::directory_iterator entries(folder, error), end; !error && entries != end;
         entries.increment(error))
        if (!isHidden(entries->path()) && !isLibraryOwn(entries->path()))
            level.entries.push_back(*entries);
    if (error)
        return ScannedFile{folder, root_, reason(error)};
    std::sort(level.entries.begin(), level.entries.end(),
        [](const auto& a, const auto& b) { return a.path().native() > b.path().native(); });
    levels_.push_back(std::move(level));
    return std::nullopt;
}

std::optional<ScannedFile> FolderScan::examine(const fs::directory_entry& entry)
{
    std::error_code error;
    const bool isLink = entry.is_symlink(error);
    if (!isLink && entry.is_directory(error))
        return enter(entry.path());
    if (!admits_(entry.path().filename().native())) {
        ++ignored_;
        return std::nullopt;
    }
    const auto status = entry.status(error);
    if (error || !fs::exists(status))
        return ScannedFile{entry.path(), root_,
            reason(error ? error : std::make_error_code(std::errc::no_such_file_or_directory))};
    if (fs::is_regular_file(status))
        return ScannedFile{entry.path(), root_, {}};
    ++ignored_; // a link to a folder, a pipe or a device with a photo's name
    return std::nullopt;
}

} // namespace korvo
