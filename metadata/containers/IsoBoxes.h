#pragma once

#include "metadata/containers/FileWindow.h"

#include <optional>
#include <string_view>

namespace korvo {

/// Walks the boxes (ISO 14496-12; "atoms" of QuickTime files) of a file or of one box.
class IsoBoxes {
public:
    struct Box {
        std::string_view type; ///< four bytes, or the sixteen that identify a "uuid" box
        ByteRange content;
    };

    IsoBoxes(FileWindow& file, ByteRange area) : file_(file), rest_(area) { }

    /// The next box, cut off at the end of the area; nothing at the end and where the sizes make no sense.
    std::optional<Box> next();

private:
    FileWindow& file_;
    ByteRange rest_;
};

/// The content of the first box of a type among those of an area.
std::optional<ByteRange> findBox(FileWindow& file, ByteRange area, std::string_view type);

} // namespace korvo
