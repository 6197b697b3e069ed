#include "aperture/BundlePaths.h"

namespace korvo {

namespace fs = std::filesystem;

bool isPlainName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == name.npos
        && name.find('\0') == name.npos;
}

std::optional<fs::path> pathIn(const fs::path& folder, std::string_view path)
{
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    const auto relative = fs::path(path).lexically_normal();
    if (relative.empty() || *relative.begin() == ".." || path.find('\0') != path.npos)
        return std::nullopt;
    return folder / relative;
}

bool isFile(const fs::path& path)
{
    std::error_code unreadable; // what cannot be looked at is not there for us
    return fs::is_regular_file(path, unreadable);
}

std::optional<fs::path> existingFileIn(const fs::path& folder, std::string_view path)
{
    auto file = pathIn(folder, path);
    return file && isFile(*file) ? std::move(file) : std::nullopt;
}

} // namespace korvo
