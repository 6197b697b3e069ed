#include "platform/FileStream.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace korvo {

namespace {

constexpr std::size_t blockSize = 2 << 20;

/// Writes whole units directly, and what is left of a last one as ever.
void writeBlock(int descriptor, const std::filesystem::path& path, Bytes bytes)
{
    while (!bytes.empty()) {
        const auto units = bytes.size() / directUnit * directUnit;
        if (units == 0)
            leaveDirect(descriptor);
        const auto count = ::write(descriptor, bytes.data(), units == 0 ? bytes.size() : units);
        if (count >= 0)
            bytes = bytes.from(static_cast<std::uint64_t>(count));
        else if (errno != EINTR && !(errno == EINVAL && leaveDirect(descriptor)))
            throwFileError("write", path);
    }
}

} // namespace

FileStream::FileStream(const PosixFile& file, std::filesystem::path path)
    : descriptor_(file.descriptor()), path_(std::move(path)), filling_(makeDirectBlock(blockSize)),
      writing_(makeDirectBlock(blockSize))
{
    goDirect(descriptor_);
}

FileStream& FileStream::operator=(FileStream&& other) noexcept
{
    std::swap(descriptor_, other.descriptor_);
    std::swap(path_, other.path_);
    std::swap(filling_, other.filling_);
    std::swap(writing_, other.writing_);
    std::swap(filled_, other.filled_);
    std::swap(written_, other.written_);
    return *this;
}

void FileStream::write(Bytes bytes)
{
    while (!bytes.empty()) {
        const auto count = std::min(bytes.size(), blockSize - filled_);
        std::memcpy(filling_.get() + filled_, bytes.data(), count);
        filled_ += count;
        bytes = bytes.from(count);
        if (filled_ == blockSize)
            send();
    }
}

void FileStream::send()
{
    if (written_.valid())
        written_.get();
    std::swap(filling_, writing_);
    written_ = std::async(
        std::launch::async, [descriptor = descriptor_, path = path_, bytes = Bytes(writing_.get(), filled_)] {
            writeBlock(descriptor, path, bytes);
        });
    filled_ = 0;
}

void FileStream::finish()
{
    if (written_.valid())
        written_.get();
    writeBlock(descriptor_, path_, {filling_.get(), std::exchange(filled_, 0)});
    leaveDirect(descriptor_);
    filling_.reset();
    writing_.reset();
}

} // namespace korvo
