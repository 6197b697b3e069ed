#pragma once

#include "platform/ImageReader.h"
#include "platform/ProcessLauncher.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace korvo {

struct DecoderRequest;

/// Decodes JPEG, PNG and WebP itself, and leaves all other files to the decoder process, so that a fault in
/// their libraries ends that process and not us. Each thread that reads has a decoder of its own, which
/// stays.
class SystemImageReader : public ImageReader {
public:
    /// `launcher` must outlive the reader. `decoder` is the decoder's program.
    SystemImageReader(ProcessLauncher& launcher, std::filesystem::path decoder)
        : launcher_(launcher), decoder_(std::move(decoder))
    { }

    /// Beside our own program.
    static std::filesystem::path installedDecoder();

    DecodedImage read(
        const std::filesystem::path& file, const ImageRequest& request, const std::stop_token& stop) override;

private:
    using Process = std::unique_ptr<RunningProcess>;

    DecodedImage readOutside(
        const std::filesystem::path& file, const ImageRequest& request, const std::stop_token& stop);
    std::optional<std::string> ask(const DecoderRequest& request, const std::stop_token& stop);
    Process takeProcess();
    void keepProcess(Process process);

    ProcessLauncher& launcher_;
    std::filesystem::path decoder_;
    std::mutex mutex_;
    std::map<std::thread::id, Process>
        processes_; ///< waiting; a process ends with the thread that started it
};

} // namespace korvo
