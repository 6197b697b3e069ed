#include "platform/Sha256.h"

#include "platform/DirectFile.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <new>
#include <openssl/evp.h>
#include <stdexcept>
#include <unistd.h>

namespace korvo {

namespace {

constexpr std::size_t chunkSize = 4 << 20;

EVP_MD_CTX* evp(void* context)
{
    return static_cast<EVP_MD_CTX*>(context);
}

void check(int result)
{
    if (result != 1)
        throw std::runtime_error("The system's SHA-256 does not work.");
}

/// What the next read brings, empty at the end of the file.
Bytes readChunk(const PosixFile& file, const std::filesystem::path& path, const DirectBlock& room)
{
    for (;;) {
        const auto count = read(file.descriptor(), room.get(), chunkSize);
        if (count >= 0)
            return {room.get(), static_cast<std::size_t>(count)};
        if (errno != EINTR && !(errno == EINVAL && leaveDirect(file.descriptor())))
            throwFileError("read", path);
    }
}

} // namespace

void Sha256::Free::operator()(void* context) const
{
    EVP_MD_CTX_free(evp(context));
}

Sha256::Sha256() : context_(EVP_MD_CTX_new())
{
    if (!context_)
        throw std::bad_alloc();
    check(EVP_DigestInit_ex(evp(context_.get()), EVP_sha256(), nullptr));
}

void Sha256::add(Bytes bytes)
{
    check(EVP_DigestUpdate(evp(context_.get()), bytes.data(), bytes.size()));
}

std::string Sha256::finish()
{
    std::array<std::uint8_t, 32> digest;
    check(EVP_DigestFinal_ex(evp(context_.get()), digest.data(), nullptr));
    std::string text;
    for (const auto byte : digest)
        for (const int digit : {byte / 16, byte % 16})
            text += "0123456789abcdef"[digit];
    return text;
}

std::optional<std::string> sha256OfFile(const std::filesystem::path& path, const std::stop_token& stop)
{
    const auto file = openFile(path, O_RDONLY);
    if (!file)
        throwFileError("read", path);
    return sha256OfFile(file, path, stop);
}

std::optional<std::string> sha256OfFile(
    const PosixFile& file, const std::filesystem::path& path, const std::stop_token& stop)
{
    Sha256 digest;
    const auto room = makeDirectBlock(chunkSize);
    for (auto chunk = readChunk(file, path, room); !chunk.empty(); chunk = readChunk(file, path, room)) {
        if (stop.stop_requested())
            return std::nullopt;
        digest.add(chunk);
    }
    return digest.finish();
}

std::optional<std::string> sha256OnDisk(const std::filesystem::path& path, const std::stop_token& stop)
{
    const auto file = openFile(path, O_RDONLY | O_NOFOLLOW);
    if (!file || fsync(file.descriptor()) != 0)
        throwFileError("read", path);
    posix_fadvise(file.descriptor(), 0, 0, POSIX_FADV_DONTNEED); // a file system in memory has nothing else
    goDirect(file.descriptor());
    return sha256OfFile(file, path, stop);
}

} // namespace korvo
