#include "platform/linux/CurlDownloader.h"
#include "tests/support/HttpServer.h"
#include "tests/support/ScopedVariable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace korvo {

namespace {

using namespace std::chrono_literals;
using Case = DownloadError::Case;

constexpr std::uint64_t mostBytes = 1 << 20;

struct Outcome {
    std::string body = {};
    std::vector<DownloadProgress> progress = {};
    std::optional<Case> error = {};
    long status = 0;
    std::string text = {};
};

/// A downloader in an environment without proxies, and what comes of each download.
class Client {
public:
    Outcome download(const std::string& url, const std::stop_token& stop = {}) const
    {
        Outcome outcome;
        try {
            CurlDownloader(settings).download(
                {url, mostBytes, [&](Bytes bytes) { outcome.body += bytes.text(); },
                    [&](const DownloadProgress& at) { outcome.progress.push_back(at); }},
                stop);
        } catch (const DownloadError& error) {
            outcome.error = error.which();
            outcome.status = error.status();
            outcome.text = error.what();
        }
        return outcome;
    }

    CurlDownloader::Settings settings{.connectTimeout = 5s, .silenceTimeout = 10s};

private:
    std::list<ScopedVariable> withoutProxies_ = withoutProxies();
};

HttpServer::Handler redirectTo(const std::string& address)
{
    return [address](const std::string&, HttpConnection& connection) {
        connection.answer("302 Found", "moved", "Location: " + address + "\r\n");
    };
}

void answerOk(const std::string&, HttpConnection& connection)
{
    connection.answer("200 OK", "the model");
}

} // namespace

/// The plainer misbehaviours are tried with the model stores, which tell their texts.
TEST(CurlDownloader, tellsTheWaysOfFailureApart)
{
    Client client;
    struct Misbehaviour {
        const char* name;
        std::function<void(HttpConnection&)> act;
        Case error;
        long status = 0;
    };
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const Misbehaviour cases[] = {
        {"a redirect to nowhere", [](auto& c) { c.answer("302 Found", "moved"); }, Case::http, 302},
        {"half a head", [&](auto& c) { c.send(ok + "Content-Len"); }, Case::incomplete},
        {"a chunk cut off",
            [&](auto& c) { c.send(ok + "Transfer-Encoding: chunked\r\n\r\n64\r\n0123456789"); },
            Case::incomplete},
        {"too much announced",
            [&](auto& c) { c.send(ok + "Content-Length: 1048577\r\n\r\nx") && c.pause(30s); },
            Case::tooLarge},
        {"endless headers",
            [&](auto& c) {
                c.send(ok);
                while (c.send("X-Filler: " + std::string(1000, 'x') + "\r\n")) { }
            },
            Case::tooLarge},
        {"something else than HTTP", [](auto& c) { c.send("SSH-2.0-OpenSSH_9.2\r\n"); }, Case::transport},
        {"an endless chain of redirects", [](auto& c) { c.answer("302 Found", {}, "Location: /again\r\n"); },
            Case::transport},
    };
    for (const auto& [name, act, error, status] : cases) {
        SCOPED_TRACE(name);
        const HttpServer server(
            [&act = act](const std::string&, HttpConnection& connection) { act(connection); });
        const auto outcome = client.download(server.url("/model"));
        EXPECT_EQ(outcome.error, error) << outcome.text;
        EXPECT_EQ(outcome.status, status);
        EXPECT_LE(outcome.body.size(), mostBytes);
    }
    EXPECT_EQ(client.download("http://127.0.0.1:1/").error, Case::transport) << "nobody listens";
    EXPECT_EQ(client.download("file:///etc/hostname").error, Case::transport);
    EXPECT_EQ(client.download("").error, Case::transport);
}

TEST(CurlDownloader, givesUpOnAServerThatKeepsSilent)
{
    Client client;
    const std::string ok = "HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n";
    const std::pair<const char*, std::function<void(HttpConnection&)>> cases[] = {
        {"before the answer", [](auto& c) { c.pause(30s); }},
        {"within the headers", [&](auto& c) { c.send("HTTP/1.1 200 OK\r\n") && c.pause(30s); }},
        {"within the body", [&](auto& c) { c.send(ok + std::string(5000, 'x')) && c.pause(30s); }},
        {"or all but silent",
            [&](auto& c) {
                c.send(ok);
                while (c.pause(20ms) && c.send("x")) { }
            }},
    };
    client.settings.silenceTimeout = 200ms;
    for (const auto& [name, act] : cases) {
        SCOPED_TRACE(name);
        const HttpServer server(
            [&act = act](const std::string&, HttpConnection& connection) { act(connection); });
        EXPECT_EQ(client.download(server.url()).error, Case::timedOut);
    }
}

TEST(CurlDownloader, givesUpOnAConnectionThatDoesNotComeAbout)
{
    Client client;
    client.settings.connectTimeout = 200ms;
    const HttpServer deafToTls([](const std::string&, HttpConnection&) {});
    EXPECT_EQ(client.download("https" + deafToTls.url().substr(4)).error, Case::timedOut);
}

TEST(CurlDownloader, bearsASlowLine)
{
    Client client;
    client.settings.silenceTimeout = 1s;
    const HttpServer server([](const std::string&, HttpConnection& connection) {
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 36000\r\n\r\n");
        for (int i = 0; i < 12; ++i)
            connection.pause(100ms) && connection.send(std::string(3000, 'x'));
    });
    const auto outcome = client.download(server.url());
    EXPECT_EQ(outcome.error, std::nullopt) << outcome.text;
    EXPECT_EQ(outcome.body.size(), 36000U);
}

