#include "platform/PartFile.h"

#include "platform/FileSync.h"
#include "platform/Sha256.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace korvo {

namespace {

namespace fs = std::filesystem;

fs::path partOf(fs::path target)
{
    return target += ".part";
}

void makeFolders(const fs::path& folder)
{
    std::error_code reason;
    fs::create_directories(folder, reason);
    if (reason)
        throwFileError("make the folder", folder, reason);
}

/// False when another process holds the lock. On a file system without locks every file counts as ours: what
/// could go wrong there is that two processes fetch at once, and the fingerprint tells.
bool lock(const PosixFile& file)
{
    return flock(file.descriptor(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

/// Whether the file open here is still the one of that name. Only the holder of its lock may rename or remove
/// it, so that under the lock the answer stays true.
bool isNamed(const PosixFile& file, const fs::path& path)
{
    struct stat open { };
    struct stat named { };
    return fstat(file.descriptor(), &open) == 0 && lstat(path.c_str(), &named) == 0
        && open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

} // namespace

PartFile::PartFile(fs::path target, fs::path path, PosixFile file)
    : target_(std::move(target)), path_(std::move(path)), file_(std::move(file))
{ }

std::optional<PartFile> PartFile::begin(const fs::path& target)
{
    const auto path = partOf(target);
    makeFolders(path.parent_path());
    for (;;) {
        auto file = openFile(path, O_RDWR | O_CREAT | O_NOFOLLOW);
        if (!file)
            throwFileError("write", path);
        if (!lock(file))
            return std::nullopt;
        if (!isNamed(file, path))
            continue; // installed or removed by its owner just before we had the lock
        if (ftruncate(file.descriptor(), 0) != 0)
            throwFileError("write", path);
        return PartFile(target, path, std::move(file));
    }
}

void PartFile::removeLeftOver(const fs::path& target)
{
    const auto path = partOf(target);
    const auto file = openFile(path, O_RDWR | O_NOFOLLOW);
    // What cannot be removed is no reason to do without the model; the next download says what is wrong.
    if (file && lock(file) && isNamed(file, path))
        unlink(path.c_str());
}

PartFile::~PartFile()
{
    if (file_)
        unlink(path_.c_str());
}

PartFile& PartFile::operator=(PartFile&& other) noexcept
{
    std::swap(target_, other.target_);
    std::swap(path_, other.path_);
    std::swap(file_, other.file_);
    return *this;
}

void PartFile::write(Bytes bytes) const
{
    writeAll(file_, path_, bytes);
}

void PartFile::sync() const
{
    if (fsync(file_.descriptor()) != 0)
        throwFileError("write", path_);
}

std::optional<std::string> PartFile::readBack(const std::stop_token& stop) const
{
    posix_fadvise(file_.descriptor(), 0, 0, POSIX_FADV_DONTNEED); // a file system in memory has nothing else
    return sha256OfFile(path_, stop);
}

bool PartFile::moveTo(const fs::path& freeName)
{
    if (!moveToFreeName(path_, freeName))
        return false;
    file_ = {};
    return true;
}

void PartFile::install()
{
    moveIntoPlace(path_, target_);
    file_ = {};
}

} // namespace korvo
