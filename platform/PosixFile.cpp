#include "platform/PosixFile.h"

#include <fcntl.h>
#include <string>
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

void throwFileError(std::string_view action, const std::filesystem::path& path, std::error_code reason)
{
    throw std::system_error(reason, "Could not " + std::string(action) + " “" + path.string() + "”");
}

void throwFileError(std::string_view action, const std::filesystem::path& path)
{
    throwFileError(action, path, {errno, std::generic_category()});
}

} // namespace korvo
