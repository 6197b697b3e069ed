#pragma once

#include "faces/ModelSet.h"
#include "platform/Downloader.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace korvo {

/// What to fetch, from where, to where.
struct ModelFetch {
    ModelSet models;
    std::filesystem::path root; ///< the application-data folder
    std::string host; ///< "https://huggingface.co", without a slash at the end

    std::filesystem::path placeOf(const ModelFile& file) const { return root / file.place; }
    bool isInstalled(const ModelFile& file) const;
    /// Whether every file is in its place; false for a set without files.
    bool isInstalled() const;
};

/// How far the fetch of all files has come.
struct ModelProgress {
    std::uint64_t received = 0; ///< bytes
    std::optional<double> fraction; ///< 0 to 1; unknown when the server does not tell the file's size

    friend bool operator==(const ModelProgress&, const ModelProgress&) = default;
};

/// Downloads the files that are not installed, verifies all of them, and only then installs them. Blocks:
/// called on a background thread, where `report` is called about twenty times a second. Throws ModelError,
/// std::system_error and what the downloader throws; whatever is thrown, nothing unfinished stays behind.
void fetchModels(const ModelFetch& fetch, Downloader& downloader,
    const std::function<void(const ModelProgress&)>& report, const std::stop_token& stop);

} // namespace korvo
