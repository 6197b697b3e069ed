#include "platform/linux/CurlDownloader.h"

#include "platform/linux/PipeSignalBlock.h"

#include <algorithm>
#include <array>
#include <curl/curl.h>
#include <memory>
#include <new>
#include <string_view>
#include <strings.h>

namespace korvo {

namespace {

using Steady = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::uint64_t leastWithinTimeout = 1024; // bytes of a body
constexpr std::size_t mostHeaderBytes = 256 << 10; // of all answers on the way together
constexpr long mostRedirects = 10;
constexpr long bufferSize = 128 << 10;

struct CleanUpEasy {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct CleanUpMulti {
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};

void initialiseOnce()
{
    static const auto result = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (result != CURLE_OK)
        throw DownloadError::transport(curl_easy_strerror(result));
}

/// One download, from the first request to the last byte. Driven through a multi handle because, unlike
/// curl_easy_perform, it can be woken when the download is cancelled.
class Transfer {
public:
    Transfer(const Download& download, const CurlDownloader::Settings& settings, const std::stop_token& stop);
    ~Transfer() { curl_multi_remove_handle(multi_.get(), easy_.get()); }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    void run();

private:
    template <typename Value>
    void set(CURLoption option, Value value);
    void configure(const CurlDownloader::Settings& settings);

    static std::size_t onHeader(const char* data, std::size_t one, std::size_t size, void* self);
    static std::size_t onBody(const char* data, std::size_t one, std::size_t size, void* self);
    template <typename Work>
    bool guarded(Work work);
    void header(std::string_view line);
    void body(Bytes bytes);

    void finish() const;
    [[noreturn]] void raise(CURLcode result) const;
    long status() const;
    bool isSecure() const;
    milliseconds untilSilence() const;

    const Download& download_;
    const std::stop_token& stop_;
    const milliseconds silenceTimeout_;
    std::array<char, CURL_ERROR_SIZE> reason_{};
    std::exception_ptr thrown_; // by a callback: it must not pass through C
    DownloadProgress progress_;
    std::size_t headerBytes_ = 0;
    bool headIsWhole_ = false;
    Steady::time_point lifeSign_ = Steady::now();
    std::uint64_t receivedAtLifeSign_ = 0;
    std::unique_ptr<CURL, CleanUpEasy> easy_{curl_easy_init()};
    std::unique_ptr<CURLM, CleanUpMulti> multi_{curl_multi_init()};
};

Transfer::Transfer(
    const Download& download, const CurlDownloader::Settings& settings, const std::stop_token& stop)
    : download_(download), stop_(stop), silenceTimeout_(settings.silenceTimeout)
{
    if (!easy_ || !multi_)
        throw std::bad_alloc();
    configure(settings);
    curl_multi_add_handle(multi_.get(), easy_.get());
}

template <typename Value>
void Transfer::set(CURLoption option, Value value)
{
    if (const auto result = curl_easy_setopt(easy_.get(), option, value); result != CURLE_OK)
        throw DownloadError::transport(curl_easy_strerror(result));
}

void Transfer::configure(const CurlDownloader::Settings& settings)
{
    set(CURLOPT_URL, download_.url.c_str());
    set(CURLOPT_DEFAULT_PROTOCOL, "https");
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, mostRedirects);
    set(CURLOPT_FAILONERROR, 1L);
    set(CURLOPT_USERAGENT, "Korvo");
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(settings.connectTimeout.count()));
    set(CURLOPT_BUFFERSIZE, bufferSize);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // a cancel does not wait for the name server
    set(CURLOPT_ERRORBUFFER, reason_.data());
    if (!settings.authorities.empty())
        set(CURLOPT_CAINFO, settings.authorities.c_str());
    set(CURLOPT_HEADERFUNCTION, &Transfer::onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &Transfer::onBody);
    set(CURLOPT_WRITEDATA, this);
}

void Transfer::run()
{
    const std::stop_callback wake(stop_, [this] { curl_multi_wakeup(multi_.get()); });
    for (int running = 1;;) {
        if (stop_.stop_requested())
            throw DownloadError(DownloadError::Case::cancelled);
        if (const auto result = curl_multi_perform(multi_.get(), &running); result != CURLM_OK)
            throw DownloadError::transport(curl_multi_strerror(result));
        if (running == 0)
            return finish();
        const auto wait = untilSilence();
        if (wait <= milliseconds(0))
            throw DownloadError(DownloadError::Case::timedOut);
        curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(wait.count()), nullptr);
    }
}

