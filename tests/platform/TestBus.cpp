#include "platform/TestBus.h"

#include "platform/Waiting.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace zenka::test {

namespace {

// no activation: a service that no test has made does not exist
constexpr const char* configuration = R"(<busconfig><type>session</type><listen>unix:path=%1</listen>
<policy context="default"><allow user="*"/><allow send_destination="*" eavesdrop="true"/>
<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>)";

/// The distribution's package serves the distribution's interpreter, which need not be the first one.
std::string python() {
    return std::filesystem::exists("/usr/bin/python3") ? "/usr/bin/python3" : "python3";
}

QString pathOf(const std::string& service) {
    return "/" + QString::fromStdString(service).replace('.', '/');
}

QString textOf(const QVariant& value) {
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return value.value<QDBusVariant>().variant().toString();
    return value.toString();
}

QDBusConnection connection(const std::string& address) {
    return QDBusConnection(QString::fromStdString(address));
}

} // namespace

TestBus::TestBus() {
    const QString socket = folder_.filePath(QStringLiteral("bus"));
    QFile file(folder_.filePath(QStringLiteral("bus.conf")));
    if (!file.open(QFile::WriteOnly))
        throw std::runtime_error("no configuration of the bus");
    file.write(QString::fromLatin1(configuration).arg(socket).toUtf8());
    file.close();
    daemon_ = std::make_unique<Child>(std::vector<std::string>{
        "dbus-daemon", "--nofork", "--print-address=1", "--config-file=" + file.fileName().toStdString()});
    address_ = daemon_->readLine();
    const QString name = QString::fromStdString(address_);
    if (!QDBusConnection::connectToBus(name, name).isConnected())
        throw std::runtime_error("no bus at " + address_);
}

TestBus::~TestBus() {
    QDBusConnection::disconnectFromBus(QString::fromStdString(address_));
}

void TestBus::addService(const std::string& name, const std::vector<std::string>& arguments) {
    std::vector<std::string> words{python(), "-m", "dbusmock"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    services_.push_back(std::make_unique<Child>(
        words, std::vector{"DBUS_SYSTEM_BUS_ADDRESS=" + address_, "DBUS_SESSION_BUS_ADDRESS=" + address_}));
    const auto registered = [&] {
        return connection(address_).interface()->isServiceRegistered(QString::fromStdString(name)).value();
    };
    if (!serveUntil(registered))
        throw std::runtime_error("python3-dbusmock does not start: " + name);
}

void TestBus::addScreenSaver(const std::string& inhibitCode) {
    const std::string name = "org.freedesktop.ScreenSaver";
    addService(name, {"--session", name, pathOf(name).toStdString(), name});
    addMethod(name, "Inhibit", "ss", "u", inhibitCode);
    addMethod(name, "UnInhibit", "u", "", "");
}

void TestBus::addLogind() {
    addService("org.freedesktop.login1", {"--system", "--template", "logind"});
}

QList<QVariant> TestBus::call(const std::string& service, const std::string& interface,
                              const std::string& method, const QList<QVariant>& arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(QString::fromStdString(service), pathOf(service),
                                       QString::fromStdString(interface), QString::fromStdString(method));
    message.setArguments(arguments);
    const QDBusMessage reply = connection(address_).call(message);
    if (reply.type() != QDBusMessage::ReplyMessage)
        throw std::runtime_error(method + ": " + reply.errorMessage().toStdString());
    return reply.arguments();
}

void TestBus::addMethod(const std::string& service, const std::string& method, const std::string& in,
                        const std::string& out, const std::string& code) {
    const auto text = [](const std::string& value) { return QVariant(QString::fromStdString(value)); };
    call(service, "org.freedesktop.DBus.Mock", "AddMethod",
         {text(service), text(method), text(in), text(out), text(code)});
}

std::vector<std::string> TestBus::calls(const std::string& service) {
    const QList<QVariant> reply = call(service, "org.freedesktop.DBus.Mock", "GetCalls");
    const auto list = reply.first().value<QDBusArgument>();
    std::vector<std::string> lines;
    list.beginArray();
    while (!list.atEnd()) {
        qulonglong time = 0;
        QString line;
        QVariantList arguments;
        list.beginStructure();
        list >> time >> line >> arguments;
        list.endStructure();
        for (const QVariant& argument : arguments)
            line += ' ' + textOf(argument);
        lines.push_back(line.toStdString());
    }
    list.endArray();
    return lines;
}

std::vector<std::string> TestBus::inhibitors() {
    const QList<QVariant> reply =
        call("org.freedesktop.login1", "org.freedesktop.login1.Manager", "ListInhibitors");
    const auto list = reply.first().value<QDBusArgument>();
    std::vector<std::string> lines;
    list.beginArray();
    while (!list.atEnd()) {
        QString what, who, why, mode;
        uint user = 0, process = 0;
        list.beginStructure();
        list >> what >> who >> why >> mode >> user >> process;
        list.endStructure();
        lines.push_back(QStringList{what, who, why, mode}.join(' ').toStdString());
    }
    list.endArray();
    return lines;
}

SilentBus::SilentBus() : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const std::string path = folder_.filePath(QStringLiteral("bus")).toStdString();
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    path.copy(name.sun_path, sizeof name.sun_path - 1);
    if (::bind(socket_, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0 ||
        ::listen(socket_, 8) != 0)
        throw std::runtime_error("no socket at " + path);
}

SilentBus::~SilentBus() {
    ::close(socket_);
}

std::string SilentBus::address() const {
    return "unix:path=" + folder_.filePath(QStringLiteral("bus")).toStdString();
}

} // namespace zenka::test
