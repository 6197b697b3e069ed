#include "platform/FileDefaults.h"

#include "platform/FileSync.h"

#include <fstream>
#include <iterator>

namespace korvo {

std::optional<std::string> FileDefaults::get(std::string_view key) const
{
    std::ifstream file(folder_ / key, std::ios::binary);
    if (!file)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void FileDefaults::set(std::string_view key, std::string_view value)
{
    replaceFile(folder_ / key, value);
}

} // namespace korvo
