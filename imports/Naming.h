#pragma once

#include "base/Dates.h"
#include "catalog/PhotoItem.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace korvo {

/// What a naming pattern can say of a photo.
struct NamingFacts {
    std::string name; // the original file name without its extension
    std::string title;
    UnixTime fileDate = 0;
};

/// Where a photo stands in the batch that is named: `index` counts from 1.
struct NamingPlace {
    std::size_t index = 1;
    std::size_t total = 1;
};

/// What file systems allow a name to have, in bytes, its extension included.
inline constexpr std::size_t longestFileName = 255;

/// The file name that a pattern makes, without extension: {name}, {seq}, {date} and {title} are replaced in
/// this order, then "/" and ":" become "-" and blanks at the ends go; any other text stays. The original name
/// where nothing is left. A name of more than `room` bytes is cut between two characters; its first {seq}
/// stays.
std::string baseName(const NamingFacts& facts, std::string_view pattern, NamingPlace place,
    std::size_t room = longestFileName);

/// What the library knows of a photo, without a look at its file.
NamingFacts listedFacts(const PhotoItem& photo);

/// The same for a photo of the library, with the date that its file has now, or today's when the file is
/// gone.
std::string baseName(const PhotoItem& photo, std::string_view pattern, std::size_t index, std::size_t total,
    std::size_t room = longestFileName);

/// A file name without its extension: "IMG_0042" of "IMG_0042.CR3".
std::string_view withoutExtension(std::string_view filename);

} // namespace korvo
