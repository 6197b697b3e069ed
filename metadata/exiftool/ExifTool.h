#pragma once

#include "metadata/exiftool/ExifToolArguments.h"
#include "metadata/exiftool/ExifToolError.h"
#include "platform/ProcessLauncher.h"

#include <functional>
#include <optional>

namespace korvo {

/// Where exiftool is looked for, in this order.
struct ExifToolPlaces {
    std::filesystem::path bundled; // of the application: the program itself, or the folder it lies in
    std::vector<std::filesystem::path> installed
        = {"/opt/homebrew/bin/exiftool", "/usr/local/bin/exiftool", "/usr/bin/exiftool"};
    std::string searchPath; // folders between colons, as $PATH holds them
};

std::optional<std::filesystem::path> locateExifTool(const ExifToolPlaces& places);

/// Anything that carries out one call of exiftool and returns what it prints. Throws ExifToolError.
using RunExifTool = std::function<std::string(const ExifToolArguments&)>;

/// The outside tool that changes files. Each call is a process of its own.
class ExifTool {
public:
    /// `launcher` must outlive the tool.
    ExifTool(ProcessLauncher& launcher, ExifToolPlaces places)
        : launcher_(launcher), places_(std::move(places))
    { }

    ProcessLauncher& launcher() const { return launcher_; }

    /// Throws ExifToolError::Case::notFound.
    std::filesystem::path path() const;

    /// Runs the tool and returns what it prints: empty when that is not UTF-8. A stop request ends it.
    /// Throws ExifToolError.
    std::string run(const ExifToolArguments& arguments, const std::stop_token& stop) const;

private:
    ProcessLauncher& launcher_;
    ExifToolPlaces places_;
};

/// What a call of the tool printed, or the error that its exit status means.
std::string resultOf(const ProcessOutput& output);

} // namespace korvo