TEST(CurlDownloader, tellsItsProgressWithAndWithoutATotal)
{
    Client client;
    const std::string body(200'000, 'x');
    for (const std::string& length : {std::string("Content-Length: 200000\r\n"), std::string()}) {
        const HttpServer server([&](const std::string&, HttpConnection& connection) {
            connection.send("HTTP/1.1 200 OK\r\nConnection: close\r\n" + length + "\r\n" + body);
        });
        const auto [received, progress, error, status, text] = client.download(server.url());
        EXPECT_EQ(error, std::nullopt) << text;
        EXPECT_EQ(received, body);
        ASSERT_FALSE(progress.empty());
        EXPECT_TRUE(std::ranges::is_sorted(progress, {}, &DownloadProgress::received));
        EXPECT_EQ(progress.back().received, body.size());
        EXPECT_EQ(progress.back().total, length.empty() ? std::nullopt : std::optional(body.size()));
    }
}

TEST(CurlDownloader, readsChunksWithATrailer)
{
    Client client;
    const HttpServer server([](const std::string&, HttpConnection& connection) {
        connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nTrailer: X-End\r\n\r\n"
                        "9\r\nthe model\r\n0\r\nX-End: yes\r\n\r\n");
    });
    const auto outcome = client.download(server.url());
    EXPECT_EQ(outcome.error, std::nullopt) << outcome.text;
    EXPECT_EQ(outcome.body, "the model");
}

TEST(CurlDownloader, followsRedirectsButNeverFromHttpsToHttp)
{
    Client client;
    const TestCertificate certificate;
    client.settings.authorities = certificate.file();
    const HttpServer plain(answerOk);
    const HttpServer secure(answerOk, &certificate);
    const HttpServer backToPlain(redirectTo(plain.url("/model")), &certificate);
    const HttpServer plainToPlain(redirectTo(plain.url("/model")));
    const HttpServer secureToSecure(redirectTo(secure.url("/model")), &certificate);
    const HttpServer plainToSecure(redirectTo(secure.url("/model")));
    const HttpServer plainToSecureToPlain(redirectTo(backToPlain.url("/model")));

    for (const auto* const server : {&plainToPlain, &secureToSecure, &plainToSecure}) {
        const auto outcome = client.download(server->url("/start"));
        EXPECT_EQ(outcome.error, std::nullopt) << outcome.text;
        EXPECT_EQ(outcome.body, "the model");
    }
    ASSERT_EQ(plain.requests(), std::vector<std::string>{"/model"});
    for (const auto* const server : {&backToPlain, &plainToSecureToPlain})
        EXPECT_EQ(client.download(server->url("/start")).error, Case::insecure);
    EXPECT_EQ(plain.requests().size(), 1U) << "nothing more was asked for in the clear";
}

TEST(CurlDownloader, trustsNoCertificateThatNobodySigned)
{
    Client client;
    const TestCertificate certificate;
    const HttpServer server(answerOk, &certificate);
    EXPECT_EQ(client.download(server.url()).error, Case::insecure);
    const TestCertificate another;
    client.settings.authorities = another.file();
    EXPECT_EQ(client.download(server.url()).error, Case::insecure);
    EXPECT_TRUE(server.requests().empty());
}

TEST(CurlDownloader, honoursTheProxyVariables)
{
    Client client;
    const HttpServer proxy(answerOk);
    const HttpServer direct(answerOk);
    const ScopedVariable variable("http_proxy", proxy.url());
    EXPECT_EQ(client.download("http://models.example/model").error, std::nullopt);
    EXPECT_EQ(proxy.requests(), std::vector<std::string>{"http://models.example/model"});
    const ScopedVariable exception("no_proxy", "127.0.0.1");
    EXPECT_EQ(client.download(direct.url("/model")).error, std::nullopt);
    EXPECT_EQ(direct.requests(), std::vector<std::string>{"/model"});
}

TEST(CurlDownloader, endsSoonAfterACancel)
{
    Client client;
    const std::pair<const char*, HttpServer::Handler> cases[] = {
        {"before the answer", [](const std::string&, HttpConnection& c) { c.pause(30s); }},
        {"within the body",
            [](const std::string&, HttpConnection& c) {
                c.send("HTTP/1.1 200 OK\r\n\r\nx") && c.pause(30s);
            }},
    };
    for (const auto& [name, handler] : cases) {
        SCOPED_TRACE(name);
        const HttpServer server(handler);
        auto fastest = std::chrono::steady_clock::duration::max();
        for (int attempt = 0; attempt < 3; ++attempt) { // the machine may be busy with something else
            std::stop_source stop;
            std::chrono::steady_clock::time_point asked;
            const std::jthread canceller([&] {
                std::this_thread::sleep_for(50ms);
                asked = std::chrono::steady_clock::now();
                stop.request_stop();
            });
            EXPECT_EQ(client.download(server.url(), stop.get_token()).error, Case::cancelled);
            fastest = std::min(fastest, std::chrono::steady_clock::now() - asked);
        }
        EXPECT_LT(fastest, 100ms);
    }
}

TEST(CurlDownloader, passesOnWhatTheReceiverThrows)
{
    const auto removed = withoutProxies();
    const HttpServer server(answerOk);
    const auto refuse = [](Bytes) { throw std::runtime_error("no room"); };
    EXPECT_THROW(CurlDownloader().download({server.url(), mostBytes, refuse, [](const auto&) {}}, {}),
        std::runtime_error);
}

} // namespace korvo
