#include "platform/linux/images/OutsideDecoding.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace korvo {

namespace {

using namespace std::string_view_literals;

struct Kind {
    std::string_view mark; ///< what a file of this kind holds
    std::uint64_t at; ///< and where
    OpenRows open;
};

constexpr std::array kinds{
    Kind{"FUJIFILM"sv, 0, openRaw},
    Kind{"\0MRM"sv, 0, openRaw},
    Kind{"HEAPCCDR"sv, 6, openRaw},
    Kind{"FOVb"sv, 0, openRaw},
    Kind{"IIRO"sv, 0, openRaw},
    Kind{"IIRS"sv, 0, openRaw},
    Kind{"MMOR"sv, 0, openRaw},
    Kind{"IIU\0"sv, 0, openRaw},
    Kind{"ftypcrx "sv, 4, openRaw},
    Kind{"ftyphei"sv, 4, openHeif},
    Kind{"ftyphev"sv, 4, openHeif},
    Kind{"ftypmif1"sv, 4, openHeif},
    Kind{"ftypmsf1"sv, 4, openHeif},
    Kind{"ftypavi"sv, 4, openHeif},
    Kind{"ftyp"sv, 4, openFrame},
    Kind{"moov"sv, 4, openFrame},
    Kind{"mdat"sv, 4, openFrame},
    Kind{"wide"sv, 4, openFrame},
    Kind{"free"sv, 4, openFrame},
    Kind{"skip"sv, 4, openFrame},
    Kind{"pnot"sv, 4, openFrame},
    Kind{"AVI "sv, 8, openFrame},
    Kind{"\0\0\1\xBA"sv, 0, openFrame},
    Kind{"\0\0\1\xB3"sv, 0, openFrame},
    Kind{"GIF8"sv, 0, openFrame},
    Kind{"BM"sv, 0, openFrame},
};

bool isTiff(Bytes start)
{
    return start.startsWith("II*\0"sv) || start.startsWith("MM\0*"sv) || start.startsWith("II+\0"sv)
        || start.startsWith("MM\0+"sv);
}

/// Raw files are built like TIFFs, and some TIFFs are taken for raw files: the name tells what to try first.
/// A file of the one kind that is damaged is none of the other.
DecodedImage decodeTiffOrRaw(PictureFile& file, const ImageRequest& request, const std::stop_token& stop)
{
    const auto ending = asciiLower(file.path().extension().native());
    std::array<OpenRows, 2> order{openRaw, openTiff};
    if (ending == ".tif" || ending == ".tiff")
        std::ranges::reverse(order);
    try {
        return decodePicture(file, order[0], request, stop);
    } catch (const ImageError& first) {
        if (first.which() != ImageError::Case::unsupported)
            throw;
        try {
            return decodePicture(file, order[1], request, stop);
        } catch (const ImageError&) {
            throw first; // of the kind that the name promises
        }
    }
}

} // namespace

DecodedImage decodeAnyPicture(
    const std::filesystem::path& path, const ImageRequest& request, const std::stop_token& stop)
{
    PictureFile file(path);
    if (const auto open = safeDecoder(file))
        return decodePicture(file, open, request, stop);
    std::array<std::uint8_t, 16> head{};
    const Bytes start(head.data(), file.readAt(0, head.data(), head.size()));
    if (isTiff(start))
        return decodeTiffOrRaw(file, request, stop);
    const auto kind
        = std::ranges::find_if(kinds, [&](const Kind& each) { return start.startsWith(each.mark, each.at); });
    if (kind == kinds.end())
        file.fail(ImageError::Case::unknown, "is no picture, raw file or film that Korvo knows");
    return decodePicture(file, kind->open, request, stop);
}

} // namespace korvo
