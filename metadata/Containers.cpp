#include "metadata/Containers.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace korvo {

namespace {

using namespace std::string_view_literals;

struct Container {
    std::string_view mark; ///< what a file of this kind holds
    std::uint64_t at; ///< and where
    MetadataBlocks (*find)(FileWindow&, ByteRange);
};

constexpr std::array containers{
    Container{"\xFF\xD8\xFF"sv, 0, findInJpeg},
};

} // namespace

std::optional<MetadataBlocks> findMetadata(FileWindow& file)
{
    const auto container = std::ranges::find_if(
        containers, [&](const Container& each) { return file.head().startsWith(each.mark, each.at); });
    if (container == containers.end())
        return std::nullopt;
    return container->find(file, file.all());
}

} // namespace korvo
