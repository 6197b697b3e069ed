#include "tests/support/HttpServer.h"

#include <csignal>
#include <cstdint>
#include <memory>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <utility>

namespace korvo {

bool HttpConnection::send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto sent = ssl_ ? SSL_write(ssl_, bytes.data(), static_cast<int>(bytes.size()))
                               : ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

bool HttpConnection::answer(std::string_view status, std::string_view body, std::string_view headerLines)
{
    return send("HTTP/1.1 " + std::string(status) + "\r\nConnection: close\r\n" + std::string(headerLines)
               + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n")
        && send(body);
}

bool HttpConnection::pause(std::chrono::milliseconds time) const
{
    pollfd waited{socket_, POLLRDHUP, 0};
    return poll(&waited, 1, static_cast<int>(time.count())) == 0;
}

std::string HttpConnection::readRequest()
{
    std::string request;
    while (!request.ends_with("\r\n\r\n")) {
        char next = 0;
        const auto count = ssl_ ? SSL_read(ssl_, &next, 1) : recv(socket_, &next, 1, 0);
        if (count != 1)
            return {};
        request += next;
    }
    return request;
}

HttpServer::HttpServer(Handler handler, const TestCertificate* certificate)
    : handler_(std::move(handler)), certificate_(certificate)
{
    listener_ = PosixFile(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (bind(listener_.descriptor(), generic, size) != 0 || listen(listener_.descriptor(), 8) != 0
        || getsockname(listener_.descriptor(), generic, &size) != 0)
        throw std::runtime_error("no server on the loopback");
    address_ = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    thread_ = std::jthread([this] { serve(); });
}

HttpServer::~HttpServer()
{
    ending_ = true;
    const std::lock_guard lock(mutex_);
    shutdown(listener_.descriptor(), SHUT_RDWR);
    if (open_)
        shutdown(*open_, SHUT_RDWR);
}

std::string HttpServer::url(std::string_view path) const
{
    return (certificate_ ? "https://" : "http://") + address_ + std::string(path);
}

std::vector<std::string> HttpServer::requests() const
{
    const std::lock_guard lock(mutex_);
    return requests_;
}

void HttpServer::serve()
{
    sigset_t pipe; // OpenSSL writes without MSG_NOSIGNAL
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
    while (!ending_) {
        const PosixFile connection(accept4(listener_.descriptor(), nullptr, nullptr, SOCK_CLOEXEC));
        if (connection)
            serveOne(connection.descriptor());
    }
}

void HttpServer::serveOne(int socket)
{
    {
        const std::lock_guard lock(mutex_);
        if (ending_)
            return;
        open_ = socket;
    }
    if (certificate_) {
        const std::unique_ptr<SSL, decltype(&SSL_free)> ssl(SSL_new(certificate_->context()), SSL_free);
        SSL_set_fd(ssl.get(), socket);
        HttpConnection connection(socket, ssl.get());
        if (SSL_accept(ssl.get()) == 1)
            handle(connection);
    } else {
        HttpConnection connection(socket);
        handle(connection);
    }
    const std::lock_guard lock(mutex_);
    open_.reset();
}

void HttpServer::handle(HttpConnection& connection)
{
    const auto request = connection.readRequest();
    const auto begin = request.find(' ') + 1;
    const auto target = request.substr(begin, request.find(' ', begin) - begin);
    if (target.empty())
        return;
    {
        const std::lock_guard lock(mutex_);
        requests_.push_back(target);
    }
    handler_(target, connection);
}

} // namespace korvo
