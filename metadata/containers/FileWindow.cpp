#include "metadata/containers/FileWindow.h"

#include "metadata/MetadataError.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <ranges>
#include <sys/stat.h>
#include <unistd.h>

namespace korvo {

namespace {

constexpr std::uint64_t mostRead = 4 * 1024 * 1024;
constexpr std::uint64_t mostAppended = 4 * 1024 * 1024, leastAppended = 64 * 1024;
constexpr std::uint64_t readAhead = 256; // for walks over many small headers with much between them
constexpr std::size_t piecesLookedAt = 16;
constexpr std::uint64_t firstAppended = std::uint64_t(1) << 62; // far beyond the end of any file

} // namespace

// Opened without blocking, so that a pipe does not keep us waiting.
FileWindow::Descriptor::Descriptor(const std::filesystem::path& file)
    : number(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
    if (number < 0)
        throw MetadataError(MetadataError::Case::open, file, errno);
}

FileWindow::Descriptor::~Descriptor()
{
    ::close(number);
}

FileWindow::FileWindow(const std::filesystem::path& file) : path_(file), file_(file)
{
    head_ = Bytes(headBytes_.data(), readAt(0, headBytes_.data(), headSize));
    size_ = head_.size();
    if (struct stat status; size_ == headSize && ::fstat(file_.number, &status) == 0)
        size_ = std::max(size_, static_cast<std::uint64_t>(status.st_size));
    roomToRead_ = std::min(mostRead, 2 * size_);
    roomToAppend_ = std::min(mostAppended, leastAppended + 8 * size_);
}

std::optional<Bytes> FileWindow::viewInPiece(const Piece& piece, std::uint64_t offset, std::uint64_t length)
{
    const Bytes bytes(piece.bytes.data(), piece.bytes.size());
    return offset < piece.offset ? std::nullopt : bytes.slice(offset - piece.offset, length);
}

std::optional<Bytes> FileWindow::viewBeyondHead(std::uint64_t offset, std::uint64_t length)
{
    const auto& pieces = offset >= firstAppended ? appended_ : pieces_;
    const auto latest = offset >= firstAppended ? appended_.size() : piecesLookedAt;
    for (const auto& piece : pieces | std::views::reverse | std::views::take(latest))
        if (const auto bytes = viewInPiece(piece, offset, length))
            return bytes;
    if (offset > size_ || length > size_ - offset || !readPiece(offset, length))
        return std::nullopt;
    return Bytes(pieces_.back().bytes.data(), static_cast<std::size_t>(length));
}

bool FileWindow::readPiece(std::uint64_t offset, std::uint64_t length)
{
    const auto wanted = std::min(std::max(length, readAhead), size_ - offset);
    if (wanted > roomToRead_)
        return false;
    roomToRead_ -= wanted;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(wanted));
    const auto read = readAt(offset, bytes.data(), bytes.size());
    if (read < length) // the file has become shorter since it was opened
        return false;
    bytes.resize(read);
    pieces_.push_back({offset, std::move(bytes)});
    return true;
}

std::size_t FileWindow::readAt(std::uint64_t offset, std::uint8_t* buffer, std::size_t length) const
{
    std::size_t done = 0;
    while (done < length) {
        const auto count
            = ::pread(file_.number, buffer + done, length - done, static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw MetadataError(MetadataError::Case::read, path_, errno);
        if (count == 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

std::optional<ByteRange> FileWindow::append(std::vector<std::uint8_t> bytes)
{
    if (bytes.size() > roomToAppend_)
        return std::nullopt;
    roomToAppend_ -= bytes.size();
    const auto offset
        = appended_.empty() ? firstAppended : appended_.back().offset + appended_.back().bytes.size();
    appended_.push_back({offset, std::move(bytes)});
    return ByteRange{offset, appended_.back().bytes.size()};
}

std::string_view FileWindow::keep(std::string_view text)
{
    const auto kept = append({text.begin(), text.end()});
    const auto bytes = kept ? view(*kept) : std::nullopt;
    return bytes ? bytes->text() : std::string_view();
}

std::optional<ByteRange> FileWindow::joined(const std::vector<ByteRange>& ranges)
{
    if (ranges.size() == 1)
        return ranges.front();
    std::vector<std::uint8_t> all;
    for (const auto& range : ranges) {
        const auto bytes = range.length <= roomToAppend_ - all.size() ? view(range) : std::nullopt;
        if (!bytes)
            return std::nullopt;
        all.insert(all.end(), bytes->data(), bytes->data() + bytes->size());
    }
    return append(std::move(all));
}

} // namespace korvo
