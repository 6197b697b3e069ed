#include "app/desktop/start/Instance.h"

#include <QCryptographicHash>
#include <QLocalServer>
#include <QLocalSocket>

namespace korvo {

namespace {

constexpr int patience = 1000; // milliseconds

/// The same for every path that leads to the library; sockets belong to one user by where they lie.
QString serverName(const std::filesystem::path& library)
{
    std::error_code none;
    const auto path = std::filesystem::weakly_canonical(library, none);
    const auto bytes = QByteArray::fromStdString((none ? library : path).native());
    return "korvo-"
        + QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(24));
}

/// What another program wrote until it closed its end: paths, each ended by a NUL.
Instance::Paths pathsIn(const QByteArray& bytes)
{
    Instance::Paths paths;
    for (const auto& path : bytes.split('\0'))
        if (!path.isEmpty())
            paths.emplace_back(path.toStdString());
    return paths;
}

/// Whether a program listens by that name, and has been told. One that is just loading is told later.
bool bringForward(const QString& name, const Instance::Paths& add)
{
    QLocalSocket socket;
    socket.connectToServer(name);
    if (!socket.waitForConnected(patience))
        return false;
    for (const auto& path : add)
        socket.write(QByteArray::fromStdString(path.native()).append('\0'));
    socket.disconnectFromServer();
    return socket.state() == QLocalSocket::UnconnectedState || socket.waitForDisconnected(patience);
}

} // namespace

std::unique_ptr<Instance> Instance::begin(
    const std::filesystem::path& library, const Paths& add, std::function<void(Paths add)> asked)
{
    const auto name = serverName(library);
    if (bringForward(name, add))
        return nullptr;
    std::unique_ptr<Instance> instance(new Instance(std::move(asked)));
    if (instance->server_->listen(name))
        return instance;
    if (bringForward(name, add)) // it began at the same time
        return nullptr;
    QLocalServer::removeServer(name); // what a killed program left
    instance->server_->listen(name);
    return instance;
}

Instance::Instance(std::function<void(Paths add)> asked) : server_(std::make_unique<QLocalServer>())
{
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(
        server_.get(), &QLocalServer::newConnection, server_.get(), [this, asked = std::move(asked)] {
            while (auto* const socket = server_->nextPendingConnection()) {
                const auto read = [socket, asked] {
                    asked(pathsIn(socket->readAll()));
                    socket->deleteLater();
                };
                if (socket->state() == QLocalSocket::UnconnectedState)
                    read();
                else
                    QObject::connect(socket, &QLocalSocket::disconnected, socket, read);
            }
        });
}

Instance::~Instance() = default;

} // namespace korvo
