#include "metadata/containers/Containers.h"

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
    Container{"II*\0"sv, 0, findInTiff},
    Container{"MM\0*"sv, 0, findInTiff},
    Container{"IIRO"sv, 0, findInTiff}, // Olympus
    Container{"IIRS"sv, 0, findInTiff},
    Container{"MMOR"sv, 0, findInTiff},
    Container{"IIU\0"sv, 0, findInRw2},
    Container{"\x89PNG\r\n\x1A\n"sv, 0, findInPng},
    Container{"WEBP"sv, 8, findInWebp},
    Container{"AVI "sv, 8, findInAvi},
    Container{"GIF8"sv, 0, findInGif},
    Container{"BM"sv, 0, findInBmp},
    Container{"FUJIFILM"sv, 0, findInRaf},
    Container{"\0MRM"sv, 0, findInMrw},
    Container{"HEAPCCDR"sv, 6, findInCrw},
    Container{"FOVb"sv, 0, findInX3f},
    Container{"ftyp"sv, 4, findInIsoFile},
    Container{"moov"sv, 4, findInMovie}, // QuickTime before it had brands
    Container{"mdat"sv, 4, findInMovie},
    Container{"wide"sv, 4, findInMovie},
    Container{"free"sv, 4, findInMovie},
    Container{"skip"sv, 4, findInMovie},
    Container{"pnot"sv, 4, findInMovie},
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
