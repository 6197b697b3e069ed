#include "platform/FileSync.h"

#include "platform/PosixFile.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace korvo {

namespace {

PosixFile opened(const std::filesystem::path& path, int flags)
{
    auto file = openFile(path, flags);
    if (!file)
        throwFileError("open", path);
    return file;
}

} // namespace

void syncFile(const std::filesystem::path& file)
{
    if (::fsync(opened(file, O_RDONLY).descriptor()) != 0)
        throwFileError("write", file);
}

bool moveToFreeName(const std::filesystem::path& from, const std::filesystem::path& to)
{
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno == EEXIST)
        return false;
    if (errno != EINVAL && errno != ENOSYS)
        throwFileError("write", to);
    if (std::filesystem::exists(std::filesystem::symlink_status(to)))
        return false;
    if (::rename(from.c_str(), to.c_str()) != 0)
        throwFileError("write", to);
    return true;
}

void makeFolders(const std::filesystem::path& folder)
{
    if (folder.empty() || std::filesystem::is_directory(folder))
        return;
    const auto above = folder.parent_path();
    makeFolders(above);
    std::error_code reason;
    std::filesystem::create_directory(folder, reason);
    if (reason == std::errc::file_exists) // by what is there
        reason = std::make_error_code(std::errc::not_a_directory);
    if (reason)
        throwFileError("make the folder", folder, reason);
    syncFolder(above.empty() ? "." : above);
}

void syncFolder(const std::filesystem::path& folder)
{
    const auto opened = korvo::opened(folder, O_RDONLY | O_DIRECTORY);
    if (::fsync(opened.descriptor()) == 0)
        return;
    const bool cannot = errno == EINVAL || errno == ENOTSUP;
    if (!cannot || ::syncfs(opened.descriptor()) != 0)
        throwFileError("write", folder);
}

} // namespace korvo
