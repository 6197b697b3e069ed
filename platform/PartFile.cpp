#include "platform/PartFile.h"

#include "base/Uuid.h"
#include "platform/FileSync.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace korvo {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view partEnding = ".part";

fs::path partOf(fs::path target)
{
    return target += partEnding;
}

enum class Lock { ours, others, none };

/// Locks a byte far behind the end. On a file server a lock may keep every other handle, also of ours, from
/// what it covers, and others do read and write the file while we hold it.
Lock lock(const PosixFile& file)
{
    struct flock farByte { };
    farByte.l_type = F_WRLCK;
    farByte.l_whence = SEEK_SET;
    farByte.l_start = off_t(1) << 61;
    farByte.l_len = 1;
    if (fcntl(file.descriptor(), F_OFD_SETLK, &farByte) == 0)
        return Lock::ours;
    return errno == EAGAIN || errno == EACCES ? Lock::others : Lock::none;
}

/// Whether nobody has written the file for a day.
bool isAbandoned(const fs::path& path)
{
    std::error_code unknown; // then it is left alone
    const auto written = fs::last_write_time(path, unknown);
    return !unknown && fs::file_time_type::clock::now() - written > std::chrono::days(1);
}

} // namespace

PartFile::PartFile(fs::path target, fs::path path, PosixFile file)
    : target_(std::move(target)), path_(std::move(path)), file_(std::move(file))
{ }

std::optional<PartFile> PartFile::begin(const fs::path& target)
{
    const auto path = partOf(target);
    for (;;) {
        auto file = openFile(path, O_RDWR | O_CREAT | O_NOFOLLOW);
        if (!file) // what another user left, a folder, a link
            return ofOwnName(target);
        const auto held = lock(file);
        if (held == Lock::others)
            return std::nullopt;
        if (!isNamed(file, path))
            continue; // installed or removed by its owner just before we had the lock
        if (held == Lock::none) {
            unlink(path.c_str()); // where there are no locks nobody writes under this name
            return ofOwnName(target);
        }
        if (ftruncate(file.descriptor(), 0) != 0)
            throwFileError("write", path);
        return PartFile(target, path, std::move(file));
    }
}

PartFile PartFile::beginHidden(const fs::path& folder, std::string_view start, std::string_view ending)
{
    auto part = begin(folder / (std::string(start) + Uuid::random().text()).append(ending));
    return std::move(part.value());
}

PartFile PartFile::ofOwnName(const fs::path& target)
{
    auto name = target;
    const auto path = partOf(name += "." + Uuid::random().text());
    auto file = openFile(path, O_RDWR | O_CREAT | O_EXCL);
    if (!file)
        throwFileError("write", partOf(target));
    (void)lock(file); // tells who removes left-overs that this is none, where there are locks
    return {target, path, std::move(file)};
}

namespace {

void removeLeftOver(const fs::path& path)
{
    const auto file = openFile(path, O_RDWR | O_NOFOLLOW);
    if (!file)
        return;
    const auto held = lock(file);
    const bool isOurs = held == Lock::ours || (held == Lock::none && isAbandoned(path));
    // Whoever needs the name next says what is wrong with it.
    if (isOurs && isNamed(file, path))
        unlink(path.c_str());
}

} // namespace

void PartFile::removeLeftOvers(const fs::path& start)
{
    std::error_code unreadable;
    fs::directory_iterator entry(start.parent_path(), unreadable);
    for (; !unreadable && entry != fs::directory_iterator(); entry.increment(unreadable))
        if (entry->path().native().starts_with(start.native()) && entry->path().extension() == partEnding)
            removeLeftOver(entry->path());
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

bool PartFile::moveTo(const fs::path& freeName)
{
    if (!moveToFreeName(path_, freeName))
        return false;
    file_ = {};
    return true;
}

void PartFile::moveOver(const fs::path& target)
{
    syncFile(path_); // by its name, under which a tool may have put a file of its own
    if (rename(path_.c_str(), target.c_str()) != 0)
        throwFileError("write", target);
    file_ = {}; // from here on the name may be another's
    syncFolder(target.parent_path());
}

namespace {

/// Begins the part file when who writes it now, which takes a moment, is done.
PartFile beginInTurn(const fs::path& target)
{
    constexpr std::chrono::milliseconds pause(10);
    constexpr std::chrono::seconds longest(5); // then its writer hangs
    for (auto waited = pause; waited < longest; waited += pause) {
        if (auto part = PartFile::begin(target))
            return std::move(*part);
        std::this_thread::sleep_for(pause);
    }
    throwFileError("write", target, std::make_error_code(std::errc::device_or_resource_busy));
}

} // namespace

void replaceFile(const fs::path& file, std::string_view contents)
{
    makeFolders(file.parent_path());
    auto part = beginInTurn(file);
    part.write(Bytes(contents));
    part.install();
}

} // namespace korvo
