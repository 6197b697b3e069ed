#pragma once

#include "base/Bytes.h"

#include <optional>

namespace korvo {

/// Takes the fields of an ISO box one after the other from its front; 0 once its end is passed.
class BoxFields {
public:
    explicit BoxFields(std::optional<Bytes> content) : content_(content.value_or(Bytes())) { }

    /// An unsigned integer of `width` bytes; 0 for a width of 0.
    std::uint64_t take(unsigned width)
    {
        if (width == 0)
            return 0;
        const auto value = content_.bigEndian(at_, width);
        isPastEnd_ = isPastEnd_ || !value;
        at_ += width;
        return value.value_or(0);
    }

    /// The version that many boxes begin with; the flags after it are passed over.
    std::uint64_t takeVersion() { return take(4) >> 24; }

    bool isPastEnd() const { return isPastEnd_; }
    Bytes rest() const { return content_.from(at_); }

private:
    Bytes content_;
    std::uint64_t at_ = 0;
    bool isPastEnd_ = false;
};

} // namespace korvo
