#include "imports/ImportNames.h"

#include "base/FoldedText.h"
#include "platform/Sha256.h"

#include <algorithm>
#include <system_error>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// What stands before the suffix in the name of a path; nothing for a path of another folder or suffix.
std::optional<std::string> baseIn(const fs::path& folder, const fs::path& path, std::string_view suffix)
{
    const auto name = path.filename().string();
    return path.parent_path() == folder && name.ends_with(suffix)
        ? std::optional(name.substr(0, name.size() - suffix.size()))
        : std::nullopt;
}

} // namespace

std::optional<std::string> knownBase(
    Catalog& catalog, const fs::path& folder, const std::vector<Shot::File>& known)
{
    for (const auto& file : known)
        if (const auto path = ImportMemory(catalog).path(duplicateKey(file.file)))
            if (auto base = baseIn(folder, *path, file.suffix))
                return base;
    return std::nullopt;
}

std::vector<NamedFile> ImportNames::claim(const NamingFacts& facts, const Shot& shot, Files files)
{
    auto names = announced(files);
    if (!names)
        names = besideKnown(shot, files);
    std::size_t longestSuffix = 0;
    for (const auto* const file : files)
        longestSuffix = std::max(longestSuffix, file->file->suffix.size());
    const auto base = [&](const std::string& end) {
        const auto taken = longestSuffix + end.size();
        return baseName(
                   facts, pattern_, {shot.number, total_}, longestFileName - std::min(longestFileName, taken))
            + end;
    };
    for (auto& number = numbers_.try_emplace(base(""), 1).first->second; !names; ++number)
        names = tryBase(base(number == 1 ? "" : "-" + std::to_string(number)), files);
    for (const auto& name : *names)
        claimed_.insert(folded(name.path.filename().native()));
    return *names;
}

ImportNames::Names ImportNames::announced(Files files)
{
    for (const auto* const file : files)
        for (const fs::path path : memory_.announcedPaths(duplicateKey(file->file->file))) {
            const auto base = baseIn(folder_, path, file->file->suffix);
            if (base && holdsSame(path, *file))
                if (auto names = tryBase(*base, files))
                    return names;
        }
    return std::nullopt;
}

ImportNames::Names ImportNames::besideKnown(const Shot& shot, Files files)
{
    const auto base = knownBase(catalog_, folder_, shot.known);
    return base ? tryBase(*base, files) : std::nullopt;
}

ImportNames::Names ImportNames::tryBase(const std::string& base, Files files)
{
    std::vector<NamedFile> names;
    for (const auto* const file : files) {
        auto name = tryName(base + file->file->suffix, *file);
        if (!name)
            return std::nullopt;
        names.push_back(std::move(*name));
    }
    return names;
}

std::optional<NamedFile> ImportNames::tryName(const std::string& name, const ImportedFile& file)
{
    const auto path = folder_ / name;
    // A photo whose file is missing keeps its path: another one there would get its title and its edits.
    if (claimed_.contains(folded(name)) || (!file.file->isSidecar && catalog_.masterAt(path.native())))
        return std::nullopt;
    if (!fs::exists(fs::symlink_status(path)))
        return NamedFile{path};
    return holdsSame(path, file) ? std::optional(NamedFile{path, true}) : std::nullopt;
}

bool ImportNames::holdsSame(const fs::path& path, const ImportedFile& file)
{
    try {
        std::error_code elsewhere; // a camera's file has no path here
        return fs::is_regular_file(fs::symlink_status(path)) && fs::file_size(path) == file.copy->size
            && !fs::equivalent(path, file.file->file.path, elsewhere)
            && sha256OnDisk(path, {}) == file.copy->digest;
    } catch (const std::system_error&) {
        return false; // what cannot be read is something else, and stays as it is
    }
}

} // namespace korvo
