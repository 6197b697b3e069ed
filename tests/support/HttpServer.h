#pragma once

#include "platform/PosixFile.h"
#include "tests/support/TestCertificate.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace korvo {

/// The server's end of one connection.
class HttpConnection {
public:
    explicit HttpConnection(int socket, ssl_st* ssl = nullptr) : socket_(socket), ssl_(ssl) { }

    /// False once the client has gone.
    bool send(std::string_view bytes);

    /// Sends a whole answer: status ("200 OK"), further header lines, Content-Length and body.
    bool answer(std::string_view status, std::string_view body = {}, std::string_view headerLines = {});

    /// Keeps silent. False once the client has gone or the server ends.
    bool pause(std::chrono::milliseconds time) const;

    /// The head of the client's request.
    std::string readRequest();

private:
    int socket_;
    ssl_st* ssl_;
};

/// An HTTP server on the loopback that answers as the test says, one connection after the other; it closes
/// each when the handler returns.
class HttpServer {
public:
    /// `target` is what the client asked for: "/model.onnx", or a whole address when it takes us for a proxy.
    using Handler = std::function<void(const std::string& target, HttpConnection&)>;

    /// Speaks HTTPS when it is given a certificate, which must outlive the server.
    explicit HttpServer(Handler handler, const TestCertificate* certificate = nullptr);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// "http://127.0.0.1:12345" and `path`.
    std::string url(std::string_view path = {}) const;

    /// The targets asked for so far.
    std::vector<std::string> requests() const;

private:
    void serve();
    void serveOne(int socket);
    void handle(HttpConnection& connection);

    Handler handler_;
    const TestCertificate* certificate_;
    PosixFile listener_;
    std::string address_;
    mutable std::mutex mutex_;
    std::vector<std::string> requests_; // guarded by the mutex, as is the next
    std::optional<int> open_; // the connection being served
    std::atomic<bool> ending_ = false;
    std::jthread thread_;
};

} // namespace korvo
