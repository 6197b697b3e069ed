#pragma once

#include "metadata/containers/FileWindow.h"

#include <optional>
#include <string_view>

namespace korvo {

/// Walks the chunks of a RIFF file (WebP, AVI) or of one of its lists.
class RiffChunks {
public:
    struct Chunk {
        std::string_view type; ///< four characters
        ByteRange data;
    };

    static constexpr std::uint64_t headerSize = 8;

    RiffChunks(FileWindow& file, ByteRange area) : file_(file), rest_(area) { }

    /// The next chunk, its data cut off at the end of the area.
    std::optional<Chunk> next()
    {
        const auto header = file_.start(rest_, headerSize);
        if (!header)
            return std::nullopt;
        const auto length = header->littleEndian(4, 4).value_or(0);
        const Chunk chunk{header->text().substr(0, 4), rest_.from(headerSize).first(length)};
        rest_ = rest_.from(headerSize + length + length % 2);
        return chunk;
    }

private:
    FileWindow& file_;
    ByteRange rest_;
};

} // namespace korvo
