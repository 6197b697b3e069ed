#pragma once

#include "platform/ImageReader.h"
#include "platform/ProcessLauncher.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace korvo {

struct DecoderAnswer;
struct DecoderRequest;

/// Decodes JPEG, PNG and WebP itself, and leaves all other files to the decoder process, so that a fault in
/// their libraries ends that process and not us. As many decoders as read at once stay for the next files.
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
    std::pair<DecoderAnswer, Process> ask(const DecoderRequest& request, const std::stop_token& stop);
    Process takeProcess();
    void keepProcess(Process process);

    ProcessLauncher& launcher_;
    std::filesystem::path decoder_;
    std::atomic<int> requests_ = 0;
    std::mutex mutex_;
    std::vector<Process> waiting_;
};

} // namespace korvo
