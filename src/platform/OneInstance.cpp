#include "platform/OneInstance.h"

#include <QFile>
#include <QLocalSocket>
#include <QTimer>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <system_error>
#include <utility>

namespace zenka::platform {

namespace {

constexpr int patienceMs = 2000;
constexpr qint64 mostBytes = 65'536; // longer than any path
constexpr char taken[] = "taken\n";

QString socketIn(const std::filesystem::path& folder) {
    return QFile::decodeName((folder / "zenka.socket").c_str());
}

} // namespace

OneInstance::OneInstance(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::error_code fault;
    std::filesystem::create_directories(folder_, fault);
    // Children of this program do not hold it on.
    lock_ = Descriptor(::open((folder_ / "zenka.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    first_ = !lock_ || ::flock(lock_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void OneInstance::listen(std::function<void(const QByteArray&)> heard) {
    heard_ = std::move(heard);
    QLocalServer::removeServer(socketIn(folder_)); // what a killed program left
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { serve(); });
    server_.listen(socketIn(folder_)); // without it a later one says that this one runs, and no more
}

void OneInstance::serve() {
    while (QLocalSocket* caller = server_.nextPendingConnection()) {
        QObject::connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
        QTimer::singleShot(patienceMs, caller, [caller] { caller->abort(); });
        caller->setReadBufferSize(mostBytes);
        const auto read = [this, caller] {
            if (!caller->canReadLine())
                return;
            const QByteArray words = QByteArray::fromPercentEncoding(caller->readLine().chopped(1));
            caller->write(taken);
            caller->disconnectFromServer();
            heard_(words);
        };
        QObject::connect(caller, &QLocalSocket::readyRead, &server_, read);
        read();
    }
}

bool OneInstance::passOn(const QByteArray& words) const {
    QLocalSocket socket;
    socket.connectToServer(socketIn(folder_));
    if (!socket.waitForConnected(patienceMs))
        return false;
    socket.write(words.toPercentEncoding("/") + '\n');
    return socket.waitForBytesWritten(patienceMs) && socket.waitForReadyRead(patienceMs) &&
           socket.readAll() == taken;
}

} // namespace zenka::platform
