#include "platform/FileDefaults.h"

#include "platform/PartFile.h"
#include "platform/PosixFile.h"

#include <system_error>

namespace korvo {

FileDefaults::FileDefaults(std::filesystem::path folder) : folder_(std::move(folder))
{
    PartFile::removeLeftOvers(folder_ / "");
}

std::optional<std::string> FileDefaults::get(std::string_view key) const
try {
    return readWholeFile(folder_ / key);
} catch (const std::system_error&) { // it was never set, or its half is worth nothing
    return std::nullopt;
}

void FileDefaults::set(std::string_view key, std::string_view value)
{
    replaceFile(folder_ / key, value);
}

} // namespace korvo
