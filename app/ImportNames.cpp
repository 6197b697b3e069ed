#include "app/ImportNames.h"

#include "base/FoldedText.h"
#include "platform/PartFile.h"

#include <algorithm>
#include <system_error>

namespace korvo {

namespace fs = std::filesystem;

std::vector<NamedFile> ImportNames::claim(
    const NamingFacts& facts, std::size_t index, std::span<const UnnamedFile> files)
{
    auto names = announced(files);
    std::size_t longestSuffix = 0;
    for (const auto& file : files)
        longestSuffix = std::max(longestSuffix, file.suffix.size());
    const auto base = [&](const std::string& end) {
        const auto taken = longestSuffix + end.size();
        return baseName(facts, pattern_, {index, total_}, longestFileName - std::min(longestFileName, taken))
            + end;
    };
    for (auto& number = numbers_.try_emplace(base(""), 1).first->second; !names; ++number)
        names = tryBase(base(number == 1 ? "" : "-" + std::to_string(number)), files);
    for (const auto& name : *names)
        claimed_.insert(folded(name.path.filename().native()));
    return *names;
}

ImportNames::Names ImportNames::announced(std::span<const UnnamedFile> files)
{
    for (const auto& file : files)
        for (const fs::path path : catalog_.announcedPaths(file.key)) {
            const auto name = path.filename().string();
            if (path.parent_path() == folder_ && name.ends_with(file.suffix) && holdsSame(path, file))
                if (auto names = tryBase(name.substr(0, name.size() - file.suffix.size()), files))
                    return names;
        }
    return std::nullopt;
}

ImportNames::Names ImportNames::tryBase(const std::string& base, std::span<const UnnamedFile> files)
{
    std::vector<NamedFile> names;
    for (const auto& file : files) {
        auto name = tryName(base + file.suffix, file);
        if (!name)
            return std::nullopt;
        names.push_back(std::move(*name));
    }
    return names;
}

std::optional<NamedFile> ImportNames::tryName(const std::string& name, const UnnamedFile& file)
{
    const auto path = folder_ / name;
    // A photo whose file is missing keeps its path: another one there would get its title and its edits.
    if (claimed_.contains(folded(name)) || (file.isPhoto && catalog_.hasMaster(path.native())))
        return std::nullopt;
    if (!fs::exists(fs::symlink_status(path)))
        return NamedFile{path};
    return holdsSame(path, file) ? std::optional(NamedFile{path, true}) : std::nullopt;
}

bool ImportNames::holdsSame(const fs::path& path, const UnnamedFile& file)
{
    try {
        std::error_code elsewhere; // a camera's file has no path here
        return fs::is_regular_file(fs::symlink_status(path)) && fs::file_size(path) == file.size
            && !fs::equivalent(path, file.source, elsewhere) && sha256OnDisk(path, {}) == file.digest;
    } catch (const std::system_error&) {
        return false; // what cannot be read is something else, and stays as it is
    }
}

} // namespace korvo
