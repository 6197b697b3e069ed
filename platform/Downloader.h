#pragma once

#include "base/Bytes.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace korvo {

/// How far a download has come, in bytes. The total is unknown when the server does not tell it.
struct DownloadProgress {
    std::uint64_t received = 0;
    std::optional<std::uint64_t> total;

    friend bool operator==(const DownloadProgress&, const DownloadProgress&) = default;
};

/// One file to download over HTTP or HTTPS. Both functions are called on the thread that downloads; what
/// `write` throws ends the download and is thrown on.
struct Download {
    std::string url;
    std::uint64_t mostBytes; ///< A server that sends more is cut off.
    std::function<void(Bytes)> write;
    std::function<void(const DownloadProgress&)> progress;
};

class DownloadError : public std::exception {
public:
    enum class Case {
        http, ///< the server answered with another status than 200 to 299
        cancelled,
        timedOut,
        tooLarge,
        incomplete, ///< the connection ended before all that was announced had come
        insecure, ///< the server's certificate is not trusted, or HTTPS redirected to HTTP
        transport, ///< all else: no such host, no connection, …
    };

    /// A failure whose text the case says already.
    explicit DownloadError(Case which);
    static DownloadError http(long status);
    static DownloadError transport(const std::string& reason);
    static DownloadError insecure(const std::string& reason);

    Case which() const { return which_; }
    /// The status code of the case `http`, else 0.
    long status() const { return status_; }
    const char* what() const noexcept override { return text_.c_str(); }

private:
    DownloadError(Case which, std::string text, long status = 0);

    Case which_;
    std::string text_;
    long status_ = 0;
};

/// Downloads files.
class Downloader {
public:
    virtual ~Downloader() = default;

    /// Downloads one file, following redirects, and returns when all of it has been written. Blocks: called
    /// on a background thread, several at a time if need be. Ends within 100 ms of `stop`. Throws
    /// DownloadError, and what `download.write` throws.
    virtual void download(const Download& download, const std::stop_token& stop) = 0;
};

} // namespace korvo
