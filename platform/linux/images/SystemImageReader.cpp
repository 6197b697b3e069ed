#include "platform/linux/images/SystemImageReader.h"

#include "platform/linux/images/DecoderProtocol.h"
#include "platform/linux/images/PictureDecoding.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace korvo {

namespace {

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
            return decodePicture(file, open, request, stop);
    } catch (const std::bad_alloc&) {
        file.fail(ImageError::Case::memory, "there is not enough memory to decode it");
    }
    return readOutside(path, request, stop);
}

DecodedImage SystemImageReader::readOutside(
    const std::filesystem::path& path, const ImageRequest& request, const std::stop_token& stop)
{
    const auto memory = sharedMemory(path);
    try {
        const auto answer = ask({std::filesystem::absolute(path), request, nameOf(memory)}, stop);
        if (!answer)
            throw ImageError(
                ImageError::Case::crashed, path, "the decoder ended while it worked on this file");
        auto result = DecoderAnswer::decoded(*answer).result;
        if (const auto* const failure = std::get_if<DecoderAnswer::Failure>(&result))
            throw ImageError(failure->which, path, failure->reason);
        auto& image = std::get<DecodedImage>(result);
        loadPixels(image, memory);
        return std::move(image);
    } catch (const ProcessError& error) {
        throw error.which() == ProcessError::Case::stopped
            ? ImageError(ImageError::Case::stopped, path, "was stopped")
            : ImageError(
                ImageError::Case::unsupported, path, std::string("cannot be decoded: ") + error.what());
    } catch (const std::invalid_argument& error) {
        throw ImageError(ImageError::Case::crashed, path, "the decoder gave no sensible answer");
    } catch (const std::bad_alloc&) {
        throw ImageError(ImageError::Case::memory, path, "there is not enough memory to decode it");
    }
}

/// The decoder's answer; nothing when it ended on this file. One that waited may have ended long ago: a new
/// one is asked then.
std::optional<std::string> SystemImageReader::ask(const DecoderRequest& request, const std::stop_token& stop)
{
    const auto isWhole = [](const ProcessOutput& output) { return isWholeMessage(output.out); };
    for (auto waiting = takeProcess();; waiting = nullptr) {
        const bool isFresh = !waiting;
        auto process = isFresh ? launcher_.start({decoder_.native()}) : std::move(waiting);
        try {
            auto answer = process->ask(request.encoded(), isWhole, stop).out;
            keepProcess(std::move(process));
            return answer;
        } catch (const ProcessError& error) {
            if (error.which() != ProcessError::Case::ended)
                throw;
            if (isFresh)
                return std::nullopt;
        }
    }
}

SystemImageReader::Process SystemImageReader::takeProcess()
{
    const std::scoped_lock lock(mutex_);
    const auto found = processes_.extract(std::this_thread::get_id());
    return found ? std::move(found.mapped()) : nullptr;
}

void SystemImageReader::keepProcess(Process process)
{
    const std::scoped_lock lock(mutex_);
    processes_[std::this_thread::get_id()] = std::move(process);
}

} // namespace korvo
