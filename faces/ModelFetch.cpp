#include "faces/ModelFetch.h"

#include "faces/ModelError.h"
#include "platform/FileSync.h"
#include "platform/PartFile.h"
#include "platform/Sha256.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>
#include <vector>

namespace korvo {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds reportInterval{50};

/// Adds the progress of single files up to that of all. Each counts by its greatest size, because the real
/// one is known only when its download begins.
class ProgressSum {
public:
    ProgressSum(const std::vector<ModelFile>& files, const std::function<void(const ModelProgress&)>& report)
        : report_(report)
    {
        for (const auto& file : files)
            all_ += static_cast<double>(file.mostBytes);
    }

    void at(const ModelFile& file, const DownloadProgress& progress)
    {
        const auto now = Clock::now();
        if (now < next_ && progress.received != progress.total)
            return;
        next_ = now + reportInterval;
        ModelProgress sum{received_ + progress.received, std::nullopt};
        if (progress.total && *progress.total > 0) {
            const auto part = static_cast<double>(progress.received) / static_cast<double>(*progress.total);
            sum.fraction = std::min(1.0, (done_ + part * static_cast<double>(file.mostBytes)) / all_);
        }
        report_(sum);
    }

    void finished(const ModelFile& file, std::uint64_t bytes)
    {
        done_ += static_cast<double>(file.mostBytes);
        received_ += bytes;
    }

private:
    const std::function<void(const ModelProgress&)>& report_;
    double all_ = 0;
    double done_ = 0;
    std::uint64_t received_ = 0;
    Clock::time_point next_ = Clock::now();
};

PartFile fetchFile(const ModelFetch& fetch, const ModelFile& file, Downloader& downloader,
    ProgressSum& progress, const std::stop_token& stop)
{
    makeFolders(fetch.placeOf(file).parent_path());
    auto part = PartFile::begin(fetch.placeOf(file));
    if (!part)
        throw ModelError(ModelError::Case::busy, fetch.models.name);
    std::uint64_t received = 0;
    const auto write = [&](Bytes bytes) {
        part->write(bytes);
        received += bytes.size();
    };
    downloader.download({fetch.host + file.source, file.mostBytes, write,
                            [&](const DownloadProgress& at) { progress.at(file, at); }},
        stop);
    part->sync(); // so that a cancel meanwhile is still in time, and installing is a matter of a moment
    const auto digest = sha256OfFile(part->path(), stop);
    if (!digest || stop.stop_requested())
        throw DownloadError(DownloadError::Case::cancelled);
    if (*digest != file.sha256)
        throw ModelError(ModelError::Case::checksum, fetch.models.name);
    progress.finished(file, received);
    return std::move(*part);
}

} // namespace

bool ModelFetch::isInstalled(const ModelFile& file) const
{
    std::error_code unreachable; // what cannot be looked at cannot be loaded either
    return std::filesystem::is_regular_file(placeOf(file), unreachable);
}

bool ModelFetch::isInstalled() const
{
    return !models.files.empty()
        && std::ranges::all_of(models.files, [this](const auto& file) { return isInstalled(file); });
}

void fetchModels(const ModelFetch& fetch, Downloader& downloader,
    const std::function<void(const ModelProgress&)>& report, const std::stop_token& stop)
{
    if (fetch.models.files.empty())
        throw ModelError(ModelError::Case::noFiles, fetch.models.name);
    ProgressSum progress(fetch.models.files, report);
    std::vector<PartFile> parts;
    parts.reserve(fetch.models.files.size());
    for (const auto& file : fetch.models.files) {
        if (fetch.isInstalled(file))
            progress.finished(file, 0);
        else
            parts.push_back(fetchFile(fetch, file, downloader, progress, stop));
    }
    for (auto& part : parts)
        part.install();
}

} // namespace korvo
