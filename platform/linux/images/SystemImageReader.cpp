#include "platform/linux/images/SystemImageReader.h"

#include "platform/linux/images/DecoderProtocol.h"
#include "platform/linux/images/PictureDecoding.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace korvo {

namespace {

/// What decoding may hold in our own process, where nothing bounds it; what needs more is left to the
/// decoder.
constexpr std::int64_t mostOwnMemory = std::int64_t(512) << 20;

/// Memory that the decoder opens by its name.
PosixFile sharedMemory(const std::filesystem::path& picture)
{
    PosixFile memory(memfd_create("korvo picture", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!memory)
        throw ImageError(ImageError::Case::memory, picture, "there is no memory to decode it into");
    return memory;
}

std::filesystem::path nameOf(const PosixFile& memory)
{
    return "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(memory.descriptor());
}

} // namespace

std::filesystem::path SystemImageReader::installedDecoder()
{
    std::error_code unknown; // without /proc there is none
    return std::filesystem::read_symlink("/proc/self/exe", unknown).parent_path() / "korvo-decoder";
}

DecodedImage SystemImageReader::read(
    const std::filesystem::path& path, const ImageRequest& request, const std::stop_token& stop)
{
    PictureFile file(path);
    try {
        if (const auto open = safeDecoder(file))
            return decodePicture(file, open, request, stop, mostOwnMemory);
    } catch (const ImageError& error) {
        if (error.which() != ImageError::Case::memory)
            throw;
    }
    return readOutside(path, request, stop);
}

DecodedImage SystemImageReader::readOutside(
    const std::filesystem::path& path, const ImageRequest& request, const std::stop_token& stop)
{
    const auto memory = sharedMemory(path);
    std::error_code reason;
    const auto absolute = std::filesystem::absolute(path, reason);
    if (reason)
        throw ImageError(ImageError::Case::open, path, "cannot be found: " + reason.message());
    try {
        auto [answer, process] = ask({requests_++ & 0xFFFFFF, absolute, request, nameOf(memory)}, stop);
        const auto* const failure = std::get_if<DecoderAnswer::Failure>(&answer.result);
        auto image
            = failure ? DecodedImage() : loadImage(std::get<DecoderAnswer::Picture>(answer.result), memory);
        keepProcess(std::move(process)); // which has told the truth
        if (failure)
            throw ImageError(failure->which, path, failure->reason);
        return image;
    } catch (const ProcessError& error) {
        switch (error.which()) {
        case ProcessError::Case::stopped:
            throw ImageError(ImageError::Case::stopped, path, "was stopped");
        case ProcessError::Case::ended:
            throw ImageError(
                ImageError::Case::crashed, path, "the decoder ended while it worked on this file");
        default:
            throw ImageError(
                ImageError::Case::unsupported, path, std::string("cannot be decoded: ") + error.what());
        }
    } catch (const std::invalid_argument& error) {
        throw ImageError(ImageError::Case::crashed, path, "the decoder gave no sensible answer");
    } catch (const std::bad_alloc&) {
        throw ImageError(ImageError::Case::memory, path, notEnoughMemory);
    }
}

/// The decoder's answer, and the decoder. One that waited may have ended long ago, or be out of step: a new
/// one is asked then. One that was not understood is never asked again.
std::pair<DecoderAnswer, SystemImageReader::Process> SystemImageReader::ask(
    const DecoderRequest& request, const std::stop_token& stop)
{
    const auto isWhole = [](const ProcessOutput& output) { return isWholeMessage(output.out); };
    for (auto waiting = takeProcess();; waiting = nullptr) {
        const bool isFresh = !waiting;
        auto process = isFresh ? launcher_.start({decoder_.native()}) : std::move(waiting);
        try {
            auto answer = DecoderAnswer::decoded(process->ask(request.encoded(), isWhole, stop).out);
            if (answer.number != request.number)
                throw std::invalid_argument("the answer is to another question");
            return {std::move(answer), std::move(process)};
        } catch (const ProcessError& error) {
            if (isFresh || error.which() != ProcessError::Case::ended)
                throw;
        } catch (const std::invalid_argument&) {
            if (isFresh)
                throw;
        }
    }
}

SystemImageReader::Process SystemImageReader::takeProcess()
{
    const std::scoped_lock lock(mutex_);
    if (waiting_.empty())
        return nullptr;
    auto process = std::move(waiting_.back());
    waiting_.pop_back();
    return process;
}

void SystemImageReader::keepProcess(Process process)
{
    const std::scoped_lock lock(mutex_);
    waiting_.push_back(std::move(process));
}

} // namespace korvo
