#include "platform/Downloader.h"

#include <utility>

namespace korvo {

namespace {

/// The texts of the cases that need no further words.
std::string textOf(DownloadError::Case which)
{
    switch (which) {
    case DownloadError::Case::cancelled:
        return "The download was cancelled.";
    case DownloadError::Case::timedOut:
        return "The download failed: the server does not answer. Check the connection and try again.";
    case DownloadError::Case::tooLarge:
        return "The download was stopped: the server sent more than the file can have.";
    case DownloadError::Case::incomplete:
        return "The download failed: the connection ended too early. Check the connection and try again.";
    case DownloadError::Case::http:
    case DownloadError::Case::insecure:
    case DownloadError::Case::transport:
        break;
    }
    return "The download failed.";
}

} // namespace

DownloadError::DownloadError(Case which) : DownloadError(which, textOf(which)) { }

DownloadError::DownloadError(Case which, std::string text, long status)
    : which_(which), text_(std::move(text)), status_(status)
{ }

DownloadError DownloadError::http(long status)
{
    return {Case::http,
        "The download failed (HTTP " + std::to_string(status) + "). Check the connection and try again.",
        status};
}

DownloadError DownloadError::transport(const std::string& reason)
{
    return {Case::transport, "The download failed: " + reason + ". Check the connection and try again."};
}

DownloadError DownloadError::insecure(const std::string& reason)
{
    return {Case::insecure, "The download failed, the connection is not secure: " + reason};
}

} // namespace korvo
