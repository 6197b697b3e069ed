#include "app/ImportNames.h"

#include "base/FoldedText.h"
#include "platform/Sha256.h"

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
        if (const auto path = catalog_.announcedImport(file.key)) {
            const auto name = fs::path(*path).filename().string();
            if (fs::path(*path).parent_path() == folder_ && name.ends_with(file.suffix)
                && holdsSame(*path, file))
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
    if (claimed_.contains(folded(name)))
        return std::nullopt;
    std::error_code unknown; // what cannot be looked at is not free
    const auto type = fs::symlink_status(path, unknown).type();
    if (type == fs::file_type::not_found)
        return NamedFile{path};
    return holdsSame(path, file) ? std::optional(NamedFile{path, true}) : std::nullopt;
}

bool ImportNames::holdsSame(const fs::path& path, const UnnamedFile& file)
{
    try {
        return fs::is_regular_file(fs::symlink_status(path)) && fs::file_size(path) == file.size
            && sha256OfFile(path, {}) == file.digest && !(file.isPhoto && catalog_.hasMaster(path.native()));
    } catch (const std::system_error&) {
        return false; // what cannot be read is something else, and stays as it is
    }
}

} // namespace korvo
