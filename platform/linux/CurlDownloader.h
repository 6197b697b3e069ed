#pragma once

#include "platform/Downloader.h"

#include <chrono>
#include <filesystem>
#include <utility>

namespace korvo {

/// Downloads with libcurl. The proxy variables of the environment (https_proxy, no_proxy, …) are honoured,
/// certificates are verified, and once a request went over HTTPS no redirect leads back to HTTP.
class CurlDownloader : public Downloader {
public:
    struct Settings {
        std::chrono::milliseconds connectTimeout = std::chrono::seconds(15);
        /// The longest wait for an answer, and for each further KiB of it: a slow line is borne, a dead one
        /// is not.
        std::chrono::milliseconds silenceTimeout = std::chrono::seconds(30);
        /// A PEM file of the authorities to trust in place of the system's, unless empty.
        std::filesystem::path authorities = {};
    };

    CurlDownloader() = default;
    explicit CurlDownloader(Settings settings) : settings_(std::move(settings)) { }

    void download(const Download& download, const std::stop_token& stop) override;

private:
    Settings settings_;
};

} // namespace korvo
