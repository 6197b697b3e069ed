#pragma once

#include "platform/linux/images/PictureStream.h"

#include <algorithm>
#include <array>
#include <libraw/libraw.h>
#include <streambuf>

namespace korvo {

/// A picture's file as a stream buffer.
class PictureStreamBuffer : public std::streambuf {
public:
    explicit PictureStreamBuffer(PictureFile& file) : stream_(file) { }

protected:
    int_type underflow() override
    {
        const auto count = stream_.read(buffer_.data(), buffer_.size());
        setg(buffer_.data(), buffer_.data(), buffer_.data() + count);
        return count > 0 ? traits_type::to_int_type(buffer_[0]) : traits_type::eof();
    }

    /// What is larger than the buffer does not go through it.
    std::streamsize xsgetn(char* to, std::streamsize length) override
    {
        const auto buffered = std::min<std::streamsize>(length, egptr() - gptr());
        std::copy_n(gptr(), buffered, to);
        setg(eback(), gptr() + buffered, egptr());
        const auto left = length - buffered;
        if (left < static_cast<std::streamsize>(buffer_.size()))
            return left == 0 || underflow() == traits_type::eof() ? buffered
                                                                  : buffered + xsgetn(to + buffered, left);
        setg(nullptr, nullptr, nullptr);
        return buffered
            + static_cast<std::streamsize>(stream_.read(to + buffered, static_cast<std::size_t>(left)));
    }

    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode) override
    {
        const auto begin = static_cast<off_type>(stream_.position()) - (egptr() - eback());
        const auto place = offset
            + (from == std::ios_base::cur        ? begin + (gptr() - eback())
                    : from == std::ios_base::end ? static_cast<off_type>(stream_.size())
                                                 : 0);
        if (place >= begin && place <= begin + (egptr() - eback()))
            setg(eback(), eback() + (place - begin), egptr());
        else if (stream_.seek(place, SEEK_SET))
            setg(nullptr, nullptr, nullptr);
        else
            return pos_type(off_type(-1));
        return pos_type(place);
    }

    pos_type seekpos(pos_type place, std::ios_base::openmode mode) override
    {
        return seekoff(off_type(place), std::ios_base::beg, mode);
    }

private:
    PictureStream stream_;
    std::array<char, 16 << 10> buffer_;
};

/// A picture's file as LibRaw reads one, which does so byte by byte: its own stream, with another buffer
/// behind it. It has no name, so that nothing is opened by it.
class RawStream : public LibRaw_file_datastream {
public:
    explicit RawStream(PictureFile& file) : LibRaw_file_datastream("")
    {
        f.reset(new PictureStreamBuffer(file));
        _fsize = static_cast<INT64>(file.size());
    }

    void* make_jas_stream() override { return nullptr; }
};

} // namespace korvo
