#pragma once

#include "platform/linux/images/PictureRows.h"

#include <cstring>

namespace korvo {

/// The rows of a picture that its decoder gives as a whole.
class WholeRows : public PictureRows {
public:
    WholeRows(PictureInfo info, PixelBuffer<std::uint8_t> pixels) : pixels_(std::move(pixels))
    {
        info_ = std::move(info);
    }

    void read(std::uint8_t* row) override
    {
        std::memcpy(row, pixels_.data() + rowBytes() * next_++, rowBytes());
    }

private:
    PixelBuffer<std::uint8_t> pixels_;
    std::size_t next_ = 0;
};

} // namespace korvo
