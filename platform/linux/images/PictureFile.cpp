#include "platform/linux/images/PictureFile.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace korvo {

namespace {

std::string reason(int number)
{
    return std::generic_category().message(number);
}

} // namespace

// Opened without blocking, so that a pipe does not keep us waiting.
PictureFile::PictureFile(const std::filesystem::path& path)
    : path_(path), file_(openFile(path, O_RDONLY | O_NONBLOCK))
{
    struct stat status { };
    if (!file_ || fstat(file_.descriptor(), &status) != 0)
        fail(ImageError::Case::open, "cannot be opened: " + reason(errno));
    if (!S_ISREG(status.st_mode))
        fail(ImageError::Case::open, "is not a file");
    size_ = static_cast<std::uint64_t>(status.st_size);
    if (size_ == 0)
        fail(ImageError::Case::damaged, "the file is empty");
}

std::size_t PictureFile::readAt(std::uint64_t offset, std::uint8_t* buffer, std::size_t length) const
{
    std::size_t done = 0;
    if (const int error = read(offset, buffer, length, done))
        fail(ImageError::Case::open, "cannot be read: " + reason(error));
    return done;
}

std::size_t PictureFile::readSafely(std::uint64_t offset, std::uint8_t* buffer, std::size_t length) noexcept
{
    std::size_t done = 0;
    if (error_ == 0)
        error_ = read(offset, buffer, length, done);
    return error_ == 0 ? done : 0;
}

void PictureFile::check() const
{
    if (error_ != 0)
        fail(ImageError::Case::open, "cannot be read: " + reason(error_));
}

int PictureFile::read(
    std::uint64_t offset, std::uint8_t* buffer, std::size_t length, std::size_t& done) const noexcept
{
    if (!file_) {
        const auto part = Bytes(contents_).from(offset);
        done = std::min(length, part.size());
        std::copy_n(part.data(), done, buffer);
        return 0;
    }
    while (done < length) {
        const auto count
            = pread(file_.descriptor(), buffer + done, length - done, static_cast<off_t>(offset + done));
        if (count == 0)
            break;
        if (count > 0)
            done += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

std::vector<std::uint8_t> PictureFile::bytes(std::uint64_t offset, std::uint64_t length) const
{
    const auto available = offset < size_ ? size_ - offset : 0;
    std::vector<std::uint8_t> result(static_cast<std::size_t>(std::min(length, available)));
    result.resize(readAt(offset, result.data(), result.size()));
    return result;
}

} // namespace korvo
