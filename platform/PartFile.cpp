#include "platform/PartFile.h"

#include "platform/FileSync.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
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

/// On a file system without locks nobody can tell who writes a file.
Lock lock(const PosixFile& file)
{
    if (flock(file.descriptor(), LOCK_EX | LOCK_NB) == 0)
        return Lock::ours;
    return errno == EWOULDBLOCK ? Lock::others : Lock::none;
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
        if (!file)
            throwFileError("write", path);
        if (lock(file) == Lock::others)
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
    if (!file)
        return;
    const auto held = lock(file);
    const bool isOurs = held == Lock::ours || (held == Lock::none && isAbandoned(path));
    // Whoever needs the name next says what is wrong with it.
    if (isOurs && isNamed(file, path))
        unlink(path.c_str());
}

void PartFile::removeLeftOvers(const fs::path& folder, std::string_view start)
{
    for (const auto& entry : fs::directory_iterator(folder)) {
        const auto& path = entry.path();
        if (path.filename().native().starts_with(start) && path.extension() == partEnding)
            removeLeftOver(path.parent_path() / path.stem());
    }
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

void PartFile::install()
{
    moveIntoPlace(path_, target_);
    file_ = {};
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