milliseconds Transfer::untilSilence() const
{
    return std::chrono::ceil<milliseconds>(lifeSign_ + silenceTimeout_ - Steady::now());
}

void Transfer::finish() const
{
    int remaining = 0;
    const auto* const message = curl_multi_info_read(multi_.get(), &remaining);
    if (message && message->data.result != CURLE_OK)
        raise(message->data.result);
    if (status() / 100 != 2)
        throw DownloadError::http(status());
    if (!headIsWhole_) // which libcurl takes for the end of an empty file
        throw DownloadError(DownloadError::Case::incomplete);
}

void Transfer::raise(CURLcode result) const
{
    if (thrown_)
        std::rethrow_exception(thrown_);
    const std::string reason = reason_[0] ? reason_.data() : curl_easy_strerror(result);
    switch (result) {
    case CURLE_HTTP_RETURNED_ERROR:
        throw DownloadError::http(status());
    case CURLE_OPERATION_TIMEDOUT:
        throw DownloadError(DownloadError::Case::timedOut);
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
        throw DownloadError(DownloadError::Case::incomplete);
    case CURLE_PEER_FAILED_VERIFICATION:
        throw DownloadError::insecure(reason);
    case CURLE_UNSUPPORTED_PROTOCOL:
        if (isSecure() && status() / 100 == 3)
            throw DownloadError::insecure("the server leads on to an address without encryption.");
        [[fallthrough]];
    default:
        throw DownloadError::transport(reason);
    }
}

long Transfer::status() const
{
    long status = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
    return status;
}

bool Transfer::isSecure() const
{
    const char* scheme = nullptr;
    curl_easy_getinfo(easy_.get(), CURLINFO_SCHEME, &scheme);
    return scheme && strcasecmp(scheme, "https") == 0;
}

/// Runs the work of a callback; what it throws is kept until libcurl has returned. Whether to go on.
template <typename Work>
bool Transfer::guarded(Work work)
{
    try {
        work();
        return true;
    } catch (...) {
        thrown_ = std::current_exception();
        return false;
    }
}

std::size_t Transfer::onHeader(const char* data, std::size_t, std::size_t size, void* self)
{
    auto& transfer = *static_cast<Transfer*>(self);
    return transfer.guarded([&] { transfer.header({data, size}); }) ? size : 0;
}

std::size_t Transfer::onBody(const char* data, std::size_t, std::size_t size, void* self)
{
    auto& transfer = *static_cast<Transfer*>(self);
    return transfer.guarded([&] { transfer.body({data, size}); }) ? size : CURL_WRITEFUNC_ERROR;
}

void Transfer::header(std::string_view line)
{
    headerBytes_ += line.size();
    if (headerBytes_ > mostHeaderBytes)
        throw DownloadError(DownloadError::Case::tooLarge);
    if (line == "\r\n" || line == "\n")
        headIsWhole_ = true;
    if (!line.starts_with("HTTP/"))
        return;
    headIsWhole_ = false;
    lifeSign_ = Steady::now();
    if (isSecure())
        set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
}

void Transfer::body(Bytes bytes)
{
    if (stop_.stop_requested())
        throw DownloadError(DownloadError::Case::cancelled);
    if (status() / 100 != 2)
        throw DownloadError::http(status());
    curl_off_t announced = -1;
    curl_easy_getinfo(easy_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
    if (announced >= 0)
        progress_.total = static_cast<std::uint64_t>(announced);
    progress_.received += bytes.size();
    if (std::max(progress_.received, progress_.total.value_or(0)) > download_.mostBytes)
        throw DownloadError(DownloadError::Case::tooLarge);
    if (progress_.received - receivedAtLifeSign_ >= leastWithinTimeout) {
        receivedAtLifeSign_ = progress_.received;
        lifeSign_ = Steady::now();
    }
    download_.write(bytes);
    download_.progress(progress_);
}

} // namespace

void CurlDownloader::download(const Download& download, const std::stop_token& stop)
{
    initialiseOnce();
    const PipeSignalBlock block;
    Transfer(download, settings_, stop).run();
}

} // namespace korvo
