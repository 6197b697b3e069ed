#pragma once

#include "platform/linux/images/PictureFile.h"

#include <cstdio>

namespace korvo {

/// A picture's file as libraries read one: from a position on, and with nothing thrown (see
/// PictureFile::readSafely). The file must outlive it.
class PictureStream {
public:
    explicit PictureStream(PictureFile& file) : file_(file) { }

    /// As the libraries hand it back.
    static PictureStream& of(void* stream) { return *static_cast<PictureStream*>(stream); }

    std::uint64_t position() const { return position_; }
    std::uint64_t size() const { return file_.size(); }

    /// Fewer bytes than asked for at the end, and none when reading fails.
    std::size_t read(void* buffer, std::size_t length) noexcept
    {
        const auto count = file_.readSafely(position_, static_cast<std::uint8_t*>(buffer), length);
        position_ += count;
        return count;
    }

    /// As lseek(2): beyond the end, too. False, without moving, for what lies before the beginning.
    bool seek(std::int64_t offset, int origin) noexcept
    {
        const auto from = origin == SEEK_SET ? 0 : origin == SEEK_CUR ? position_ : size();
        std::int64_t place = 0;
        if (__builtin_add_overflow(static_cast<std::int64_t>(from), offset, &place) || place < 0)
            return false;
        position_ = static_cast<std::uint64_t>(place);
        return true;
    }

private:
    PictureFile& file_;
    std::uint64_t position_ = 0;
};

} // namespace korvo
