#include "imports/FolderFiles.h"

#include "catalog/FolderScan.h"
#include "platform/PosixFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>

namespace korvo {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t chunkSize = 1 << 20;

/// The paths, each file among them followed by what belongs to it.
std::vector<fs::path> withSidecars(const std::vector<fs::path>& paths)
{
    std::vector<fs::path> all;
    for (const auto& path : paths) {
        all.push_back(path);
        std::error_code ignored; // what cannot be looked at is reported when it is scanned
        if (fs::is_directory(path, ignored))
            continue;
        for (auto sidecar : {fs::path(path).replace_extension(".xmp"),
                 fs::path(path).replace_extension(".XMP"), fs::path(path) += ".xmp"})
            if (sidecar != path && fs::is_regular_file(sidecar, ignored))
                all.push_back(std::move(sidecar));
    }
    return all;
}

[[noreturn]] void failReading()
{
    throw SourceError("could not be read: " + std::error_code(errno, std::generic_category()).message());
}

struct stat statusOf(const PosixFile& file)
{
    struct stat status { };
    if (fstat(file.descriptor(), &status) != 0)
        failReading();
    return status;
}

/// What is written while it is read comes as a mixture of before and after.
void requireUnchanged(const struct stat& before, const struct stat& after)
{
    if (before.st_size != after.st_size || before.st_mtim.tv_sec != after.st_mtim.tv_sec
        || before.st_mtim.tv_nsec != after.st_mtim.tv_nsec)
        throw SourceError("was changed while it was read; import it again");
}

} // namespace

SourceListing FolderFiles::list(Admits admits, const std::stop_token& stop)
{
    SourceListing listing;
    std::set<fs::path> seen; // a folder may be named twice, or within another
    FolderScan scan(withSidecars(paths_), admits);
    while (const auto found = stop.stop_requested() ? std::nullopt : scan.next()) {
        if (!seen.insert(found->path).second)
            continue;
        try {
            if (!found->failure.empty())
                listing.failures.push_back({found->path, found->failure});
            else
                listing.files.push_back({found->path, found->added, fs::file_size(found->path),
                    fs::last_write_time(found->path)});
        } catch (const fs::filesystem_error& error) {
            listing.failures.push_back({found->path, error.code().message()});
        }
    }
    return listing;
}

void FolderFiles::read(
    const SourceFile& source, const std::function<void(Bytes)>& use, const std::stop_token& stop)
{
    const auto file = openFile(source.path, O_RDONLY | O_NONBLOCK); // a pipe would wait for its writer
    if (!file)
        failReading();
    const auto before = statusOf(file);
    if (!S_ISREG(before.st_mode))
        throw SourceError("is no file any more");
    posix_fadvise(
        file.descriptor(), 0, 0, POSIX_FADV_SEQUENTIAL); // a hint; whether it is taken does not matter
    std::vector<std::uint8_t> room(chunkSize);
    while (!stop.stop_requested()) {
        const auto count = ::read(file.descriptor(), room.data(), room.size());
        if (count == 0)
            return requireUnchanged(before, statusOf(file));
        if (count > 0)
            use({room.data(), static_cast<std::size_t>(count)});
        else if (errno != EINTR)
            failReading();
    }
}

} // namespace korvo
