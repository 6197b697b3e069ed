#pragma once

#include "metadata/containers/FileWindow.h"

#include <string_view>
#include <vector>

namespace korvo {

/// One of the texts that a movie says of itself, by its key ("com.apple.quicktime.make").
struct MovieItem {
    std::string_view name, text;
};

/// The texts in a movie's "meta" box that have a key (QuickTime File Format, "Metadata").
std::vector<MovieItem> movieItems(FileWindow& file, ByteRange meta);

} // namespace korvo
