#include "platform/PosixFile.h"

#include <algorithm>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace korvo {

PosixFile::~PosixFile()
{
    if (descriptor_ >= 0)
        close(descriptor_);
}

PosixFile openFile(const std::filesystem::path& path, int flags)
{
    constexpr mode_t lessTheUsersMask = 0666;
    return PosixFile(open(path.c_str(), flags | O_CLOEXEC, lessTheUsersMask));
}

bool isNamed(const PosixFile& file, const std::filesystem::path& path)
{
    struct stat open { };
    struct stat named { };
    return fstat(file.descriptor(), &open) == 0 && lstat(path.c_str(), &named) == 0
        && open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

void writeAll(const PosixFile& file, const std::filesystem::path& path, Bytes bytes)
{
    while (!bytes.empty()) {
        const auto count = write(file.descriptor(), bytes.data(), bytes.size());
        if (count >= 0)
            bytes = bytes.from(static_cast<std::uint64_t>(count));
        else if (errno != EINTR)
            throwFileError("write", path);
    }
}

std::string readWholeFile(const std::filesystem::path& path)
{
    const auto file = openFile(path, O_RDONLY);
    if (!file)
        throwFileError("read", path);
    constexpr std::size_t step = 1 << 16;
    std::string bytes;
    for (;;) {
        const auto size = bytes.size();
        bytes.resize(std::max(size + step, size * 2));
        const auto count = read(file.descriptor(), bytes.data() + size, bytes.size() - size);
        bytes.resize(size + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count == 0)
            return bytes;
        if (count < 0 && errno != EINTR)
            throwFileError("read", path);
    }
}

void throwFileError(std::string_view action, const std::filesystem::path& path, std::error_code reason)
{
    throw std::system_error(reason, "Could not " + std::string(action) + " “" + path.string() + "”");
}

void throwFileError(std::string_view action, const std::filesystem::path& path)
{
    throwFileError(action, path, {errno, std::generic_category()});
}

} // namespace korvo
